// CKWGroupFieldData: one field of several objects at once (a multiple
// selection in an editor).
//
// Holds plain pointers to its members' field data, owned by their objects;
// edits are passed on to every member. Its text is the members' common text,
// "EMPTY" without members and "*Varies*" when they differ.
//
//   CKWGroupFieldData* group = new CKWGroupFieldData;
//   group->AddFieldData(a->GetFieldData(nameID));
//   group->AddFieldData(b->GetFieldData(nameID));
//   group->SetValueFromString("wheel");   // both objects now named "wheel"
//   group->Release(true);
#pragma once

#include <list>

#include "kwcore/serial/CKWFieldDataAdaptor.h"

class KWCORE_API CKWGroupFieldData : public CKWFieldDataAdaptor {
public:
    CKWGroupFieldData() : CKWFieldDataAdaptor(nullptr, nullptr) {}

    // 1 when added; 0 for null or a member already held.
    int AddFieldData(IKWFieldData* fieldData);
    IKWFieldData* GetFirstFieldData() const;
    const std::list<IKWFieldData*>& GetFieldDataList() const { return m_members; }
    int SupportsStringStorage();

    // The first member's field.
    IKWField* GetField() override;
    CString GetStringValue() override;
    // 1 only when every member agrees.
    int NotifyOfPendingChange(CString& text) override;
    void NotifyOfChange() override;
    // 1 when every member took the value.
    int SetTo(IKWFieldData* other) override;
    int SetValueFromString(CString text) override;
    // The first member, or the group itself when empty.
    IKWFieldData* GetEffectiveData() override;
    int GroupDataVaries() override;
    int IsGroupData() override { return 1; }
    // Forgets the members (they stay with their objects).
    void Release(bool bDelete) override;

protected:
    ~CKWGroupFieldData() override = default;

private:
    std::list<IKWFieldData*> m_members;
};
