// CKWFieldAdaptor: the common implementation of IKWField.
//
// Keeps the descriptive settings; the field templates (CKWFieldT,
// CKWObjFieldT, CKWObjCollectionFieldT) add how to reach the member and make
// its field data. Flags default to KW_FIELD_LOAD_SAVE, the version to 1.
//
//   auto* field = new CKWFieldT<int>(&CKWFieldMember<&CMyPart::m_iCount>::Get);
//   field->SetFieldID(fieldID);
//   field->SetName("m_iCount");
#pragma once

#include "kwcore/serial/IKWField.h"

class KWCORE_API CKWFieldAdaptor : public IKWField {
public:
    int SupportsStringStorage() override { return 0; }
    CString GetName() override { return m_name; }
    void SetName(CString name) override { m_name = name; }
    void SetFieldID(CKWGuid fieldID) override { m_fieldID = fieldID; }
    CKWGuid GetFieldID() override { return m_fieldID; }
    CString GetDescription() override { return m_description; }
    void SetDescription(CString description) override { m_description = description; }
    double GetVersion() override { return m_dVersion; }
    void SetVersion(double version) override { m_dVersion = version; }
    CKWGuid GetDataTypeID() override { return m_dataTypeID; }
    void SetDataTypeID(CKWGuid dataTypeID) override { m_dataTypeID = dataTypeID; }
    int GetFlags() override { return m_iFlags; }
    void SetFlags(int flags) override { m_iFlags = flags; }
    CKWSerialObjectTypeImpl* GetOriginType() override { return m_pOriginType; }
    void SetOriginType(CKWSerialObjectTypeImpl* type) override { m_pOriginType = type; }
    void Release() override { delete this; }

protected:
    CKWFieldAdaptor() = default;
    virtual ~CKWFieldAdaptor() = default;

private:
    CString m_name;
    CString m_description;
    CKWGuid m_fieldID;
    CKWGuid m_dataTypeID;
    double m_dVersion = 1.0;
    int m_iFlags = KW_FIELD_LOAD_SAVE;
    CKWSerialObjectTypeImpl* m_pOriginType = nullptr;
};
