#include "kwcore/serial/CKWFieldDataAdaptor.h"

#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldStream.h"

IKWSerializableAdaptor* CKWFieldDataAdaptor::GetOriginAdaptor() const {
    return m_pOriginObject;
}

int CKWFieldDataAdaptor::NotifyOfPendingChange(CString& text) {
    IKWSerializableAdaptor* origin = GetOriginAdaptor();
    return origin ? origin->OnBeforeFieldChanged(this, text) : 1;
}

void CKWFieldDataAdaptor::NotifyOfChange() {
    if (IKWSerializableAdaptor* origin = GetOriginAdaptor()) {
        origin->OnAfterFieldChanged(this);
    }
}

void CKWFieldDataAdaptor::NotifyOfCheckboxChange(int checked) {
    if (IKWSerializableAdaptor* origin = GetOriginAdaptor()) {
        origin->OnAfterCheckboxChanged(this, checked);
    }
}

int CKWFieldDataAdaptor::Equals(IKWFieldData* other) {
    return other && other->GetStringValue() == GetStringValue() ? 1 : 0;
}

int CKWFieldDataAdaptor::SetTo(IKWFieldData* other) {
    if (!other) {
        return 0;
    }
    return other == this ? 1 : SetValueFromString(other->GetStringValue());
}

void CKWFieldDataAdaptor::Release(bool bDelete) {
    if (bDelete) {
        delete this;
    }
}

int CKWFieldDataAdaptor::SerializeTo(IKWFieldStream* stream) {
    return stream ? stream->Write(this) : 0;
}

int CKWFieldDataAdaptor::SerializeFrom(IKWFieldStream* stream) {
    return stream ? stream->Read(this) : 0;
}

int CKWFieldDataAdaptor::HasFieldDataImplTypeOf(CKWGuid fieldID) {
    return m_pField && fieldID.IsValid() && m_pField->GetFieldID() == fieldID ? 1 : 0;
}

int CKWFieldDataAdaptor::HasFieldTypeOf(CKWGuid dataTypeID) {
    return m_pField && dataTypeID.IsValid() && m_pField->GetDataTypeID() == dataTypeID ? 1 : 0;
}

int CKWFieldDataAdaptor::ReadOnly() {
    IKWSerializableAdaptor* origin = GetOriginAdaptor();
    return origin ? origin->IsFieldReadOnly(const_cast<CKWFieldDataAdaptor*>(this)) : 0;
}

int CKWFieldDataAdaptor::Visible() {
    IKWSerializableAdaptor* origin = GetOriginAdaptor();
    return origin ? origin->IsFieldVisible(const_cast<CKWFieldDataAdaptor*>(this)) : 1;
}

int CKWFieldDataAdaptor::Expanded() {
    IKWSerializableAdaptor* origin = GetOriginAdaptor();
    return origin ? origin->IsFieldExpanded(const_cast<CKWFieldDataAdaptor*>(this)) : 1;
}

int CKWFieldDataAdaptor::Checked() {
    IKWSerializableAdaptor* origin = GetOriginAdaptor();
    return origin ? origin->IsFieldChecked(const_cast<CKWFieldDataAdaptor*>(this)) : 0;
}
