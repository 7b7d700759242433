// CKWFieldDataAdaptor: the common implementation of IKWFieldData.
//
// Holds the field, the object that holds the value (not owned) and the
// parent field. SerializeTo and SerializeFrom hand the field data to the
// stream's Write and Read; change notices and presentation questions go to
// the holding object's IKWSerializableAdaptor hooks. The value templates
// override the text operations.
//
//   class CMyData : public CKWFieldDataAdaptor {
//   public:
//       CMyData(IKWField* f, CKWSerialObject* o) : CKWFieldDataAdaptor(f, o) {}
//       CString GetStringValue() override { return "fixed"; }
//   };
#pragma once

#include "kwcore/serial/IKWFieldData.h"

class IKWSerializableAdaptor;

class KWCORE_API CKWFieldDataAdaptor : public IKWFieldData {
public:
    int NotifyOfPendingChange(CString& text) override;
    void NotifyOfChange() override;
    void NotifyOfCheckboxChange(int checked) override;
    // Equal texts; subclasses compare values.
    int Equals(IKWFieldData* other) override;
    // Through the other's text; subclasses copy values.
    int SetTo(IKWFieldData* other) override;
    IKWField* GetField() override { return m_pField; }
    CString GetStringValue() override { return CString(); }
    CKWSerialObject* GetOriginObject() override { return m_pOriginObject; }
    void SetOriginObject(CKWSerialObject* object) override { m_pOriginObject = object; }
    int GroupDataVaries() override { return 0; }
    int IsGroupData() override { return 0; }
    IKWFieldData* GetEffectiveData() override { return this; }
    void Release(bool bDelete) override;
    IKWFieldData* GetParentField() override { return m_pParentField; }
    void SetParentField(IKWFieldData* parent) override { m_pParentField = parent; }
    // No text form here: 0.
    int SetValueFromString(CString) override { return 0; }
    int SerializeTo(IKWFieldStream* stream) override;
    int SerializeFrom(IKWFieldStream* stream) override;
    int HasFieldDataImplTypeOf(CKWGuid fieldID) override;
    int HasFieldTypeOf(CKWGuid dataTypeID) override;
    int ReadOnly() override;
    int HiliteReadable() override { return 0; }
    int Visible() override;
    int Expanded() override;
    int HasCheckbox() override { return 0; }
    int Checked() override;

protected:
    CKWFieldDataAdaptor(IKWField* field, CKWSerialObject* origin)
        : m_pField(field), m_pOriginObject(origin) {}
    ~CKWFieldDataAdaptor() override = default;

    // The holding object's hooks, or null without an object.
    IKWSerializableAdaptor* GetOriginAdaptor() const;

private:
    IKWField* m_pField;
    CKWSerialObject* m_pOriginObject;
    IKWFieldData* m_pParentField = nullptr;
};
