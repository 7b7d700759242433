// IKWFieldData: the value of one field in one object.
//
// Made by the field (IKWField::CreateFieldData) and owned by the object's
// field-data list (IKWSerializableAdaptor), which frees it with Release(true).
// It writes itself to a field stream and reads itself back, and presents its
// value as text to editors; presentation questions are passed on to the
// object that holds it.
//
//   IKWFieldData* data = adaptor->GetFieldData(fieldID);
//   data->SetValueFromString("42");
//   CString text = data->GetStringValue();  // "42"
#pragma once

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class CKWSerialObject;
class IKWField;
class IKWFieldStream;

class KWCORE_API IKWFieldData {
public:
    // 1 when the value may change to text (asks the holding object).
    virtual int NotifyOfPendingChange(CString& text) = 0;
    virtual void NotifyOfChange() = 0;
    virtual void NotifyOfCheckboxChange(int checked) = 0;
    virtual int Equals(IKWFieldData* other) = 0;
    // Copies the other's value; 0 when it cannot.
    virtual int SetTo(IKWFieldData* other) = 0;
    virtual IKWField* GetField() = 0;
    virtual CString GetStringValue() = 0;
    virtual CKWSerialObject* GetOriginObject() = 0;
    virtual void SetOriginObject(CKWSerialObject* object) = 0;
    virtual int GroupDataVaries() = 0;
    virtual int IsGroupData() = 0;
    // The field data an editor acts on: itself, or a group's first member.
    virtual IKWFieldData* GetEffectiveData() = 0;
    // Gives back what the field data holds; with bDelete, frees it too.
    virtual void Release(bool bDelete) = 0;
    virtual IKWFieldData* GetParentField() = 0;
    virtual void SetParentField(IKWFieldData* parent) = 0;
    // 1 when the text was taken as the new value; 0 leaves the value unchanged.
    virtual int SetValueFromString(CString text) = 0;
    virtual int SerializeTo(IKWFieldStream* stream) = 0;
    virtual int SerializeFrom(IKWFieldStream* stream) = 0;
    // 1 when this is the field data of the field with that field ID.
    virtual int HasFieldDataImplTypeOf(CKWGuid fieldID) = 0;
    // 1 when the field's value type (its data-type ID) is dataTypeID.
    virtual int HasFieldTypeOf(CKWGuid dataTypeID) = 0;
    virtual int ReadOnly() = 0;
    // 1 when an editor should show a read-only value highlighted.
    virtual int HiliteReadable() = 0;
    virtual int Visible() = 0;
    virtual int Expanded() = 0;
    virtual int HasCheckbox() = 0;
    virtual int Checked() = 0;

protected:
    virtual ~IKWFieldData() = default;
};
