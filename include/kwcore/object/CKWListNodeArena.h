// CKWListNodeArena: where the nodes of one std::list of pointers live, and
// the allocator that uses it.
//
// Graph walks follow a node's short edge list at every step; with its first
// nodes stored beside the list header they are read with the node itself
// instead of from wherever the heap put them. Further nodes come from blocks
// that the arena keeps until it is emptied or destroyed, so a long list
// costs one heap allocation per block rather than per node. Nodes of other
// sizes come from the heap as usual.
//
//   CKWListNodeArena arena;
//   std::list<int*, CKWListNodeAllocator<int*>> list{CKWListNodeAllocator<int*>(&arena)};
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>

#include "kwcore/platform/Export.h"

class KWCORE_API CKWListNodeArena {
public:
    // A node of a std::list of pointers: two links and the value.
    static constexpr std::size_t kSlotSize = 3 * sizeof(void*);
    static constexpr std::size_t kSlotCount = 4;

    CKWListNodeArena() = default;
    // Slots belong to the lists of one owner: copies start empty.
    CKWListNodeArena(const CKWListNodeArena&) {}
    CKWListNodeArena& operator=(const CKWListNodeArena&) { return *this; }
    ~CKWListNodeArena() { ReleaseBlocks(); }

    // A free slot: inside the arena while there is room, then from a block.
    void* Take() {
        if (m_iFree == 0) {
            return TakeFromBlocks();
        }
        const unsigned slot = LowestSet(m_iFree);
        m_iFree &= static_cast<std::uint8_t>(m_iFree - 1);
        return m_slots + slot * kSlotSize;
    }

    // Takes back a slot that Take gave.
    void Give(void* memory) {
        const std::less<const void*> before;
        const auto* bytes = static_cast<const unsigned char*>(memory);
        if (before(bytes, m_slots) || !before(bytes, m_slots + sizeof(m_slots))) {
            GiveToBlocks(memory);
            return;
        }
        m_iFree |= static_cast<std::uint8_t>(1u << ((bytes - m_slots) / kSlotSize));
    }

    // Frees the blocks; only when no slot of them is in use.
    void ReleaseBlocks() {
        if (m_pBlocks) {
            FreeBlocks();
        }
    }

private:
    // Slots handed out from blocks of growing size, reused once given back.
    class CKWListNodeBlocks;

    void* TakeFromBlocks();
    void GiveToBlocks(void* memory);
    void FreeBlocks();

    static unsigned LowestSet(std::uint8_t bits) {
        unsigned index = 0;
        while (!(bits & (1u << index))) {
            ++index;
        }
        return index;
    }

    std::uint8_t m_iFree = (1u << kSlotCount) - 1;
    alignas(void*) unsigned char m_slots[kSlotCount * kSlotSize];
    CKWListNodeBlocks* m_pBlocks = nullptr;
};

// Takes single nodes that fit from the arena, everything else from the heap.
// Containers keep their own arena: it never moves to another container.
template <class T>
class CKWListNodeAllocator {
public:
    using value_type = T;
    using propagate_on_container_copy_assignment = std::false_type;
    using propagate_on_container_move_assignment = std::false_type;
    using propagate_on_container_swap = std::false_type;
    using is_always_equal = std::false_type;

    explicit CKWListNodeAllocator(CKWListNodeArena* arena) noexcept : m_pArena(arena) {}
    template <class U>
    CKWListNodeAllocator(const CKWListNodeAllocator<U>& other) noexcept
        : m_pArena(other.GetArena()) {}

    T* allocate(std::size_t count) {
        if (FitsSlot() && count == 1) {
            return static_cast<T*>(m_pArena->Take());
        }
        return std::allocator<T>().allocate(count);
    }

    void deallocate(T* memory, std::size_t count) noexcept {
        if (FitsSlot() && count == 1) {
            m_pArena->Give(memory);
        } else {
            std::allocator<T>().deallocate(memory, count);
        }
    }

    CKWListNodeArena* GetArena() const noexcept { return m_pArena; }

    template <class U>
    bool operator==(const CKWListNodeAllocator<U>& other) const noexcept {
        return m_pArena == other.GetArena();
    }
    template <class U>
    bool operator!=(const CKWListNodeAllocator<U>& other) const noexcept {
        return !(*this == other);
    }

private:
    static constexpr bool FitsSlot() {
        return sizeof(T) <= CKWListNodeArena::kSlotSize && alignof(T) <= alignof(void*);
    }

    CKWListNodeArena* m_pArena;
};
