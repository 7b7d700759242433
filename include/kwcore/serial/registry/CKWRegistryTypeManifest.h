// CKWRegistryTypeManifest: the objects of one type in a registry
// serializer, the key P\T with one sub-key per object.
//
// Made by CKWRegistrySerializer::CreateTypeManifest; it makes
// CKWRegistryFieldStream streams, which it tells its type ID.
//
//   CKWTypeManifest* manifest = serializer->CreateTypeManifest(typeID, type);
//   manifest->WriteTypeHeader(type);   // P\T with "Type Manifest Name"
#pragma once

#include "kwcore/serial/CKWTypeManifest.h"

class CKWRegistrySerializer;

class KWCORE_API CKWRegistryTypeManifest : public CKWTypeManifest {
    KW_DECLARE_TYPE(CKWRegistryTypeManifest, CKWObjectTypeImpl)

public:
    // Opens or creates the type's key and names the type in it.
    int WriteTypeHeader(IKWObjectType* type) override;
    CKWFieldStream* CreateFieldStream(CKWGuid instanceID, IKWObjectType* objectType) override;
    // A stream for each sub-key of the type's key named after a GUID; 0
    // when the type's key cannot be opened.
    int LoadFieldStreams();

protected:
    CKWRegistryTypeManifest() = default;

    IKWObjectType* GetFieldStreamType() const override;

private:
    CKWRegistrySerializer* GetSerializer();
};
