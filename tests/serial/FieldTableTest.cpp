// Types of serializable classes: registration, field tables, names and help.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "SerialTestTypes.h"
#include "kwcore/object/CKWTypeSystem.h"

namespace {

std::vector<std::string> FieldNames(CKWSerialObjectTypeImpl* type) {
    std::vector<std::string> names;
    for (IKWField* field : type->GetFields()) {
        names.emplace_back(static_cast<const char*>(field->GetName()));
    }
    return names;
}

TEST(SerialTypes, LibraryTypesAreRegisteredWithTheirParents) {
    struct Row {
        const char* typeID;
        const char* name;
        const char* parentID;
        int abstract;
    };
    const Row rows[] = {
        {"{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}", "CKWSerialObject", kObjectImplTypeID, 0},
        {"{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}", "CKWArchive", kObjectImplTypeID, 0},
        {"{4F87AD20-AE52-43A7-882C-599156B30828}", "CKWDocument", kObjectImplTypeID, 0},
        {"{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}", "CKWFieldStream", kObjectImplTypeID, 1},
        {"{D13AE1B6-424A-436C-91C7-982A72F0B631}", "CKWTypeManifest", kObjectImplTypeID, 0},
    };
    for (const Row& row : rows) {
        IKWObjectType* type = CKWTypeSystem::FindType(CKWGuid(row.typeID));
        ASSERT_NE(type, nullptr) << row.name;
        EXPECT_EQ(std::string(type->GetName()), row.name);
        EXPECT_EQ(type->GetParentTypeID(), row.parentID) << row.name;
        EXPECT_EQ(type->GetParentType(), CKWTypeSystem::FindType(row.parentID)) << row.name;
        EXPECT_EQ(type->IsAbstract(), row.abstract) << row.name;
        EXPECT_EQ(type->GetRepositoryID(), CKWGuid(CKWTypeSystem::LIBRARY_REPOSITORY_ID));
    }
    EXPECT_EQ(CKWFieldStream::GetCKWFieldStreamType()->CreateInstance(CKWGuid()), nullptr);
}

TEST(SerialTypes, HostSerialTypesDescendFromTheSerialObject) {
    IKWObjectType* assembly = CKWTypeSystem::FindType(kAssemblyTypeID);
    ASSERT_EQ(assembly, CTestAssembly::GetCTestAssemblyType());
    EXPECT_EQ(assembly->IsTypeOf(kPartTypeID), 1);
    EXPECT_EQ(assembly->IsTypeOf(kSerialObjectTypeID), 1);
    EXPECT_EQ(assembly->IsTypeOf(kObjectImplTypeID), 1);
    EXPECT_EQ(CTestPart::GetCTestPartType()->IsTypeOf(kAssemblyTypeID), 0);
}

TEST(SerialTypes, TheSerialRootIsNamedOnceForReAdding) {
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
            CKWTypeSystem::Initialize(CKWGuid(kSerialTestRepositoryID));
            const bool back = CKWTypeSystem::FindType(kSerialObjectTypeID) ==
                              CKWSerialObject::GetCKWSerialObjectType();
            std::exit(forgotten && back ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(FieldTables, ADerivedTableHoldsItsBaseFieldsFirst) {
    EXPECT_TRUE(FieldNames(CKWSerialObject::GetCKWSerialObjectType()).empty());
    EXPECT_EQ(FieldNames(CTestPart::GetCTestPartType()),
              (std::vector<std::string>{"m_Name", "m_iCount", "m_Tag", "m_pNext", "m_Parts"}));
    EXPECT_EQ(FieldNames(CTestAssembly::GetCTestAssemblyType()),
              (std::vector<std::string>{"m_Name", "m_iCount", "m_Tag", "m_pNext", "m_Parts",
                                        "m_Index", "m_LoadOnly", "m_SaveOnly"}));
}

TEST(FieldTables, FieldsCarryTheirDeclaration) {
    struct Row {
        const char* fieldID;
        const char* name;
        const char* dataTypeID;
        int flags;
        int stringStorage;
        CKWSerialObjectTypeImpl* origin;
    };
    CKWSerialObjectTypeImpl* part = CTestPart::GetCTestPartType();
    CKWSerialObjectTypeImpl* assembly = CTestAssembly::GetCTestAssemblyType();
    const Row rows[] = {
        {kNameFieldID, "m_Name", kTextTypeID, 3, 1, part},
        {kCountFieldID, "m_iCount", kIntTypeID, 3, 1, part},
        {kTagFieldID, "m_Tag", kGuidTypeID, 3, 1, part},
        {kNextFieldID, "m_pNext", kPartTypeID, 3, 0, part},
        {kPartsFieldID, "m_Parts", kPartTypeID, 3, 0, part},
        {kIndexFieldID, "m_Index", kPartTypeID, 3, 0, assembly},
        {kLoadOnlyFieldID, "m_LoadOnly", kTextTypeID, 1, 1, assembly},
        {kSaveOnlyFieldID, "m_SaveOnly", kTextTypeID, 2, 1, assembly},
    };
    for (const Row& row : rows) {
        IKWField* field = assembly->GetField(row.fieldID);
        ASSERT_NE(field, nullptr) << row.name;
        EXPECT_EQ(field->GetFieldID(), row.fieldID);
        EXPECT_EQ(std::string(field->GetName()), row.name);
        EXPECT_EQ(std::string(field->GetDescription()), row.name);
        EXPECT_EQ(field->GetDataTypeID(), row.dataTypeID) << row.name;
        EXPECT_EQ(field->GetFlags(), row.flags) << row.name;
        EXPECT_EQ(field->SupportsStringStorage(), row.stringStorage) << row.name;
        EXPECT_EQ(field->GetOriginType(), row.origin) << row.name;
        EXPECT_DOUBLE_EQ(field->GetVersion(), 1.0);
    }
    // Each table owns its own copies of the base fields.
    EXPECT_NE(part->GetField(kNameFieldID), assembly->GetField(kNameFieldID));
    EXPECT_EQ(part->GetField(kIndexFieldID), nullptr);
    EXPECT_EQ(part->GetField(CKWGuid()), nullptr);
}

TEST(FieldTables, AddFieldRefusesNullMissingAndTakenIDs) {
    CKWSerialObjectTypeImpl* part = CTestPart::GetCTestPartType();
    auto* taken = new CKWFieldT<CString>(&CKWFieldMember<&CTestPart::m_Name>::Get);
    taken->SetFieldID(kNameFieldID);
    auto* missing = new CKWFieldT<CString>(&CKWFieldMember<&CTestPart::m_Name>::Get);
    EXPECT_EQ(part->AddField(nullptr), 0);
    EXPECT_EQ(part->AddField(taken), 0);
    EXPECT_EQ(part->AddField(missing), 0);
    EXPECT_EQ(part->GetFields().size(), 5u);
    taken->Release();
    missing->Release();
}

TEST(FieldTables, BuildingATableTwiceAddsNothing) {
    CKWSerialObjectTypeImpl* assembly = CTestAssembly::GetCTestAssemblyType();
    assembly->CreateFields(assembly, nullptr);
    assembly->InitializeType();
    EXPECT_EQ(assembly->GetFields().size(), 8u);
    assembly->CreateFields(nullptr, nullptr);
    EXPECT_EQ(assembly->GetFields().size(), 8u);
}

TEST(FieldTables, ObjectsGetFieldDataForEveryFieldInTableOrder) {
    auto* assembly = KWTestCreate<CTestAssembly>(CTestAssembly::GetCTestAssemblyType());
    ASSERT_NE(assembly, nullptr);
    const auto& data = assembly->GetFieldDataList();
    ASSERT_EQ(data.size(), 8u);
    const auto& fields = CTestAssembly::GetCTestAssemblyType()->GetFields();
    for (size_t i = 0; i < data.size(); ++i) {
        EXPECT_EQ(data[i]->GetField(), fields[i]);
        EXPECT_EQ(data[i]->GetOriginObject(), assembly);
    }
    EXPECT_EQ(assembly->GetFieldData(kIndexFieldID), data[5]);
    EXPECT_EQ(assembly->GetFieldData(CKWGuid()), nullptr);
    // Again from the table: the same count, not twice as many.
    EXPECT_EQ(assembly->InitFieldData(), 1);
    EXPECT_EQ(assembly->GetFieldDataList().size(), 8u);
    EXPECT_EQ(assembly->AddFieldData(nullptr), 0);
    EXPECT_EQ(assembly->Release(), 1);
}

TEST(FieldTables, ASerialObjectAnswersItsAdaptor) {
    IKWObject* object = CKWSerialObject::GetCKWSerialObjectType()->CreateInstance(CKWGuid());
    ASSERT_NE(object, nullptr);
    IKWSerializableAdaptor* adaptor = AdaptorOf(object);
    ASSERT_NE(adaptor, nullptr);
    EXPECT_EQ(adaptor->GetThisObject(), object);
    EXPECT_EQ(object->GetInterface(IID_IKWObject), object);
    EXPECT_EQ(object->GetInterface(CKWGuid()), nullptr);
    EXPECT_TRUE(adaptor->GetFieldDataList().empty());
    EXPECT_EQ(object->Release(), 1);
}

TEST(TypeSettings, InstanceNamesCountUpPerType) {
    CKWSerialObjectTypeImpl* part = CTestPart::GetCTestPartType();
    const CString first = part->GetNextInstanceName();
    const CString second = part->GetNextInstanceName();
    EXPECT_EQ(std::string(first).rfind("CTestPart", 0), 0u);
    EXPECT_NE(first, second);
    const int n = std::stoi(std::string(first).substr(9));
    EXPECT_EQ(std::string(second), "CTestPart" + std::to_string(n + 1));
}

TEST(TypeSettings, DescriptionAndHelp) {
    CKWSerialObjectTypeImpl* part = CTestPart::GetCTestPartType();
    part->SetDescription("A test part");
    EXPECT_EQ(std::string(part->GetDescription()), "A test part");
    EXPECT_EQ(part->HasHelp(), 0);
    EXPECT_TRUE(part->GetHelp().IsEmpty());
    part->SetHelp(true);
    EXPECT_EQ(part->HasHelp(), 1);
    EXPECT_EQ(std::string(part->GetHelp()), "CTestPart");
    part->SetHelp(false);
}

}  // namespace
