// The live instances of one type, keyed by instance ID.
//
// A flat open-addressing hash table (linear probing, backward-shift
// deletion): creating and releasing an object costs one probe sequence and
// no allocation, however many instances are alive. Ascending-ID views are
// made by sorting when they are asked for, which is rare (listing, and the
// accounting when a type is released).
#pragma once

#include <cstddef>
#include <vector>

#include "kwcore/object/CKWGuid.h"

class IKWObject;

namespace kwInstanceTracking {

class InstanceTable {
public:
    int GetCount() const { return static_cast<int>(m_count); }
    // 1 when added; 0 when an instance with that ID is already tracked.
    int Insert(const CKWGuid& instanceID, IKWObject* object);
    IKWObject* Find(const CKWGuid& instanceID) const;
    // Removes the entry for instanceID when it holds exactly that object.
    void Erase(const CKWGuid& instanceID, const IKWObject* object);
    // The tracked IDs in ascending order.
    std::vector<CKWGuid> GetSortedIDs() const;

private:
    struct Slot {
        GUID key;
        IKWObject* object;  // null marks an empty slot
    };

    static constexpr std::size_t kMinCapacity = 16;

    std::size_t HomeOf(const GUID& key) const;
    std::size_t Locate(const GUID& key) const;  // the slot holding key, or an empty one
    void Rehash(std::size_t capacity);
    void ShiftBackFrom(std::size_t hole);

    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
};

}  // namespace kwInstanceTracking
