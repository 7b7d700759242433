// IKWObject: a framework object with an instance GUID and a type object.
//
// Life: made by its type (IKWObjectType::CreateInstance), which assigns the
// instance ID and calls OnInitialize; ended by Release, which hands the object
// back to its type. Ownership is single: whoever calls Release must own the
// pointer, and every other pointer to the object dangles afterwards.
//
//   IKWObject* p = CKWTypeSystem::FindType(typeID)->CreateInstance(CKWGuid());
//   ...
//   p->Release();
#pragma once

#include "kwcore/object/IKWUnknown.h"

class IKWObjectType;

class KWCORE_API IKWObject : public IKWUnknown {
public:
    virtual CKWGuid GetInstanceID() = 0;

protected:
    virtual void SetInstanceID(CKWGuid instanceID) = 0;

public:
    virtual IKWObjectType* GetType() = 0;
    // 1 when the object's type is the given type or derives from it.
    virtual int IsTypeOf(CKWGuid typeID) = 0;
    // An object compares equal to its instance ID, not to other objects.
    virtual bool operator==(CKWGuid instanceID) = 0;
    // 1 when released (the pointer is gone), 0 when the object refused.
    virtual int Release() = 0;

protected:
    // Gives back everything the object owns; 0 refuses the release.
    virtual int OnBeforeRelease() = 0;
    // 0 makes creation fail (the object is then released at once).
    virtual int OnInitialize() = 0;

public:
    // Only a type's DTOR deletes an object (client code calls Release). The
    // destructor is virtual, so `delete object` there runs the object's own
    // destructor. Declared last so it follows the operations above.
    virtual ~IKWObject() = default;

protected:
    // The type object drives the life cycle.
    friend class CKWObjectTypeImpl;
};
