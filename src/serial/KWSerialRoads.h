// Lookups shared by the save and load roads.
#pragma once

#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWTypeManifest.h"

// The manifest stored under typeID in the document's collection, or null.
inline CKWTypeManifest* KWFindManifest(CKWDocument* document, const CKWGuid& typeID) {
    IKWReadOnlyCollection* manifests = document->GetTypeManifestCollection();
    return manifests ? static_cast<CKWTypeManifest*>(manifests->Find(typeID)) : nullptr;
}

// The stream side of the field stream stored under instanceID, or null.
inline IKWFieldStream* KWFindStream(CKWTypeManifest* manifest, const CKWGuid& instanceID) {
    IKWReadOnlyCollection* streams = manifest->GetInstanceFieldStreamCollection();
    auto* stream = streams ? static_cast<CKWFieldStream*>(streams->Find(instanceID)) : nullptr;
    return stream ? static_cast<IKWFieldStream*>(stream->GetInterface(IID_IKWFieldStream))
                  : nullptr;
}
