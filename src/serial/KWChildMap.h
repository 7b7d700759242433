// Making and deleting the children of the stored hierarchy, which each level
// keeps in a GUID map and owns.
#pragma once

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/IKWObjectType.h"

// A new child of class Child made by type under id (a new GUID when empty and
// allowEmptyID) and entered in children; null when id is taken, type makes
// no Child, or the child cannot be entered.
template <class Child>
Child* KWCreateChild(IKWObjectType* type, const CKWGuid& id, bool allowEmptyID,
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
int KWDeleteChild(const CKWGuid& id, CKWObjGuidPtrMap<Child>& children) {
    Child* child = children.FindObject(id);
    if (!child) {
        return 0;
    }
    children.Remove(child);
    child->Release();
    return 1;
}
