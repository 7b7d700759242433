// CKWGuidMapIterator<T>: walks a map from GUID to T* in ascending key order.
//
// Serves the object maps (CKWObjGuidPtrMap) and the type system's maps of
// types. A default-constructed iterator is detached and yields nothing.
//
//   auto it = CKWTypeSystem::GetGlobalIterator();
//   for (IKWObjectType* type = it.GetNext(1); type; type = it.GetNext(0)) { ... }
#pragma once

#include <map>

#include "kwcore/object/CKWGuid.h"
#include "kwcore/object/IKWIterator.h"

template <class T>
class CKWGuidMapIterator : public IKWIterator<T> {
public:
    using Map = std::map<CKWGuid, T*>;

    CKWGuidMapIterator() = default;
    explicit CKWGuidMapIterator(const Map* map) : m_pMap(map) {
        if (m_pMap) {
            m_current = m_pMap->begin();
        }
    }

    T* GetNext(int bFromStart) override {
        if (!m_pMap) {
            return nullptr;
        }
        if (bFromStart) {
            m_current = m_pMap->begin();
        }
        if (m_current == m_pMap->end()) {
            return nullptr;
        }
        return (m_current++)->second;
    }

    void Reset(int bFromStart) override {
        if (bFromStart && m_pMap) {
            m_current = m_pMap->begin();
        }
    }

    bool IsValid() override { return m_pMap != nullptr; }

private:
    const Map* m_pMap = nullptr;
    typename Map::const_iterator m_current;
};
