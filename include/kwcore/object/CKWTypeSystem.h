// CKWTypeSystem: the process-wide registry of type objects.
//
// Every type object registers itself (by type ID) when it is constructed.
// Each module then collects the types it brought into a repository of its
// own with one Initialize call, which links each new type to its parent. The
// library collects its own types into LIBRARY_REPOSITORY_ID while it loads,
// before a host's main runs.
//
//   // in a host's main, or a plug-in's start-up:
//   CKWTypeSystem::Initialize(CKWGuid("{6c1f...}"));
//   IKWObjectType* type = CKWTypeSystem::FindType(typeID);
//   IKWObject* object = type ? type->CreateInstance(CKWGuid()) : nullptr;
//
// Not thread-safe: registration, Initialize and lookups belong to the main
// thread (static initialisation and module loading included).
#pragma once

#include <list>
#include <map>

#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/CKWTypeRepository.h"
#include "kwcore/object/IKWObjectType.h"

class KWCORE_API CKWTypeSystem {
public:
    // {8F3C2A61-5B0E-4D7A-A9C4-1E6B0D52F317}: the repository of the library's own types.
    static constexpr GUID LIBRARY_REPOSITORY_ID = {
        0x8F3C2A61, 0x5B0E, 0x4D7A, {0xA9, 0xC4, 0x1E, 0x6B, 0x0D, 0x52, 0xF3, 0x17}};

    // 1 when registered; 0 for null or when a type with that ID is already
    // registered (the first registration wins).
    static int AddType(IKWObjectType* type);
    // The registered type with that ID, or null.
    static IKWObjectType* FindType(const CKWGuid& typeID);
    // Every registered type, in ascending type-ID order.
    static CKWGuidMapIterator<IKWObjectType> GetGlobalIterator();
    // The types of one repository; a detached iterator when there is none.
    static CKWGuidMapIterator<IKWObjectType> GetRepositoryIterator(const CKWGuid& repositoryID);
    // Collects the types registered since the last call into the repository.
    static void Initialize(const CKWGuid& repositoryID);
    // Releases the repository's types (and their leftover instances), takes
    // them out of the registry and deletes the repository.
    static void ReleaseRepository(const CKWGuid& repositoryID);
    // Releases every repository, then the type system itself.
    static void Release();

    // The IDs of the repositories, in ascending order.
    static void GetRepositoryIDs(std::list<CKWGuid>& repositoryIDs);

    // Names a root type of a layer above the object model (the serializable
    // object's type): Initialize re-adds it when it is missing, as it does
    // CKWObjectImpl's. Survives Release. 0 for null, a full table or a type
    // already named.
    static int AddRootType(IKWObjectType* type);

protected:
    static CKWTypeSystem* GetInstance();

private:
    friend class CKWObjectTypeImpl;

    CKWTypeSystem() = default;
    ~CKWTypeSystem() = default;

    // Drops a type object that is being destroyed, without creating the type system.
    static void ForgetType(IKWObjectType* type);

    CKWTypeRepository& RepositoryFor(const CKWGuid& repositoryID);
    void LinkNewTypesToParents();
    void CollectNewTypes(CKWTypeRepository& repository);
    void ReleaseTypesOf(CKWTypeRepository& repository);

    static void AddMissingRootTypes();

    static CKWTypeSystem* m_pInstance;
    // Constant-initialised, so layers may name root types from static constructors.
    static constexpr int kMaxRootTypes = 4;
    static IKWObjectType* m_rootTypes[kMaxRootTypes];

    std::map<CKWGuid, CKWTypeRepository*> m_repositories;
    std::map<CKWGuid, IKWObjectType*> m_globalTypes;
};
