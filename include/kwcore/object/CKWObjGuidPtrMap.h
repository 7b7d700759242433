// CKWObjGuidPtrMap<T>: framework objects keyed by their instance IDs.
//
// Holds plain, non-owning pointers in ascending instance-ID order. The key is
// taken when an element is added: an element whose ID changes later keeps
// its old key. Only RemoveAll(true) releases elements.
//
//   CKWObjGuidPtrMap<CKWDocument> documents;
//   documents.Add(doc);
//   CKWDocument* same = documents.FindObject(doc->GetInstanceID());
#pragma once

#include <map>

#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/IKWCollection.h"

template <class T>
class CKWObjGuidPtrMap : public IKWCollection<T> {
public:
    using Iterator = CKWGuidMapIterator<T>;
    using Map = std::map<CKWGuid, T*>;

    int GetCount() const override { return static_cast<int>(m_map.size()); }

    void* Find(const CKWGuid& instanceID) const override { return FindObject(instanceID); }

    T* FindObject(const CKWGuid& instanceID) const {
        auto found = m_map.find(instanceID);
        return found == m_map.end() ? nullptr : found->second;
    }

    int Add(T* element) override {
        if (!element) {
            return 0;
        }
        return m_map.emplace(element->GetInstanceID(), element).second ? 1 : 0;
    }

    // Erases the element's current instance ID, whatever object that key holds.
    int Remove(T* element) override {
        if (!element) {
            return 0;
        }
        return m_map.erase(element->GetInstanceID()) ? 1 : 0;
    }

    void RemoveAll(bool bRelease) override {
        if (bRelease) {
            ReleaseAll();
        } else {
            m_map.clear();
        }
    }

    // Releases every element, lowest key first. Each entry is erased before
    // its element is released, so the element is unreachable through the map
    // while it goes. Stops at a null entry and gives 0; otherwise 1.
    int ReleaseAll() {
        while (!m_map.empty()) {
            auto first = m_map.begin();
            T* element = first->second;
            m_map.erase(first);
            if (!element) {
                return 0;
            }
            element->Release();
        }
        return 1;
    }

    Iterator GetIterator() const { return Iterator(&m_map); }

    // Read access to the underlying map, for range-based walks.
    const Map& GetMap() const { return m_map; }

private:
    Map m_map;
};
