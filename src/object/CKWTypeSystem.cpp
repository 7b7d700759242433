#include "kwcore/object/CKWTypeSystem.h"

#include <algorithm>

#include "kwcore/object/CKWObjectImpl.h"

// Constant-initialised, so type objects may register from any static constructor.
CKWTypeSystem* CKWTypeSystem::m_pInstance = nullptr;
IKWObjectType* CKWTypeSystem::m_rootTypes[kMaxRootTypes] = {};

CKWTypeSystem* CKWTypeSystem::GetInstance() {
    if (!m_pInstance) {
        m_pInstance = new CKWTypeSystem;
    }
    return m_pInstance;
}

int CKWTypeSystem::AddType(IKWObjectType* type) {
    if (!type) {
        return 0;
    }
    return GetInstance()->m_globalTypes.emplace(type->GetID(), type).second ? 1 : 0;
}

IKWObjectType* CKWTypeSystem::FindType(const CKWGuid& typeID) {
    const auto& types = GetInstance()->m_globalTypes;
    auto found = types.find(typeID);
    return found == types.end() ? nullptr : found->second;
}

CKWGuidMapIterator<IKWObjectType> CKWTypeSystem::GetGlobalIterator() {
    return CKWGuidMapIterator<IKWObjectType>(&GetInstance()->m_globalTypes);
}

CKWGuidMapIterator<IKWObjectType> CKWTypeSystem::GetRepositoryIterator(
    const CKWGuid& repositoryID) {
    const auto& repositories = GetInstance()->m_repositories;
    auto found = repositories.find(repositoryID);
    if (found == repositories.end()) {
        return CKWGuidMapIterator<IKWObjectType>();
    }
    return found->second->GetIterator();
}

void CKWTypeSystem::GetRepositoryIDs(std::list<CKWGuid>& repositoryIDs) {
    for (const auto& entry : GetInstance()->m_repositories) {
        repositoryIDs.push_back(entry.first);
    }
}

void CKWTypeSystem::Initialize(const CKWGuid& repositoryID) {
    CKWTypeSystem* system = GetInstance();
    AddMissingRootTypes();
    CKWTypeRepository& repository = system->RepositoryFor(repositoryID);
    system->LinkNewTypesToParents();
    system->CollectNewTypes(repository);
}

int CKWTypeSystem::AddRootType(IKWObjectType* type) {
    if (!type) {
        return 0;
    }
    IKWObjectType** end = m_rootTypes + kMaxRootTypes;
    if (std::find(m_rootTypes, end, type) != end) {
        return 0;
    }
    IKWObjectType** freeSlot = std::find(m_rootTypes, end, nullptr);
    if (freeSlot == end) {
        return 0;
    }
    *freeSlot = type;
    return 1;
}

void CKWTypeSystem::AddMissingRootTypes() {
    IKWObjectType* objectRoot = CKWObjectImpl::GetCKWObjectImplType();
    if (!FindType(objectRoot->GetID())) {
        AddType(objectRoot);
    }
    for (IKWObjectType* root : m_rootTypes) {
        if (root && !FindType(root->GetID())) {
            AddType(root);
        }
    }
}

CKWTypeRepository& CKWTypeSystem::RepositoryFor(const CKWGuid& repositoryID) {
    CKWTypeRepository*& repository = m_repositories[repositoryID];
    if (!repository) {
        repository = new CKWTypeRepository(repositoryID);
    }
    return *repository;
}

// Parents are linked for every new type before any new type is initialised,
// so InitializeType can rely on the whole ancestry.
void CKWTypeSystem::LinkNewTypesToParents() {
    for (const auto& entry : m_globalTypes) {
        IKWObjectType* type = entry.second;
        if (type->GetRepositoryID().IsValid()) {
            continue;
        }
        auto parent = m_globalTypes.find(type->GetParentTypeID());
        if (parent != m_globalTypes.end()) {
            type->RegisterWithParentType(parent->second);
        }
    }
}

void CKWTypeSystem::CollectNewTypes(CKWTypeRepository& repository) {
    for (const auto& entry : m_globalTypes) {
        IKWObjectType* type = entry.second;
        if (type->GetRepositoryID().IsValid()) {
            continue;
        }
        type->InitializeType();
        type->SetRepositoryID(repository.GetID());
        repository.AddType(type);
    }
}

void CKWTypeSystem::ReleaseTypesOf(CKWTypeRepository& repository) {
    for (const auto& entry : repository.m_types) {
        auto registered = m_globalTypes.find(entry.first);
        if (registered != m_globalTypes.end() && registered->second == entry.second) {
            m_globalTypes.erase(registered);
        }
        entry.second->Release();
    }
    repository.m_types.clear();
}

void CKWTypeSystem::ReleaseRepository(const CKWGuid& repositoryID) {
    CKWTypeSystem* system = GetInstance();
    auto found = system->m_repositories.find(repositoryID);
    if (found == system->m_repositories.end()) {
        return;
    }
    CKWTypeRepository* repository = found->second;
    system->m_repositories.erase(found);
    system->ReleaseTypesOf(*repository);
    delete repository;
}

void CKWTypeSystem::Release() {
    CKWTypeSystem* system = m_pInstance;
    if (!system) {
        return;
    }
    for (auto& entry : system->m_repositories) {
        system->ReleaseTypesOf(*entry.second);
        delete entry.second;
    }
    system->m_repositories.clear();
    m_pInstance = nullptr;
    delete system;
}

void CKWTypeSystem::ForgetType(IKWObjectType* type) {
    for (IKWObjectType*& slot : m_rootTypes) {
        if (slot == type) {
            slot = nullptr;
        }
    }
    CKWTypeSystem* system = m_pInstance;
    if (!system) {
        return;
    }
    auto registered = system->m_globalTypes.find(type->GetID());
    if (registered != system->m_globalTypes.end() && registered->second == type) {
        system->m_globalTypes.erase(registered);
    }
    auto repository = system->m_repositories.find(type->GetRepositoryID());
    if (repository != system->m_repositories.end()) {
        auto& types = repository->second->m_types;
        auto entry = types.find(type->GetID());
        if (entry != types.end() && entry->second == type) {
            types.erase(entry);
        }
    }
}
