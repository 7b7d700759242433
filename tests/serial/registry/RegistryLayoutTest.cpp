// The keys and values a save leaves in the registry, byte for byte.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "RegistrySerializerTest.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/registry/CKWRegistryFieldStream.h"
#include "kwcore/serial/registry/CKWRegistryTypeManifest.h"

namespace {
// MFC's stored string list: a WORD count, then each string after its BYTE length.
std::vector<BYTE> StoredList(const std::vector<std::string>& strings) {
    std::vector<BYTE> bytes{static_cast<BYTE>(strings.size()), 0};
    for (const std::string& text : strings) {
        bytes.push_back(static_cast<BYTE>(text.size()));
        bytes.insert(bytes.end(), text.begin(), text.end());
    }
    return bytes;
}

std::vector<BYTE> StoredText(const std::string& text) {
    std::vector<BYTE> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}
}  // namespace

using RegistryLayout = RegistrySerializerTest;

TEST_F(RegistryLayout, ASavedPairIsOneTypeKeyWithOneKeyPerObjectAndOneValuePerField) {
    CSamplePart* a = NewPart("alpha");
    CSamplePart* b = NewPart("beta");
    a->m_iCount = -7;
    a->m_pLink = b;
    a->m_Links.Add(b);
    a->m_Links.Add(a);
    ASSERT_EQ(1, Save(Location(), a));

    const CKWGuid typeID(kSamplePartTypeID);
    const std::string typeKey = Location() + "\\" + KeyName(typeID);
    const std::string aKey = typeKey + "\\" + KeyName(a->GetInstanceID());
    const std::string bKey = typeKey + "\\" + KeyName(b->GetInstanceID());
    ASSERT_EQ(38u, KeyName(typeID).size());
    EXPECT_EQ(std::vector<std::string>{KeyName(typeID)}, SubKeys(Location()));
    EXPECT_EQ(2u, SubKeys(typeKey).size());
    EXPECT_EQ(std::vector<std::string>{"Type Manifest Name"}, ValueNames(typeKey));
    const SRawValue typeName = RawValue(typeKey, "Type Manifest Name");
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), typeName.type);
    EXPECT_EQ(StoredText("CSamplePart"), typeName.bytes);

    // One value per field, in the order the registry lists them: field
    // order on Windows and in the Linux store, name order in Wine's.
    const std::vector<std::string> fields{"m_Name", "m_iCount", "m_Tag", "m_pLink", "m_Links"};
    EXPECT_THAT(ValueNames(aKey), ::testing::UnorderedElementsAreArray(fields));
    EXPECT_THAT(ValueNames(bKey), ::testing::UnorderedElementsAreArray(fields));
    const SRawValue name = RawValue(aKey, "m_Name");
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), name.type);
    EXPECT_EQ(StoredText("alpha"), name.bytes);
    EXPECT_EQ(StoredText("-7"), RawValue(aKey, "m_iCount").bytes);

    const std::string typeText = "T:" + KeyName(typeID);
    const SRawValue link = RawValue(aKey, "m_pLink");
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), link.type);
    EXPECT_EQ(StoredList({typeText, "I:" + KeyName(b->GetInstanceID())}), link.bytes);
    ASSERT_EQ(84u, link.bytes.size());
    const SRawValue links = RawValue(aKey, "m_Links");
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), links.type);
    EXPECT_EQ(StoredList({typeText, "I:" + KeyName(b->GetInstanceID()), typeText,
                          "I:" + KeyName(a->GetInstanceID())}),
              links.bytes);

    // An unset link is an empty list; so is an empty collection.
    EXPECT_EQ(StoredList({}), RawValue(bKey, "m_pLink").bytes);
    EXPECT_EQ(StoredList({}), RawValue(bKey, "m_Links").bytes);
}

TEST_F(RegistryLayout, TypeAndObjectKeysAreVolatileBelowAnExistingLocation) {
    HKEY location = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, Location().c_str(), 0, nullptr,
                                             REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                             &location, nullptr));
    RegCloseKey(location);
    CSamplePart* part = NewPart("kept until restart");
    ASSERT_EQ(1, Save(Location(), part));

    const std::string typeKey = Location() + "\\" + KeyName(CKWGuid(kSamplePartTypeID));
    const std::string objectKey = typeKey + "\\" + KeyName(part->GetInstanceID());
    for (const std::string& key : {Location(), typeKey, objectKey}) {
        HKEY child = nullptr;
        const LONG status =
            RegCreateKeyExA(HKEY_CURRENT_USER, (key + "\\lasting").c_str(), 0, nullptr,
                            REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &child, nullptr);
        if (child) {
            RegCloseKey(child);
        }
        if (key == Location()) {
            EXPECT_EQ(ERROR_SUCCESS, status);
            RegDeleteKeyA(HKEY_CURRENT_USER, (key + "\\lasting").c_str());
        } else {
            EXPECT_EQ(ERROR_CHILD_MUST_BE_VOLATILE, status) << key;
        }
    }
}

TEST_F(RegistryLayout, AFieldWithoutATextFormWritesNoValueThroughWrite) {
    CSamplePart* part = NewPart("p");
    KWOwned<CKWRegistrySerializer> serializer = NewSerializer(Location());
    CKWTypeManifest* manifest =
        serializer->CreateTypeManifest(CKWGuid(kSamplePartTypeID), part->GetType());
    ASSERT_NE(nullptr, manifest);
    ASSERT_EQ(1, manifest->WriteTypeHeader(part->GetType()));
    auto* stream = dynamic_cast<CKWRegistryFieldStream*>(
        manifest->CreateFieldStream(part->GetInstanceID(), nullptr));
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(CKWGuid(kSamplePartTypeID), stream->GetTypeID());
    ASSERT_EQ(1, stream->WriteObjectHeader(part));

    EXPECT_EQ(1, stream->Write(part->GetFieldData(CKWGuid(kLinkFieldID))));
    EXPECT_EQ(1, stream->Write(part->GetFieldData(CKWGuid(kNameFieldID))));
    const std::string objectKey = Location() + "\\" + KeyName(CKWGuid(kSamplePartTypeID)) + "\\" +
                                  KeyName(part->GetInstanceID());
    EXPECT_EQ(std::vector<std::string>{"m_Name"}, ValueNames(objectKey));
    EXPECT_EQ(0, stream->Write(nullptr));
    EXPECT_EQ(0, stream->WriteLink(nullptr, part));
    EXPECT_EQ(0, stream->WriteLinks(part->GetFieldData(CKWGuid(kLinksFieldID)), nullptr));
    EXPECT_EQ(0, stream->WriteObjectHeader(nullptr));
}

TEST_F(RegistryLayout, ALinkReadsBackAsTwoStringsTypeFirst) {
    CSamplePart* a = NewPart("a");
    a->m_pLink = NewPart("b");
    ASSERT_EQ(1, Save(Location(), a));
    KWOwned<CKWRegistrySerializer> serializer = NewSerializer(Location());
    const CKWGuid typeID(kSamplePartTypeID);
    ASSERT_EQ(1, serializer->VerifyKey(serializer->ObjectKeyPath(typeID, a->GetInstanceID())));
    CStringList strings;
    ASSERT_EQ(1, serializer->Read("m_pLink", strings));
    ASSERT_EQ(2, strings.GetCount());
    EXPECT_EQ("T:" + KeyName(typeID), strings.GetHead().GetStdString());
    EXPECT_EQ("I:" + KeyName(a->m_pLink->GetInstanceID()), strings.GetTail().GetStdString());
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), serializer->GetLastValueType());
    EXPECT_EQ(84u, serializer->GetLastValueSize());
}
