// IKWField: one persistent member of a class, described once for the class.
//
// A field names the member (by convention the member's own name, "m_EdgeList"),
// carries its GUID (unique within the class), the GUID of its value type (for
// links, the referenced class's type), a version and flags, and makes the
// per-object field data. Fields are owned by the field table of the type that
// holds them (CKWSerialObjectTypeImpl), which frees them with Release.
//
//   IKWField* field = type->GetField(fieldID);
//   if (field && (field->GetFlags() & KW_FIELD_SAVE)) { ... }
#pragma once

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class CKWSerialObject;
class CKWSerialObjectTypeImpl;
class IKWFieldData;

// Field flags, a bit set.
inline constexpr int KW_FIELD_LOAD = 1;       // read on load
inline constexpr int KW_FIELD_SAVE = 2;       // written on save
inline constexpr int KW_FIELD_LOAD_SAVE = 3;  // both

class KWCORE_API IKWField {
public:
    // 1 when the value has a text form that a field stream stores as text.
    virtual int SupportsStringStorage() = 0;
    virtual CString GetName() = 0;
    virtual void SetName(CString name) = 0;
    virtual void SetFieldID(CKWGuid fieldID) = 0;
    virtual CKWGuid GetFieldID() = 0;
    virtual CString GetDescription() = 0;
    virtual void SetDescription(CString description) = 0;
    virtual double GetVersion() = 0;
    virtual void SetVersion(double version) = 0;
    virtual CKWGuid GetDataTypeID() = 0;
    virtual void SetDataTypeID(CKWGuid dataTypeID) = 0;
    virtual int GetFlags() = 0;
    virtual void SetFlags(int flags) = 0;
    // A new field data bound to this field's member in object (which must be
    // of the class that declared the field), or null. The caller owns it.
    virtual IKWFieldData* CreateFieldData(CKWSerialObject* object) = 0;
    virtual CKWSerialObjectTypeImpl* GetOriginType() = 0;
    virtual void SetOriginType(CKWSerialObjectTypeImpl* type) = 0;
    // Frees the field; called by the field table that owns it.
    virtual void Release() = 0;

protected:
    ~IKWField() = default;
};
