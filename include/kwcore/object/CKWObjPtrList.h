// CKWObjPtrList<T>: framework objects in insertion order.
//
// Holds plain, non-owning pointers, each at most once. Large lists keep a
// pointer index beside the list, so Add and Remove stay constant-time for
// the million-node walks of graph visitors while small lists (a node's
// edges) cost no more than the list itself. The index is brought up to date
// by the lookups that need it, so elements appended with AddNew cost no
// hashing until then. The first few list nodes live inside the list object
// (see CKWListNodeArena). Find by instance ID scans.
//
//   CKWObjPtrList<CKWGraphEdge> edges;
//   edges.Add(edge);
//   auto it = edges.GetIterator();
//   for (CKWGraphEdge* e = it.GetNext(1); e; e = it.GetNext(0)) { ... }
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <memory>
#include <type_traits>
#include <unordered_map>

#include "kwcore/object/CKWListNodeArena.h"
#include "kwcore/object/IKWCollection.h"
#include "kwcore/object/IKWIterator.h"

template <class T>
class CKWObjPtrList : public IKWCollection<T> {
public:
    using List = std::list<T*, CKWListNodeAllocator<T*>>;

    template <class Position>
    class BasicIterator : public IKWIterator<T> {
    public:
        BasicIterator() = default;
        BasicIterator(const List* list, Position first, Position end)
            : m_pList(list), m_current(first), m_end(end) {}

        T* GetNext(int bFromStart) override {
            if (!m_pList) {
                return nullptr;
            }
            Reset(bFromStart);
            if (m_current == m_end) {
                return nullptr;
            }
            return *m_current++;
        }

        void Reset(int bFromStart) override {
            if (bFromStart && m_pList) {
                m_current = First();
            }
        }

        bool IsValid() override { return m_pList != nullptr; }

    private:
        Position First() const;

        const List* m_pList = nullptr;
        Position m_current{};
        Position m_end{};
    };

    using Iterator = BasicIterator<typename List::const_iterator>;
    using ReverseIterator = BasicIterator<typename List::const_reverse_iterator>;

    CKWObjPtrList() = default;
    CKWObjPtrList(const CKWObjPtrList& other)
        : m_list(other.m_list.begin(), other.m_list.end(), OwnAllocator()) {}
    CKWObjPtrList(CKWObjPtrList&& other) noexcept { TakeFrom(other); }
    CKWObjPtrList& operator=(const CKWObjPtrList& other) {
        if (this != &other) {
            m_list = other.m_list;
            DropIndex();
            ++m_iChanges;
        }
        return *this;
    }
    CKWObjPtrList& operator=(CKWObjPtrList&& other) noexcept {
        if (this != &other) {
            TakeFrom(other);
            ++m_iChanges;
        }
        return *this;
    }
    ~CKWObjPtrList() = default;

    int GetCount() override { return static_cast<int>(m_list.size()); }
    int GetCount() const { return static_cast<int>(m_list.size()); }

    void* Find(CKWGuid instanceID) override { return FindObject(instanceID); }

    // The first element, from the front, whose instance ID equals instanceID.
    T* FindObject(const CKWGuid& instanceID) const {
        for (T* element : m_list) {
            if (element->GetInstanceID() == instanceID) {
                return element;
            }
        }
        return nullptr;
    }

    bool Contains(const T* element) const { return Locate(element) != m_list.end(); }

    int Add(T* element) override {
        if (!element || Contains(element)) {
            return 0;
        }
        m_list.push_back(element);
        if (m_pIndex) {
            m_pIndex->emplace(element, std::prev(m_list.end()));
            ++m_iIndexed;
        }
        ++m_iChanges;
        return 1;
    }

    // Appends an element the caller knows the list does not hold, without
    // looking for it. Appending a held element breaks the list.
    void AddNew(T* element) {
        m_list.push_back(element);
        ++m_iChanges;
    }

    // Grows with every change to the list, so a caller can tell whether
    // what it knows about the list still holds.
    std::uint64_t GetChangeCount() const { return m_iChanges; }

    int Remove(T* element) override {
        auto position = Locate(element);
        if (position == m_list.end()) {
            return 0;
        }
        if (m_pIndex) {
            m_pIndex->erase(element);
            --m_iIndexed;
        }
        m_list.erase(position);
        ++m_iChanges;
        return 1;
    }

    // With bRelease, releases the elements from front to back. Each element
    // leaves the list before it is released, so a release that removes other
    // elements from this list (or the element itself) is safe.
    void RemoveAll(bool bRelease) override {
        while (bRelease && !m_list.empty()) {
            T* element = m_list.front();
            if (m_iIndexed > 0) {
                m_pIndex->erase(element);
                --m_iIndexed;
            }
            m_list.pop_front();
            ++m_iChanges;
            element->Release();
        }
        m_list.clear();
        m_arena.ReleaseBlocks();
        DropIndex();
        ++m_iChanges;
    }

    Iterator GetIterator() const { return Iterator(&m_list, m_list.begin(), m_list.end()); }
    ReverseIterator GetReverseIterator() const {
        return ReverseIterator(&m_list, m_list.rbegin(), m_list.rend());
    }

    // Range-based walks: for (T* element : list) { ... }
    typename List::const_iterator begin() const { return m_list.begin(); }
    typename List::const_iterator end() const { return m_list.end(); }

private:
    using Index = std::unordered_map<T*, typename List::const_iterator>;
    static constexpr std::size_t kIndexThreshold = 16;

    typename List::const_iterator Locate(const T* element) const;
    void UpdateIndex() const;
    void DropIndex() {
        m_pIndex.reset();
        m_iIndexed = 0;
    }
    void TakeFrom(CKWObjPtrList& other);
    typename List::allocator_type OwnAllocator() { return typename List::allocator_type(&m_arena); }

    // Before the list, which may take nodes from it as it is made.
    CKWListNodeArena m_arena;
    List m_list{OwnAllocator()};
    mutable std::unique_ptr<Index> m_pIndex;
    mutable std::size_t m_iIndexed = 0;
    std::uint64_t m_iChanges = 0;
};

template <class T>
inline typename CKWObjPtrList<T>::List::const_iterator CKWObjPtrList<T>::Locate(
    const T* element) const {
    if (!element) {
        return m_list.end();
    }
    UpdateIndex();
    if (m_pIndex) {
        auto found = m_pIndex->find(const_cast<T*>(element));
        return found == m_pIndex->end() ? m_list.end() : found->second;
    }
    return std::find(m_list.begin(), m_list.end(), element);
}

// The index holds the first m_iIndexed elements; this adds the rest, and
// makes the index once the list has grown past the threshold.
template <class T>
inline void CKWObjPtrList<T>::UpdateIndex() const {
    if (!m_pIndex) {
        if (m_list.size() <= kIndexThreshold) {
            return;
        }
        m_pIndex = std::make_unique<Index>();
        m_pIndex->reserve(m_list.size());
    }
    auto position =
        std::prev(m_list.end(), static_cast<std::ptrdiff_t>(m_list.size() - m_iIndexed));
    for (; position != m_list.end(); ++position) {
        m_pIndex->emplace(*position, position);
    }
    m_iIndexed = m_list.size();
}

// The elements move one by one into this list's own nodes, so the index
// (which points at nodes) is made again when next needed.
template <class T>
inline void CKWObjPtrList<T>::TakeFrom(CKWObjPtrList& other) {
    m_list = std::move(other.m_list);
    DropIndex();
    other.m_list.clear();
    other.m_arena.ReleaseBlocks();
    other.DropIndex();
    ++other.m_iChanges;
}

template <class T>
template <class Position>
Position CKWObjPtrList<T>::BasicIterator<Position>::First() const {
    if constexpr (std::is_same_v<Position, typename List::const_iterator>) {
        return m_pList->begin();
    } else {
        return m_pList->rbegin();
    }
}
