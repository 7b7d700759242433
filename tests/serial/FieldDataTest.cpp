// Field data: values as text, links, collections, groups and change notices.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MemArchiveTest.h"
#include "kwcore/serial/CKWGroupFieldData.h"

namespace {

class FieldData : public MemArchiveTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemArchiveTest::SetUp());
        m_pPart = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        m_pOther = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        ASSERT_TRUE(m_pPart && m_pOther);
    }

    static IKWFieldData* Data(CSamplePart* part, const char* fieldID) {
        return part->GetFieldData(CKWGuid(fieldID));
    }
    static std::string Text(CSamplePart* part, const char* fieldID) {
        return std::string(Data(part, fieldID)->GetStringValue());
    }
    // A group of the field in both parts; the caller releases it.
    CKWGroupFieldData* Group(const char* fieldID) {
        auto* group = new CKWGroupFieldData;
        EXPECT_EQ(group->AddFieldData(Data(m_pPart, fieldID)), 1);
        EXPECT_EQ(group->AddFieldData(Data(m_pOther, fieldID)), 1);
        return group;
    }

    CSamplePart* m_pPart = nullptr;
    CSamplePart* m_pOther = nullptr;
};

TEST_F(FieldData, ValuesTakeAndGiveTheirTextFormsInPlace) {
    struct Row {
        const char* fieldID;
        const char* input;
        int accepted;
        const char* text;  // the value's text afterwards
    };
    const Row rows[] = {
        {kNameFieldID, "wheel", 1, "wheel"},
        {kNameFieldID, "", 1, ""},
        {kCountFieldID, " -7 ", 1, "-7"},
        {kCountFieldID, "4x", 0, "-7"},
        {kCountFieldID, "", 0, "-7"},
        {kCountFieldID, "99999999999", 0, "-7"},
        {kTagFieldID, "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}", 1,
         "{2e40626a-d1f3-4538-9ee0-0123afc0e1f4}"},
        {kTagFieldID, "not a guid", 0, "{2e40626a-d1f3-4538-9ee0-0123afc0e1f4}"},
        {kLinkFieldID, "x", 0, "Not Set"},
        {kLinksFieldID, "x", 0, "0"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Data(m_pPart, row.fieldID)->SetValueFromString(row.input), row.accepted)
            << row.input;
        EXPECT_EQ(Text(m_pPart, row.fieldID), row.text) << row.input;
    }
    EXPECT_EQ(m_pPart->m_iCount, -7);
    m_pPart->m_Name = "axle";
    EXPECT_EQ(Text(m_pPart, kNameFieldID), "axle");
    m_pPart->m_pLink = m_pOther;
    EXPECT_EQ(Text(m_pPart, kLinkFieldID), std::string(m_pOther->GetInstanceID().GetCString()));
    m_pPart->m_Links.Add(m_pOther);
    m_pPart->m_Links.Add(m_pPart);
    EXPECT_EQ(Text(m_pPart, kLinksFieldID), "2");
}

TEST_F(FieldData, EqualsSetToAndCloneCompareAndCopyEveryKind) {
    m_pPart->m_Name = "rim";
    m_pPart->m_iCount = 5;
    m_pPart->m_Tag = CKWGuid::CreateNewGUID();
    m_pPart->m_pLink = m_pOther;
    m_pPart->m_Links.Add(m_pPart);
    m_pPart->m_Links.Add(m_pOther);
    m_pOther->m_Links.Add(m_pOther);
    const char* const ids[] = {kNameFieldID, kCountFieldID, kTagFieldID, kLinkFieldID,
                               kLinksFieldID};
    for (int cloned = 0; cloned < 2; ++cloned) {
        for (const char* id : ids) {
            EXPECT_EQ(Data(m_pOther, id)->Equals(Data(m_pPart, id)), cloned) << id;
        }
        EXPECT_EQ(m_pOther->CloneFieldData(m_pPart), 1);
    }
    EXPECT_EQ(Data(m_pOther, kLinkFieldID)->SetTo(Data(m_pPart, kNameFieldID)), 0);
    EXPECT_EQ(m_pOther->m_pLink, m_pOther);
    EXPECT_EQ(m_pOther->CloneFieldData(nullptr), 0);
}

TEST_F(FieldData, ChangeNoticesAndPresentationAskTheHoldingObject) {
    IKWFieldData* name = Data(m_pPart, kNameFieldID);
    IKWFieldData* count = Data(m_pPart, kCountFieldID);
    CString proposed = "spoke";
    EXPECT_EQ(name->NotifyOfPendingChange(proposed), 1);
    m_pPart->m_bRefuseChanges = true;
    EXPECT_EQ(name->NotifyOfPendingChange(proposed), 0);
    name->NotifyOfChange();
    EXPECT_EQ(m_pPart->m_changedFields, (std::vector<IKWFieldData*>{name}));
    name->NotifyOfCheckboxChange(1);
    EXPECT_EQ(m_pPart->m_checkboxChanges, std::vector<int>{1});
    // The holder answers for each field data by itself.
    m_pPart->m_pReadOnlyField = count;
    EXPECT_EQ(count->ReadOnly(), 1);
    EXPECT_EQ(name->ReadOnly(), 0);
    EXPECT_EQ(name->Visible(), 1);
    EXPECT_EQ(name->Expanded(), 1);
    EXPECT_EQ(name->HasFieldTypeOf(CKWGuid(kTextTypeID)), 1);
    EXPECT_EQ(name->HasFieldTypeOf(CKWGuid(kIntTypeID)), 0);
    EXPECT_EQ(name->HasFieldTypeOf(CKWGuid()), 0);
    // Without a holder nothing is refused and everything is shown.
    name->SetOriginObject(nullptr);
    EXPECT_EQ(name->NotifyOfPendingChange(proposed), 1);
    name->NotifyOfChange();
    name->NotifyOfCheckboxChange(0);
    EXPECT_EQ(m_pPart->m_changedFields.size(), 1u);
    EXPECT_EQ(m_pPart->m_checkboxChanges.size(), 1u);
    EXPECT_EQ(name->ReadOnly(), 0);
    EXPECT_EQ(name->Visible(), 1);
    EXPECT_EQ(name->Expanded(), 1);
    name->SetOriginObject(m_pPart);
}

TEST_F(FieldData, GroupsGiveTheCommonTextVariesOrEmpty) {
    struct Row {
        const char* first;
        const char* second;
        const char* text;
        int varies;
    };
    const Row rows[] = {{"a", "a", "a", 0}, {"a", "b", "*Varies*", 1}, {"", "", "", 0}};
    for (const Row& row : rows) {
        m_pPart->m_Name = row.first;
        m_pOther->m_Name = row.second;
        CKWGroupFieldData* group = Group(kNameFieldID);
        EXPECT_EQ(std::string(group->GetStringValue()), row.text) << row.first << row.second;
        EXPECT_EQ(group->GroupDataVaries(), row.varies);
        group->Release(true);
    }
    // A group stands for its members' field; an empty one for none.
    CKWGroupFieldData* names = Group(kNameFieldID);
    EXPECT_EQ(names->GetField(), Data(m_pPart, kNameFieldID)->GetField());
    EXPECT_EQ(names->SupportsStringStorage(), 1);  // a text field
    names->Release(true);
    auto* empty = new CKWGroupFieldData;
    EXPECT_EQ(std::string(empty->GetStringValue()), "EMPTY");
    EXPECT_EQ(empty->AddFieldData(nullptr) + empty->AddFieldData(empty), 0);
    EXPECT_EQ(empty->GetField(), nullptr);
    EXPECT_EQ(empty->SupportsStringStorage(), 0);
    empty->Release(true);
}

TEST_F(FieldData, AnObjectRefusesNullFieldDataAndHandsItsParentToEach) {
    EXPECT_EQ(m_pPart->AddFieldData(nullptr), 0);
    auto* holder = new CKWGroupFieldData;
    m_pPart->SetParentField(holder);
    for (IKWFieldData* data : m_pPart->GetFieldDataList()) {
        EXPECT_EQ(data->GetParentField(), holder);
    }
    EXPECT_EQ(Data(m_pOther, kNameFieldID)->GetParentField(), nullptr);
    m_pPart->SetParentField(nullptr);
    holder->Release(true);
}

TEST_F(FieldData, GroupsPassEditsToEveryMember) {
    CKWGroupFieldData* group = Group(kCountFieldID);
    EXPECT_EQ(group->AddFieldData(Data(m_pOther, kCountFieldID)), 0);
    EXPECT_EQ(group->GetEffectiveData(), Data(m_pPart, kCountFieldID));
    EXPECT_EQ(group->SetValueFromString("8"), 1);
    EXPECT_EQ(m_pPart->m_iCount + m_pOther->m_iCount, 16);
    EXPECT_EQ(group->SetValueFromString("eight"), 0);
    CString proposed = "9";
    m_pOther->m_bRefuseChanges = true;
    EXPECT_EQ(group->NotifyOfPendingChange(proposed), 0);
    group->NotifyOfChange();
    EXPECT_EQ(m_pPart->m_changedFields.size() + m_pOther->m_changedFields.size(), 2u);
    m_pPart->m_iCount = 12;
    EXPECT_EQ(group->SetTo(Data(m_pPart, kCountFieldID)), 1);
    EXPECT_EQ(m_pOther->m_iCount, 12);
    // Releasing the group leaves the members with their objects.
    group->Release(true);
    EXPECT_EQ(Text(m_pOther, kCountFieldID), "12");
}

}  // namespace
