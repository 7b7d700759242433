#include "kwcore/object/CKWObjectTypeImpl.h"

#include "KWInstanceTable.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/platform/CKWTrace.h"

CKWObjectTypeImpl::CKWObjectTypeImpl()
    : m_pTrackedInstances(new kwInstanceTracking::InstanceTable) {}

CKWObjectTypeImpl::~CKWObjectTypeImpl() {
    CKWTypeSystem::ForgetType(this);
}

int CKWObjectTypeImpl::GetInstanceCount() const {
    return m_pTrackedInstances->GetCount();
}

IKWObject* CKWObjectTypeImpl::FindInstance(const CKWGuid& instanceID) const {
    return m_pTrackedInstances->Find(instanceID);
}

void CKWObjectTypeImpl::SetID(CKWGuid typeID) {
    m_typeID = typeID;
    CKWTypeSystem::AddType(this);
}

void CKWObjectTypeImpl::Release() {
    int leftover = GetInstanceCount();
    if (leftover > 0) {
        CKWTrace::Write("Warning! %d instances of class %s were not released\n", leftover,
                        static_cast<const char*>(GetName()));
    }
    ReleaseTrackedInstances();
    m_derivedTypes.clear();
}

// Lowest instance ID first; each entry leaves the table before its object is
// released. Passes repeat in case releasing one object made another.
void CKWObjectTypeImpl::ReleaseTrackedInstances() {
    while (GetInstanceCount() > 0) {
        for (const CKWGuid& id : m_pTrackedInstances->GetSortedIDs()) {
            IKWObject* object = m_pTrackedInstances->Find(id);
            if (object) {
                m_pTrackedInstances->Erase(id, object);
                object->Release();
            }
        }
    }
}

int CKWObjectTypeImpl::RegisterWithParentType(IKWObjectType* parent) {
    if (!parent || !parent->AddChildType(this)) {
        return 0;
    }
    m_pParentType = parent;
    return 1;
}

IKWObject* CKWObjectTypeImpl::CreateInstance(CKWGuid instanceID) {
    IKWObject* object = CTOR();
    if (!object) {
        return nullptr;
    }
    object->SetInstanceID(instanceID.IsValid() ? instanceID : CKWGuid::CreateNewGUID());
    if (!object->OnInitialize()) {
        // OnBeforeRelease runs on the half-made object and must cope with it.
        ReleaseInstance(object);
        return nullptr;
    }
    AddTrackedInstance(object);
    return object;
}

int CKWObjectTypeImpl::ReleaseInstance(IKWObject* object) {
    if (!object || !object->OnBeforeRelease()) {
        return 0;
    }
    RemoveTrackedInstance(object);
    DTOR(object);
    return 1;
}

int CKWObjectTypeImpl::AddChildType(IKWObjectType* child) {
    if (!child) {
        return 0;
    }
    return m_derivedTypes.emplace(child->GetID(), child).second ? 1 : 0;
}

// Both IsTypeOf forms ask the parent through its virtual operation, so a type
// class that refines IsTypeOf is honoured all the way up the chain.
int CKWObjectTypeImpl::IsTypeOf(IKWObjectType* type) {
    if (!type) {
        return 0;
    }
    if (type == this) {
        return 1;
    }
    return m_pParentType ? m_pParentType->IsTypeOf(type) : 0;
}

int CKWObjectTypeImpl::IsTypeOf(CKWGuid typeID) {
    if (!typeID.IsValid()) {
        return 0;
    }
    if (typeID == m_typeID) {
        return 1;
    }
    return m_pParentType ? m_pParentType->IsTypeOf(typeID) : 0;
}

void CKWObjectTypeImpl::GetInstanceList(std::list<CKWGuid>& instanceIDs) {
    for (const CKWGuid& id : m_pTrackedInstances->GetSortedIDs()) {
        instanceIDs.push_back(id);
    }
}

void CKWObjectTypeImpl::GetDerivedTypes(std::list<IKWObjectType*>& types) {
    for (const auto& entry : m_derivedTypes) {
        IKWObjectType* child = entry.second;
        if (child->HasDerivedTypes()) {
            child->GetDerivedTypes(types);
        }
        types.push_back(child);
    }
}

// Only the entry that holds this very object is dropped: an object made with
// an instance ID that another live instance already bears was never tracked
// and must not untrack the other one.
void CKWObjectTypeImpl::RemoveTrackedInstance(IKWObject* object) {
    if (object) {
        m_pTrackedInstances->Erase(object->GetInstanceID(), object);
    }
}

void CKWObjectTypeImpl::AddTrackedInstance(IKWObject* object) {
    if (object) {
        m_pTrackedInstances->Insert(object->GetInstanceID(), object);
    }
}

void CKWObjectTypeImpl::ChangeInstanceID(IKWObject* object, const CKWGuid& instanceID) {
    if (!object || object->GetInstanceID() == instanceID) {
        return;
    }
    IKWObjectType* type = object->GetType();
    if (type) {
        type->RemoveTrackedInstance(object);
    }
    object->SetInstanceID(instanceID);
    if (type) {
        type->AddTrackedInstance(object);
    }
}

int CKWObjectTypeImpl::ReleaseInstances() {
    int released = 0;
    for (const CKWGuid& id : m_pTrackedInstances->GetSortedIDs()) {
        IKWObject* object = m_pTrackedInstances->Find(id);
        if (object && object->Release()) {
            ++released;
        }
    }
    return released;
}
