#include "kwcore/serial/CKWGroupFieldData.h"

#include <algorithm>

#include "kwcore/serial/IKWField.h"

int CKWGroupFieldData::AddFieldData(IKWFieldData* fieldData) {
    if (!fieldData || fieldData == this ||
        std::find(m_members.begin(), m_members.end(), fieldData) != m_members.end()) {
        return 0;
    }
    m_members.push_back(fieldData);
    return 1;
}

IKWFieldData* CKWGroupFieldData::GetFirstFieldData() const {
    return m_members.empty() ? nullptr : m_members.front();
}

int CKWGroupFieldData::SupportsStringStorage() {
    IKWField* field = GetField();
    return field ? field->SupportsStringStorage() : 0;
}

IKWField* CKWGroupFieldData::GetField() {
    IKWFieldData* first = GetFirstFieldData();
    return first ? first->GetField() : nullptr;
}

CString CKWGroupFieldData::GetStringValue() {
    if (m_members.empty()) {
        return "EMPTY";
    }
    return GroupDataVaries() ? CString("*Varies*") : m_members.front()->GetStringValue();
}

int CKWGroupFieldData::GroupDataVaries() {
    if (m_members.empty()) {
        return 0;
    }
    const CString first = m_members.front()->GetStringValue();
    for (IKWFieldData* member : m_members) {
        if (member->GetStringValue() != first) {
            return 1;
        }
    }
    return 0;
}

int CKWGroupFieldData::NotifyOfPendingChange(CString& text) {
    int agreed = 1;
    for (IKWFieldData* member : m_members) {
        agreed &= member->NotifyOfPendingChange(text) ? 1 : 0;
    }
    return agreed;
}

void CKWGroupFieldData::NotifyOfChange() {
    for (IKWFieldData* member : m_members) {
        member->NotifyOfChange();
    }
}

int CKWGroupFieldData::SetTo(IKWFieldData* other) {
    if (!other || other == this) {
        return 0;
    }
    int all = 1;
    for (IKWFieldData* member : m_members) {
        all &= member->SetTo(other) ? 1 : 0;
    }
    return all;
}

int CKWGroupFieldData::SetValueFromString(CString text) {
    int all = 1;
    for (IKWFieldData* member : m_members) {
        all &= member->SetValueFromString(text) ? 1 : 0;
    }
    return all;
}

IKWFieldData* CKWGroupFieldData::GetEffectiveData() {
    IKWFieldData* first = GetFirstFieldData();
    return first ? first : this;
}

void CKWGroupFieldData::Release(bool bDelete) {
    m_members.clear();
    CKWFieldDataAdaptor::Release(bDelete);
}
