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

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>

class CKWListNodeArena {
public:
    // A node of a std::list of pointers: two links and the value.
    static constexpr std::size_t kSlotSize = 3 * sizeof(void*);
    static constexpr std::size_t kSlotCount = 4;

    CKWListNodeArena() = default;
    // Slots belong to the lists of one owner: copies start empty.
    CKWListNodeArena(const CKWListNodeArena&) {}
    CKWListNodeArena& operator=(const CKWListNodeArena&) { return *this; }
    ~CKWListNodeArena() { delete m_pBlocks; }

    // A free slot: inside the arena while there is room, then from a block.
    void* Take() {
        if (m_iFree == 0) {
            if (!m_pBlocks) {
                m_pBlocks = new CKWListNodeBlocks;
            }
            return m_pBlocks->Take();
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
            m_pBlocks->Give(memory);
            return;
        }
        m_iFree |= static_cast<std::uint8_t>(1u << ((bytes - m_slots) / kSlotSize));
    }

    // Frees the blocks; only when no slot of them is in use.
    void ReleaseBlocks() {
        delete m_pBlocks;
        m_pBlocks = nullptr;
    }

private:
    // Slots handed out from blocks of growing size, reused once given back.
    class CKWListNodeBlocks {
    public:
        CKWListNodeBlocks() = default;
        CKWListNodeBlocks(const CKWListNodeBlocks&) = delete;
        CKWListNodeBlocks& operator=(const CKWListNodeBlocks&) = delete;
        ~CKWListNodeBlocks() {
            while (m_pBlock) {
                Block* next = m_pBlock->next;
                ::operator delete(m_pBlock);
                m_pBlock = next;
            }
        }

        void* Take() {
            if (m_pFreeSlot) {
                FreeSlot* slot = m_pFreeSlot;
                m_pFreeSlot = slot->next;
                return slot;
            }
            if (m_pUnused == m_pUnusedEnd) {
                AddBlock();
            }
            void* slot = m_pUnused;
            m_pUnused += kSlotSize;
            return slot;
        }

        void Give(void* memory) { m_pFreeSlot = new (memory) FreeSlot{m_pFreeSlot}; }

    private:
        struct FreeSlot {
            FreeSlot* next;
        };
        struct Block {
            Block* next;
        };
        static constexpr std::size_t kFirstBlockSlots = 4;
        static constexpr std::size_t kLargestBlockSlots = 4096;
        static constexpr std::size_t kHeader =
            (sizeof(Block) + alignof(void*) - 1) / alignof(void*) * alignof(void*);

        void AddBlock() {
            void* memory = ::operator new(kHeader + m_iBlockSlots * kSlotSize);
            m_pBlock = new (memory) Block{m_pBlock};
            m_pUnused = static_cast<unsigned char*>(memory) + kHeader;
            m_pUnusedEnd = m_pUnused + m_iBlockSlots * kSlotSize;
            m_iBlockSlots = std::min(2 * m_iBlockSlots, kLargestBlockSlots);
        }

        Block* m_pBlock = nullptr;
        FreeSlot* m_pFreeSlot = nullptr;
        unsigned char* m_pUnused = nullptr;
        unsigned char* m_pUnusedEnd = nullptr;
        std::size_t m_iBlockSlots = kFirstBlockSlots;
    };

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
