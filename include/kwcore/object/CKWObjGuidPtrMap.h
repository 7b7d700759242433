// CKWObjGuidPtrMap<T>: framework objects keyed by their instance IDs.
//
// Holds plain, non-owning pointers in ascending instance-ID order. The key is
// taken when an element is added: an element whose ID changes later keeps
// its old key. Only RemoveAll(true) releases elements. Past a handful of
// elements a hash index sits beside the ordered map, so lookups by ID stay
// constant-time in the large maps that archives keep.
//
//   CKWObjGuidPtrMap<CKWDocument> documents;
//   documents.Add(doc);
//   CKWDocument* same = documents.FindObject(doc->GetInstanceID());
#pragma once

#include <map>
#include <memory>
#include <unordered_map>

#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/IKWCollection.h"

template <class T>
class CKWObjGuidPtrMap : public IKWCollection<T> {
public:
    using Iterator = CKWGuidMapIterator<T>;
    using Map = std::map<CKWGuid, T*>;

    CKWObjGuidPtrMap() = default;
    CKWObjGuidPtrMap(const CKWObjGuidPtrMap& other) : m_map(other.m_map) { RebuildIndex(); }
    CKWObjGuidPtrMap& operator=(const CKWObjGuidPtrMap& other) {
        if (this != &other) {
            m_map = other.m_map;
            RebuildIndex();
        }
        return *this;
    }

    int GetCount() override { return static_cast<int>(m_map.size()); }
    int GetCount() const { return static_cast<int>(m_map.size()); }

    void* Find(CKWGuid instanceID) override { return FindObject(instanceID); }

    T* FindObject(const CKWGuid& instanceID) const {
        if (m_pIndex) {
            auto found = m_pIndex->find(instanceID);
            return found == m_pIndex->end() ? nullptr : found->second;
        }
        auto found = m_map.find(instanceID);
        return found == m_map.end() ? nullptr : found->second;
    }

    int Add(T* element) override {
        if (!element) {
            return 0;
        }
        const CKWGuid& key = element->GetInstanceID();
        if (!m_map.emplace(key, element).second) {
            return 0;
        }
        if (m_pIndex) {
            m_pIndex->emplace(key, element);
        } else if (m_map.size() > kIndexThreshold) {
            RebuildIndex();
        }
        return 1;
    }

    // Erases the element's current instance ID, whatever object that key holds.
    int Remove(T* element) override {
        if (!element) {
            return 0;
        }
        const CKWGuid& key = element->GetInstanceID();
        if (m_pIndex) {
            m_pIndex->erase(key);
        }
        return m_map.erase(key) ? 1 : 0;
    }

    void RemoveAll(bool bRelease) override {
        if (bRelease) {
            ReleaseAll();
        } else {
            m_map.clear();
            m_pIndex.reset();
        }
    }

    // Releases every element, lowest key first. Each entry is erased before
    // its element is released, so the element is unreachable through the map
    // while it goes. Stops at a null entry and gives 0; otherwise 1.
    int ReleaseAll() {
        m_pIndex.reset();
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
    using Index = std::unordered_map<CKWGuid, T*>;
    static constexpr std::size_t kIndexThreshold = 16;

    void RebuildIndex() {
        m_pIndex.reset();
        if (m_map.size() <= kIndexThreshold) {
            return;
        }
        m_pIndex = std::make_unique<Index>(m_map.begin(), m_map.end());
    }

    Map m_map;
    std::unique_ptr<Index> m_pIndex;
};
