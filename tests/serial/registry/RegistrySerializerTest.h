// Tests of the registry serializer on sample parts: each has a registry of
// its own, and every part left alive is released afterwards.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CSamplePart.h"
#include "CTempRegistry.h"
#include "kwcore/serial/registry/CKWRegistrySerializer.h"

// One value as the registry holds it.
struct SRawValue {
    DWORD type = 0;
    std::vector<BYTE> bytes;
};

class RegistrySerializerTest : public ::testing::Test {
protected:
    void TearDown() override { CSamplePart::GetCSamplePartType()->ReleaseInstances(); }

    // The location of a test: a key below the test's own.
    std::string Location(const char* name = "Scene") const {
        return m_registry.GetKeyPath() + "\\" + name;
    }

    // A serializer of the location, not opened.
    static KWOwned<CKWRegistrySerializer> NewSerializer(const std::string& location) {
        KWOwned<CKWRegistrySerializer> serializer(KWTestCreate<CKWRegistrySerializer>(
            CKWRegistrySerializer::GetCKWRegistrySerializerType()));
        serializer->SetLocation(HKEY_CURRENT_USER, location.c_str());
        return serializer;
    }

    static CSamplePart* NewPart(const char* name) {
        auto* part = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        part->m_Name = name;
        return part;
    }

    // Saves the graph reachable from root at the location.
    static int Save(const std::string& location, CSamplePart* root) {
        return root->SerializeTo(NewSerializer(location).get());
    }

    // Names of the sub-keys, and of the values, of a key below
    // HKEY_CURRENT_USER, in enumeration order; none when it is missing.
    static std::vector<std::string> SubKeys(const std::string& path);
    static std::vector<std::string> ValueNames(const std::string& path);
    // One value; type 0 and no bytes when it is missing.
    static SRawValue RawValue(const std::string& path, const char* name);

    static std::string KeyName(const CKWGuid& guid) { return guid.GetCString().GetStdString(); }

    CTempRegistry m_registry;
};
