// The children of each level of the stored hierarchy (an archive's
// documents, a document's type manifests, a manifest's field streams): made,
// deleted and found by GUID. Each level keeps its children in a GUID map and
// owns them.
#pragma once

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/IKWObjectType.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWTypeManifest.h"

namespace kwStoredHierarchy {

// A new child of class Child made by type under id (a new GUID when empty and
// allowEmptyID) and entered in children; null when id is taken, type makes
// no Child, or the child cannot be entered.
template <class Child>
Child* CreateChild(IKWObjectType* type, const CKWGuid& id, bool allowEmptyID,
                   CKWObjGuidPtrMap<Child>& children) {
    if (!type || (!id.IsValid() && !allowEmptyID) || children.FindObject(id)) {
        return nullptr;
    }
    IKWObject* object = type->CreateInstance(id);
    auto* child = dynamic_cast<Child*>(object);
    if (!child) {
        if (object) {
            object->Release();
        }
        return nullptr;
    }
    if (!children.Add(child)) {
        child->Release();
        return nullptr;
    }
    return child;
}

// Takes the child out of children and releases it; 0 when there is none.
template <class Child>
int DeleteChild(const CKWGuid& id, CKWObjGuidPtrMap<Child>& children) {
    Child* child = children.FindObject(id);
    if (!child) {
        return 0;
    }
    children.Remove(child);
    child->Release();
    return 1;
}

// The manifest stored under typeID in the document's collection, or null.
inline CKWTypeManifest* FindTypeManifest(CKWDocument* document, const CKWGuid& typeID) {
    IKWReadOnlyCollection* manifests = document->GetTypeManifestCollection();
    return manifests ? static_cast<CKWTypeManifest*>(manifests->Find(typeID)) : nullptr;
}

// The stream side of the field stream stored under instanceID, or null.
inline IKWFieldStream* FindFieldStream(CKWTypeManifest* manifest, const CKWGuid& instanceID) {
    IKWReadOnlyCollection* streams = manifest->GetInstanceFieldStreamCollection();
    auto* stream = streams ? static_cast<CKWFieldStream*>(streams->Find(instanceID)) : nullptr;
    return stream ? static_cast<IKWFieldStream*>(stream->GetInterface(IID_IKWFieldStream))
                  : nullptr;
}

}  // namespace kwStoredHierarchy
