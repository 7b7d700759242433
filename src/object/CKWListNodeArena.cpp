#include "kwcore/object/CKWListNodeArena.h"

#include <algorithm>
#include <new>

class CKWListNodeArena::CKWListNodeBlocks {
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

void* CKWListNodeArena::TakeFromBlocks() {
    if (!m_pBlocks) {
        m_pBlocks = new CKWListNodeBlocks;
    }
    return m_pBlocks->Take();
}

void CKWListNodeArena::GiveToBlocks(void* memory) {
    m_pBlocks->Give(memory);
}

void CKWListNodeArena::FreeBlocks() {
    delete m_pBlocks;
    m_pBlocks = nullptr;
}
