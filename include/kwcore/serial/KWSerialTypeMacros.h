// Declaring serializable classes and their fields, written once.
//
// A class with persistent members derives from CKWSerialObject (or from a
// class that does), gives itself a serial type with KW_DECLARE_SERIAL_TYPE,
// and lists its fields in its source file between KW_BEGIN_FIELDS and
// KW_END_FIELDS. Each KW_FIELD names the member, its field GUID, the GUID of
// its value type and its flags (KW_FIELD_LOAD, KW_FIELD_SAVE,
// KW_FIELD_LOAD_SAVE). The field's name and description are the member's
// name, and its kind follows from the member's type:
//   CString, CKWGuid, int                 a value       (CKWFieldT)
//   T*                                    a link        (CKWObjFieldT)
//   CKWObjPtrList<T>, CKWObjGuidPtrMap<T> links         (CKWObjCollectionFieldT)
// Any other member type, or a member of an unrelated class, does not compile.
// KW_FIELD_NAMED gives the field a name and description of its own.
// The fields of serializable base classes come first in the table.
//
//   // MyPart.h
//   class CMyPart : public CKWSerialObject {
//       KW_DECLARE_SERIAL_TYPE(CMyPart)
//   public:
//       CString m_Name;
//       CMyPart* m_pNext = nullptr;
//       CKWObjPtrList<CMyPart> m_Parts;
//   protected:
//       CMyPart() = default;
//   };
//
//   // MyPart.cpp: the type ID, then the parent's (here CKWSerialObject's)
//   KW_IMPLEMENT_SERIAL_TYPE(CMyPart, "{...}", "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
//   KW_BEGIN_FIELDS(CMyPart)
//       KW_FIELD(m_Name, "{field GUID}", "{value type GUID}", KW_FIELD_LOAD_SAVE)
//       KW_FIELD(m_pNext, "{field GUID}", "{CMyPart's type GUID}", KW_FIELD_LOAD_SAVE)
//       KW_FIELD(m_Parts, "{field GUID}", "{CMyPart's type GUID}", KW_FIELD_LOAD_SAVE)
//   KW_END_FIELDS()
#pragma once

#include <new>
#include <type_traits>

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/object/KWTypeMacros.h"
#include "kwcore/platform/CKWTrace.h"
#include "kwcore/serial/CKWFieldMember.h"
#include "kwcore/serial/CKWFieldT.h"
#include "kwcore/serial/CKWObjCollectionFieldT.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"

// The field template for a member type.
template <class Value>
struct KWFieldFor {
    static_assert(
        sizeof(Value) == 0,
        "a field is a CString, CKWGuid, int, T*, CKWObjPtrList<T> or CKWObjGuidPtrMap<T>");
};
template <>
struct KWFieldFor<CString> {
    using Type = CKWFieldT<CString>;
};
template <>
struct KWFieldFor<CKWGuid> {
    using Type = CKWFieldT<CKWGuid>;
};
template <>
struct KWFieldFor<int> {
    using Type = CKWFieldT<int>;
};
template <class T>
struct KWFieldFor<T*> {
    using Type = CKWObjFieldT<T>;
};
template <class T>
struct KWFieldFor<CKWObjPtrList<T>> {
    using Type = CKWObjCollectionFieldT<CKWObjPtrList<T>>;
};
template <class T>
struct KWFieldFor<CKWObjGuidPtrMap<T>> {
    using Type = CKWObjCollectionFieldT<CKWObjGuidPtrMap<T>>;
};

// Adds the fields of class Owner, declared by Owner's type, to a field table.
template <class Owner>
class CKWFieldDeclarer {
public:
    using OwnerClass = Owner;

    CKWFieldDeclarer(CKWSerialObjectTypeImpl* origin, CKWSerialObjectTypeImpl* table)
        : m_pOrigin(origin), m_pTable(table) {}

    template <auto Member>
    void Add(const char* name, const CKWGuid& fieldID, const CKWGuid& dataTypeID, int flags,
             const char* description = nullptr) {
        using Access = CKWFieldMember<Member>;
        static_assert(std::is_base_of_v<typename Access::ClassType, Owner>,
                      "a field is a member of its own class or of a base class");
        using Field = typename KWFieldFor<typename Access::ValueType>::Type;
        IKWField* field = new (std::nothrow) Field(&Access::Get);
        if (!field) {
            return;
        }
        field->SetName(name);
        field->SetDescription(description ? description : name);
        field->SetFieldID(fieldID);
        field->SetDataTypeID(dataTypeID);
        field->SetFlags(flags);
        field->SetOriginType(m_pOrigin);
        if (!m_pTable->AddField(field)) {
            CKWTrace::Write("Field %s of %s not added: its field ID is missing or taken\n", name,
                            static_cast<const char*>(m_pOrigin->GetName()));
            field->Release();
        }
    }

private:
    CKWSerialObjectTypeImpl* m_pOrigin;
    CKWSerialObjectTypeImpl* m_pTable;
};

#define KW_SERIAL_TYPE_MEMBERS_                                  \
    void InitializeType() override;                              \
                                                                 \
protected:                                                       \
    void DeclareFields(CKWSerialObjectTypeImpl* table) override; \
                                                                 \
public:

// The class's nested type builds its field table when it is collected.
#define KW_DECLARE_SERIAL_TYPE(Class) \
    KW_DECLARE_TYPE_WITH(Class, CKWSerialObjectTypeImpl, KW_SERIAL_TYPE_MEMBERS_)

#define KW_IMPLEMENT_SERIAL_TYPE(Class, TypeID, ParentTypeID) \
    KW_IMPLEMENT_TYPE(Class, TypeID, ParentTypeID)            \
    void Class::Class##Type::InitializeType() {               \
        CreateFields(this, nullptr);                          \
    }

#define KW_BEGIN_FIELDS(Class)                                                      \
    void Class::Class##Type::DeclareFields(CKWSerialObjectTypeImpl* kwFieldTable) { \
        CKWFieldDeclarer<Class> kwFields(this, kwFieldTable);                       \
        (void)kwFields;

#define KW_FIELD(Member, FieldID, DataTypeID, Flags)                                 \
    kwFields.Add<&decltype(kwFields)::OwnerClass::Member>(#Member, CKWGuid(FieldID), \
                                                          CKWGuid(DataTypeID), Flags);

// A field shown under a name and description of its own rather than the member's.
#define KW_FIELD_NAMED(Member, Name, Description, FieldID, DataTypeID, Flags) \
    kwFields.Add<&decltype(kwFields)::OwnerClass::Member>(                    \
        Name, CKWGuid(FieldID), CKWGuid(DataTypeID), Flags, Description);

#define KW_END_FIELDS() }
