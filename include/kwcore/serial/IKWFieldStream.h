// IKWFieldStream: where one object's fields are written and read.
//
// A back-end's field stream decides the stored form of every value; the
// field data hand themselves to Write and Read, and links go through
// WriteLink(s) and ReadLink(s) as (type ID, instance ID) pairs, resolved on
// load by the document (CKWDocument::GetObjectA). Reached through
// GetInterface(IID_IKWFieldStream) of a CKWFieldStream, which owns it.
//
//   auto* stream = static_cast<IKWFieldStream*>(fs->GetInterface(IID_IKWFieldStream));
//   stream->Write(fieldData);
#pragma once

#include "kwcore/object/CKWGuid.h"
#include "kwcore/object/IKWCollection.h"
#include "kwcore/object/IKWIterator.h"
#include "kwcore/platform/Export.h"

class CKWDocument;
class IKWFieldData;
class IKWObject;

// {098F1AA7-F503-4856-A575-AF4A04974767}
inline constexpr GUID IID_IKWFieldStream = {
    0x098F1AA7, 0xF503, 0x4856, {0xA5, 0x75, 0xAF, 0x4A, 0x04, 0x97, 0x47, 0x67}};

class KWCORE_API IKWFieldStream {
public:
    virtual CKWDocument* GetDocument() = 0;
    virtual void SetDocument(CKWDocument* document) = 0;
    virtual int WriteObjectHeader(IKWObject* object) = 0;
    virtual int Write(IKWFieldData* fieldData) = 0;
    virtual int ReadObjectHeader(IKWObject* object) = 0;
    virtual int Read(IKWFieldData* fieldData) = 0;
    // 1 when the stream's object was written or read in that session.
    virtual int ObjectHasBeenSerialized(CKWGuid sessionID) = 0;
    virtual void SetObjectSerialized(CKWGuid sessionID) = 0;
    // The object the link field refers to, loaded on demand; null when unset.
    virtual IKWObject* ReadLink(IKWFieldData* fieldData) = 0;
    // Adds each referenced object to collection.
    virtual int ReadLinks(IKWFieldData* fieldData, IKWCollection<IKWObject>* collection) = 0;
    // object may be null (an unset link).
    virtual int WriteLink(IKWFieldData* fieldData, IKWObject* object) = 0;
    virtual int WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) = 0;
    // The object read from this stream, or null.
    virtual IKWObject* GetResult() = 0;
    virtual void SetResult(IKWObject* object) = 0;

protected:
    ~IKWFieldStream() = default;
};
