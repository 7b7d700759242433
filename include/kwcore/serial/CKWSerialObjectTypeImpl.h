// CKWSerialObjectTypeImpl: the type object of a class with fields.
//
// Owns the class's field table: its own fields and, in front of them, those
// of its serializable base classes (each table holds its own copies, so a
// table frees exactly what it holds). The table is built once, on the
// type's InitializeType or on first use, by CreateFields(this, nullptr);
// CreateFields(type, object) makes an object's field data from it. Classes
// get such a type with KW_DECLARE_SERIAL_TYPE (KWSerialTypeMacros.h), which
// also writes DeclareFields from their field list.
//
//   CKWSerialObjectTypeImpl* type = CMyPart::GetCMyPartType();
//   IKWField* field = type->GetField(nameFieldID);
#pragma once

#include <map>
#include <vector>

#include "kwcore/object/CKWObjectTypeImpl.h"
#include "kwcore/serial/IKWField.h"

class KWCORE_API CKWSerialObjectTypeImpl : public CKWObjectTypeImpl {
public:
    // Takes ownership. 0 for null, a field without ID or an ID already in the
    // table (the caller keeps the field then).
    virtual int AddField(IKWField* field);
    // With a null object, builds type's table: the base classes' fields,
    // then this class's own (once). With an object, gives the object field
    // data for every field of type's table, in table order.
    virtual void CreateFields(CKWSerialObjectTypeImpl* type, IKWObject* object);
    // Has the serializable parent type add its fields to type's table.
    virtual void AppendBaseFields(CKWSerialObjectTypeImpl* type, IKWObject* object);
    virtual IKWField* GetField(CKWGuid fieldID);
    // The type's name followed by a counter: "CMyPart1", "CMyPart2", ...
    virtual CString GetNextInstanceName();
    virtual void SetDescription(CString description) { m_description = description; }
    virtual CString GetDescription() { return m_description; }
    virtual void SetHelp(bool bHelp) { m_bHelp = bHelp; }
    virtual int HasHelp() { return m_bHelp ? 1 : 0; }
    // The help topic: the type's name when help is on, else empty.
    virtual CString GetHelp();

    // The fields in table order (base classes' first).
    const std::vector<IKWField*>& GetFields() const { return m_fields; }
    // Frees the field table with the leftover instances.
    void Release() override;

protected:
    CKWSerialObjectTypeImpl() = default;
    ~CKWSerialObjectTypeImpl() override;

    // Adds this class's own fields to table (KW_BEGIN_FIELDS writes it).
    virtual void DeclareFields(CKWSerialObjectTypeImpl* table);

private:
    void BuildFieldTable();
    void BindFieldData(IKWObject* object);
    void ReleaseFields();

    std::vector<IKWField*> m_fields;
    std::map<CKWGuid, IKWField*> m_fieldsByID;
    bool m_bFieldsBuilt = false;
    bool m_bHelp = false;
    int m_iInstanceCounter = 0;
    CString m_description;
};
