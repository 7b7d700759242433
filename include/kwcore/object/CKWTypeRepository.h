// CKWTypeRepository: the types one module (the library, a host, a plug-in)
// contributed, keyed by type ID. Owned by the type system; the types in it
// are not owned.
//
//   CKWTypeRepository repository(repositoryID);
//   repository.AddType(CMyShape::GetCMyShapeType());
//   IKWObjectType* type = repository.FindType(typeID);
#pragma once

#include <map>

#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/IKWObjectType.h"

class KWCORE_API CKWTypeRepository {
public:
    explicit CKWTypeRepository(const CKWGuid& repositoryID) : m_repositoryID(repositoryID) {}

    CKWGuid GetID() const { return m_repositoryID; }
    int GetCount() const { return static_cast<int>(m_types.size()); }
    // 1 when added; 0 for null or a type ID already present.
    int AddType(IKWObjectType* type);
    IKWObjectType* FindType(const CKWGuid& typeID) const;
    CKWGuidMapIterator<IKWObjectType> GetIterator() const {
        return CKWGuidMapIterator<IKWObjectType>(&m_types);
    }
    const std::map<CKWGuid, IKWObjectType*>& GetTypes() const { return m_types; }

private:
    friend class CKWTypeSystem;

    CKWGuid m_repositoryID;
    std::map<CKWGuid, IKWObjectType*> m_types;
};
