// CKWRegistryFieldStream: the fields of one object in a registry
// serializer, the values of the key P\T\I.
//
// A plain field is a REG_SZ value holding its text; a link or link
// collection is a REG_BINARY string list holding "T:" + type ID and
// "I:" + instance ID for each target. When the object's key is missing,
// writes and reads do nothing and still succeed. Made by
// CKWRegistryTypeManifest::CreateFieldStream.
//
//   stream->WriteObjectHeader(object);   // P\T\I, created when missing
//   stream->Write(nameData);             // value "m_Name" = "wheel"
#pragma once

#include <vector>

#include "kwcore/serial/CKWFieldStream.h"

class CKWRegistrySerializer;
class CStringList;

class KWCORE_API CKWRegistryFieldStream : public CKWFieldStream {
    KW_DECLARE_TYPE(CKWRegistryFieldStream, CKWObjectTypeImpl)

public:
    // The type ID of the object the stream stores.
    void SetTypeID(CKWGuid typeID) { m_typeID = typeID; }
    CKWGuid GetTypeID() const { return m_typeID; }

    // Opens or creates the object's key.
    int WriteObjectHeader(IKWObject* object) override;
    int Write(IKWFieldData* fieldData) override;
    int Read(IKWFieldData* fieldData) override;
    IKWObject* ReadLink(IKWFieldData* fieldData) override;
    // kept: a link that does not resolve is added as a null entry.
    int ReadLinks(IKWFieldData* fieldData, IKWCollection<IKWObject>* collection) override;
    // A null object writes an empty list.
    int WriteLink(IKWFieldData* fieldData, IKWObject* object) override;
    int WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) override;

protected:
    CKWRegistryFieldStream() = default;

private:
    CKWRegistrySerializer* GetSerializer();
    // Opens the object's key as the serializer's current key.
    int VerifyObjectKey(CKWRegistrySerializer* serializer);
    int WriteLinkList(IKWFieldData* fieldData, CStringList& links);
    // The stored objects of the field's list, in order, null for those
    // that do not resolve; none when the list cannot be read.
    std::vector<IKWObject*> ReadLinkList(IKWFieldData* fieldData);

    CKWGuid m_typeID;
};
