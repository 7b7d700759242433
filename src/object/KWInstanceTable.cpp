#include "KWInstanceTable.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kwInstanceTracking {
namespace {

bool SameKey(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}

// Hosts may choose sequential IDs, so all 128 bits are mixed.
std::uint64_t Mix(const GUID& key) {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    std::memcpy(&low, &key, sizeof low);
    std::memcpy(&high, reinterpret_cast<const char*>(&key) + sizeof low, sizeof high);
    std::uint64_t h = low ^ (high * 0x9E3779B97F4A7C15ull);
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDull;
    h ^= h >> 33;
    return h;
}

GUID RawOf(const CKWGuid& id) {
    GUID raw;
    id.SetGUID(raw);
    return raw;
}

}  // namespace

std::size_t InstanceTable::HomeOf(const GUID& key) const {
    return static_cast<std::size_t>(Mix(key)) & (m_slots.size() - 1);
}

std::size_t InstanceTable::Locate(const GUID& key) const {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t index = HomeOf(key);
    while (m_slots[index].object && !SameKey(m_slots[index].key, key)) {
        index = (index + 1) & mask;
    }
    return index;
}

int InstanceTable::Insert(const CKWGuid& instanceID, IKWObject* object) {
    // Kept at most half full, so probe sequences stay short.
    if (2 * (m_count + 1) > m_slots.size()) {
        Rehash(std::max(kMinCapacity, 2 * m_slots.size()));
    }
    const GUID key = RawOf(instanceID);
    Slot& slot = m_slots[Locate(key)];
    if (slot.object) {
        return 0;
    }
    slot.key = key;
    slot.object = object;
    ++m_count;
    return 1;
}

IKWObject* InstanceTable::Find(const CKWGuid& instanceID) const {
    if (m_count == 0) {
        return nullptr;
    }
    return m_slots[Locate(RawOf(instanceID))].object;
}

void InstanceTable::Erase(const CKWGuid& instanceID, const IKWObject* object) {
    if (m_count == 0) {
        return;
    }
    const std::size_t index = Locate(RawOf(instanceID));
    if (!m_slots[index].object || m_slots[index].object != object) {
        return;
    }
    m_slots[index].object = nullptr;
    --m_count;
    ShiftBackFrom(index);
    // Give memory back after a mass release, without thrashing near the limit.
    if (m_slots.size() > kMinCapacity && 8 * m_count < m_slots.size()) {
        Rehash(std::max(kMinCapacity, m_slots.size() / 2));
    }
}

// Moves later entries of the probe run into the hole, so lookups never need
// tombstones: an entry moves back when its home is not within (hole, index].
void InstanceTable::ShiftBackFrom(std::size_t hole) {
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t index = (hole + 1) & mask; m_slots[index].object; index = (index + 1) & mask) {
        const std::size_t home = HomeOf(m_slots[index].key);
        const std::size_t distanceToHome = (index - home) & mask;
        const std::size_t distanceToHole = (index - hole) & mask;
        if (distanceToHome >= distanceToHole) {
            m_slots[hole] = m_slots[index];
            m_slots[index].object = nullptr;
            hole = index;
        }
    }
}

void InstanceTable::Rehash(std::size_t capacity) {
    std::vector<Slot> old(capacity, Slot{GUID(), nullptr});
    old.swap(m_slots);
    for (const Slot& slot : old) {
        if (slot.object) {
            m_slots[Locate(slot.key)] = slot;
        }
    }
}

std::vector<CKWGuid> InstanceTable::GetSortedIDs() const {
    std::vector<CKWGuid> ids;
    ids.reserve(m_count);
    for (const Slot& slot : m_slots) {
        if (slot.object) {
            ids.emplace_back(slot.key);
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

}  // namespace kwInstanceTracking
