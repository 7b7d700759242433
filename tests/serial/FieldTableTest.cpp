// Types of serializable classes: registration, field tables and instance names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <string>

#include "CSamplePart.h"
#include "KWTestObjects.h"
#include "LibraryTypes.h"

namespace {

TEST(SerialTypes, LibraryAndHostTypesAreRegisteredWithTheirParents) {
    ASSERT_NO_FATAL_FAILURE(ExpectLibraryTypes({
        {kSerialObjectTypeID, "CKWSerialObject", kObjectImplTypeID, 0},
        {"{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}", "CKWArchive", kObjectImplTypeID, 0},
        {"{4F87AD20-AE52-43A7-882C-599156B30828}", "CKWDocument", kObjectImplTypeID, 0},
        {"{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}", "CKWFieldStream", kObjectImplTypeID, 1},
        {"{D13AE1B6-424A-436C-91C7-982A72F0B631}", "CKWTypeManifest", kObjectImplTypeID, 0},
    }));
    IKWObjectType* assembly = CKWTypeSystem::FindType(kSampleAssemblyTypeID);
    ASSERT_EQ(assembly, CSampleAssembly::GetCSampleAssemblyType());
    EXPECT_EQ(assembly->IsTypeOf(kSerialObjectTypeID), 1);
    EXPECT_EQ(CSamplePart::GetCSamplePartType()->IsTypeOf(kSampleAssemblyTypeID), 0);
    // The serial root is already named for re-adding.
    EXPECT_EQ(CKWTypeSystem::AddRootType(nullptr), 0);
    EXPECT_EQ(CKWTypeSystem::AddRootType(CKWSerialObject::GetCKWSerialObjectType()), 0);
}

// Releasing the whole type system is the process's last act: run it apart.
TEST(SerialTypesShutdownDeathTest, InitializeAfterReleaseBringsTheSerialRootBack) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            CKWTypeSystem::Release();
            const bool forgotten = CKWTypeSystem::FindType(kSerialObjectTypeID) == nullptr;
            CKWTypeSystem::Initialize(CKWGuid(kKWTestRepositoryID));
            const bool back = CKWTypeSystem::FindType(kSerialObjectTypeID) ==
                              CKWSerialObject::GetCKWSerialObjectType();
            std::exit(forgotten && back ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(FieldTables, ADerivedTableHoldsItsBaseFieldsFirstAndObjectsFollowIt) {
    struct Row {
        const char* fieldID;
        const char* name;
        const char* dataTypeID;
        int flags;
        int stringStorage;
        CKWSerialObjectTypeImpl* origin;
    };
    CKWSerialObjectTypeImpl* part = CSamplePart::GetCSamplePartType();
    CKWSerialObjectTypeImpl* assembly = CSampleAssembly::GetCSampleAssemblyType();
    const Row rows[] = {
        {kNameFieldID, "m_Name", kTextTypeID, 3, 1, part},
        {kCountFieldID, "m_iCount", kIntTypeID, 3, 1, part},
        {kTagFieldID, "m_Tag", kGuidTypeID, 3, 1, part},
        {kLinkFieldID, "m_pLink", kSamplePartTypeID, 3, 0, part},
        {kLinksFieldID, "m_Links", kSamplePartTypeID, 3, 0, part},
        {kLinkMapFieldID, "m_LinkMap", kSamplePartTypeID, 3, 0, assembly},
        {kLoadOnlyFieldID, "m_LoadOnly", kTextTypeID, 1, 1, assembly},
        {kSaveOnlyFieldID, "m_SaveOnly", kTextTypeID, 2, 1, assembly},
    };
    ASSERT_EQ(assembly->GetFields().size(), std::size(rows));
    auto* object = KWTestCreate<CSampleAssembly>(assembly);
    ASSERT_EQ(object->GetFieldDataList().size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        IKWField* field = assembly->GetFields()[i];
        EXPECT_EQ(assembly->GetField(row.fieldID), field) << row.name;
        EXPECT_EQ(std::string(field->GetName()), row.name);
        EXPECT_EQ(field->GetDataTypeID(), row.dataTypeID) << row.name;
        EXPECT_EQ(field->GetFlags(), row.flags) << row.name;
        EXPECT_EQ(field->SupportsStringStorage(), row.stringStorage) << row.name;
        EXPECT_EQ(field->GetOriginType(), row.origin) << row.name;
        EXPECT_EQ(object->GetFieldDataList()[i]->GetField(), field) << row.name;
        EXPECT_EQ(object->GetFieldData(row.fieldID), object->GetFieldDataList()[i]);
    }
    EXPECT_EQ(object->InitFieldData(), 1);  // again: the same count, not twice as many
    EXPECT_EQ(object->GetFieldDataList().size(), std::size(rows));
    EXPECT_EQ(object->Release(), 1);
    // Each table owns its own copies of the base fields.
    EXPECT_NE(part->GetField(kNameFieldID), assembly->GetField(kNameFieldID));
    EXPECT_EQ(part->GetField(kLinkMapFieldID), nullptr);
}

TEST(FieldTables, TablesRefuseNullMissingAndTakenIDsAndBuildOnce) {
    CKWSerialObjectTypeImpl* part = CSamplePart::GetCSamplePartType();
    auto* taken = new CKWFieldT<CString>(&CKWFieldMember<&CSamplePart::m_Name>::Get);
    taken->SetFieldID(kNameFieldID);
    auto* missing = new CKWFieldT<CString>(&CKWFieldMember<&CSamplePart::m_Name>::Get);
    EXPECT_EQ(part->AddField(nullptr), 0);
    EXPECT_EQ(part->AddField(taken), 0);
    EXPECT_EQ(part->AddField(missing), 0);
    EXPECT_EQ(part->GetFields().size(), 5u);
    taken->Release();
    missing->Release();
    CKWSerialObjectTypeImpl* assembly = CSampleAssembly::GetCSampleAssemblyType();
    assembly->CreateFields(assembly, nullptr);
    assembly->InitializeType();
    EXPECT_EQ(assembly->GetFields().size(), 8u);
}

TEST(TypeSettings, InstanceNamesCountUpPerType) {
    CKWSerialObjectTypeImpl* part = CSamplePart::GetCSamplePartType();
    const CString first = part->GetNextInstanceName();
    const CString second = part->GetNextInstanceName();
    const std::string name = "CSamplePart";
    const int n = std::stoi(std::string(first).substr(name.size()));
    EXPECT_EQ(std::string(second), name + std::to_string(n + 1));
}

}  // namespace
