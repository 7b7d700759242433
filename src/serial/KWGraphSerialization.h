// Saving and loading whole object graphs, driven by an explicit work list
// instead of recursion, so graphs of any depth (a chain of a million linked
// objects) are saved and loaded on an ordinary thread stack.
//
// Saving: an object's fields are written one at a time; the objects a field
// links to are queued while it is written and saved, each with everything it
// links to, before the next field: the order of recursive saving, so files
// come out the same. Loading: each field is read once. An object not read
// yet that a field links to is made (with its stored instance ID) and its
// header read while the field is read, so the link resolves to it at once;
// its fields are read after that field, each object with everything it links
// to, before the object's next field: the order of recursive loading. Should
// such an object fail to load, the field is read again without it, and it is
// released, unless an object read meanwhile links to it.
#pragma once

#include "kwcore/serial/CKWDocument.h"

class IKWSerializableAdaptor;
class IKWFieldStream;

namespace kwGraphSerialization {

// Saves the object and everything it links to; 1 on success.
int SaveGraph(CKWDocument* document, IKWSerializableAdaptor* adaptor);
// A link met while a field is written: queued during a save of the stream's
// document, saved at once otherwise.
int SaveLinkedObject(IKWFieldStream* stream, IKWObject* object);
// Reads an existing object from its stream, and everything it links to.
int LoadGraph(CKWDocument* document, IKWSerializableAdaptor* adaptor, CKWTypeManifest* manifest,
              IKWFieldStream* stream);
// The stored object with that type and instance ID, loaded on first request
// with everything it links to (CKWDocument::GetObjectA).
IKWObject* GetStoredObject(CKWDocument* document, const CKWGuid& typeID, const CKWGuid& instanceID);

}  // namespace kwGraphSerialization
