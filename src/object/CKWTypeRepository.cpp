#include "kwcore/object/CKWTypeRepository.h"

int CKWTypeRepository::AddType(IKWObjectType* type) {
    if (!type) {
        return 0;
    }
    return m_types.emplace(type->GetID(), type).second ? 1 : 0;
}

IKWObjectType* CKWTypeRepository::FindType(const CKWGuid& typeID) const {
    auto found = m_types.find(typeID);
    return found == m_types.end() ? nullptr : found->second;
}
