// IKWObjectType: the type object of a framework class.
//
// One static instance exists per class. It knows the class's type GUID, name,
// parent and derived types, makes and frees instances and tracks the ones it
// made. Type objects are owned by their classes (static storage), never by
// the type system that files them.
//
//   IKWObjectType* type = CKWTypeSystem::FindType(typeID);
//   if (type && type->IsTypeOf(CKWObjectImpl::GetCKWObjectImplType()->GetID())) { ... }
#pragma once

#include <list>

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class IKWObject;

class KWCORE_API IKWObjectType {
public:
    virtual CKWGuid GetID() = 0;

protected:
    virtual void SetID(CKWGuid typeID) = 0;

public:
    virtual CKWGuid GetParentTypeID() = 0;

protected:
    virtual void SetParentTypeID(CKWGuid parentTypeID) = 0;

public:
    // Reports and releases leftover instances and forgets the derived types.
    virtual void Release() = 0;
    virtual void SetName(CString name) = 0;
    virtual CString GetName() = 0;
    virtual CString GetClassNameA() = 0;
    virtual int IsAbstract() = 0;
    virtual int HasDerivedTypes() = 0;
    // Called once when the type is collected into a repository.
    virtual void InitializeType() = 0;
    virtual int RegisterWithParentType(IKWObjectType* parent) = 0;
    virtual IKWObjectType* GetParentType() = 0;
    virtual CKWGuid GetRepositoryID() = 0;

protected:
    virtual void SetRepositoryID(CKWGuid repositoryID) = 0;

public:
    // A new initialised instance bearing instanceID (a fresh GUID when
    // instanceID is empty), or null.
    virtual IKWObject* CreateInstance(CKWGuid instanceID) = 0;
    // 1 when the object agreed and was freed; 0 when it refused.
    virtual int ReleaseInstance(IKWObject* object) = 0;
    virtual int AddChildType(IKWObjectType* child) = 0;
    // 1 when this type is `type` or one of its descendants (object identity).
    virtual int IsTypeOf(IKWObjectType* type) = 0;
    // 1 when typeID names this type or one of its ancestors.
    virtual int IsTypeOf(CKWGuid typeID) = 0;
    // Appends the IDs of the live instances, in ascending order.
    virtual void GetInstanceList(std::list<CKWGuid>& instanceIDs) = 0;
    // Appends every descendant: for each child in ascending ID order, the
    // child's own descendants first, then the child.
    virtual void GetDerivedTypes(std::list<IKWObjectType*>& types) = 0;
    virtual void RemoveTrackedInstance(IKWObject* object) = 0;
    virtual void AddTrackedInstance(IKWObject* object) = 0;
    virtual ~IKWObjectType() = default;
    virtual void SetClassName(CString className) = 0;

protected:
    virtual IKWObject* CTOR() = 0;
    virtual void DTOR(IKWObject* object) = 0;

    friend class CKWTypeSystem;
};
