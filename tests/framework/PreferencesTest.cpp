// Preference sets and sections: new values, lookup and ownership.
#include <gtest/gtest.h>

#include <string>

#include "KWTestObjects.h"
#include "kwcore/framework/CKWPreferences.h"
#include "kwcore/serial/IKWFieldData.h"

namespace {

class Preferences : public ::testing::Test {
protected:
    void SetUp() override {
        m_set = KWTestCreate<CKWPreferences>(CKWPreferences::GetCKWPreferencesType());
        ASSERT_NE(m_set, nullptr);
    }
    void TearDown() override {
        CKWPreferences::GetCKWPreferencesType()->ReleaseInstances();
        CKWPreferenceSection::GetCKWPreferenceSectionType()->ReleaseInstances();
    }
    static int LiveSections() {
        return CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount();
    }

    CKWPreferences* m_set = nullptr;
};

TEST_F(Preferences, ANewSectionIsNamedAndDescribedAPreferenceSection) {
    CKWPreferenceSection* section = m_set->AddNewSection("Display");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(std::string(section->m_Name), "Display");
    EXPECT_EQ(std::string(section->m_Description), "A Preference Section");
    auto* fresh =
        KWTestCreate<CKWPreferenceSection>(CKWPreferenceSection::GetCKWPreferenceSectionType());
    ASSERT_NE(fresh, nullptr);
    IKWFieldData* name = fresh->GetFieldData(CKWGuid("{FCB6CEF7-3A8C-4CD8-A1F8-77DDCFF0C92E}"));
    IKWFieldData* text = fresh->GetFieldData(CKWGuid("{4BE98F65-D593-4411-8A56-F0E62A554F5C}"));
    ASSERT_TRUE(name && text);
    EXPECT_EQ(std::string(name->GetStringValue()), "A Preference Section");
    EXPECT_EQ(std::string(text->GetStringValue()), "A Preference Section");
    ASSERT_EQ(name->SetValueFromString("Units"), 1);
    EXPECT_EQ(std::string(fresh->m_Name), "Units");
    fresh->Release();
}

TEST_F(Preferences, TheSetFindsAddsRemovesAndReleasesSections) {
    CKWPreferenceSection* display = m_set->AddNewSection("Display");
    CKWPreferenceSection* units = m_set->AddNewSection("Units");
    ASSERT_TRUE(display && units);
    EXPECT_EQ(m_set->GetSectionCount(), 2);
    EXPECT_EQ(m_set->FindSection("Units"), units);
    EXPECT_EQ(m_set->FindSection("Colours"), nullptr);
    EXPECT_EQ(m_set->GetSection(display->GetInstanceID()), display);
    EXPECT_EQ(m_set->AddSection(display), 0);
    EXPECT_EQ(m_set->AddSection(nullptr), 0);
    ASSERT_EQ(m_set->RemoveSection(units), 1);  // handed back
    EXPECT_EQ(m_set->RemoveSection(units), 0);
    EXPECT_EQ(m_set->FindSection("Units"), nullptr);
    EXPECT_EQ(LiveSections(), 2);
    units->Release();
    EXPECT_EQ(m_set->RemoveSection(nullptr), 0);
    // A type that is not a section makes nothing and leaves nothing behind.
    EXPECT_EQ(m_set->AddNewSection("x", CKWPreferences::GetCKWPreferencesType()), nullptr);
    EXPECT_EQ(CKWPreferences::GetCKWPreferencesType()->GetInstanceCount(), 1);
    // Releasing the set releases the sections it holds.
    ASSERT_NE(m_set->AddNewSection("b"), nullptr);
    ASSERT_EQ(m_set->Release(), 1);
    EXPECT_EQ(LiveSections(), 0);
}

}  // namespace
