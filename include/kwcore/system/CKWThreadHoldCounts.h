// Hold counts of a reentrant lock, by thread id.
//
// A thread's count lives in a slot that stays where it is while other
// threads add and remove theirs, so the owner may change its own count
// outside the lock's guard. Slots are as many as threads have held the lock
// at once, found by a scan: few threads hold one lock at a time, and a scan
// of a few slots costs less than the allocation a tree node would.
//
//   DWORD& dwCount = counts[dwThreadID];  // added as 0 when missing
//   SKWHoldSlot* pSlot = counts.Find(dwThreadID);
//   counts.Remove(*pSlot);
#pragma once

#include "kwcore/platform/Win32Types.h"

#include <cstddef>
#include <deque>

struct SKWHoldSlot {
    DWORD dwThreadID;  // NO_THREAD when the slot is free
    DWORD dwCount;
};

class CKWThreadHoldCounts {
public:
    // No thread has this id, on either platform.
    static constexpr DWORD NO_THREAD = 0;

    // The count of a thread; a thread without one gets a count of 0.
    DWORD& operator[](DWORD dwThreadID) {
        SKWHoldSlot* pFree = nullptr;
        for (SKWHoldSlot& slot : m_slots) {
            if (slot.dwThreadID == dwThreadID)
                return slot.dwCount;
            if (!pFree && slot.dwThreadID == NO_THREAD)
                pFree = &slot;
        }
        if (!pFree) {
            // Adding at the end of a deque moves no other slot.
            m_slots.push_back(SKWHoldSlot{NO_THREAD, 0});
            pFree = &m_slots.back();
        }
        *pFree = SKWHoldSlot{dwThreadID, 0};
        return pFree->dwCount;
    }

    // The slot of a thread, or null when the thread has none.
    SKWHoldSlot* Find(DWORD dwThreadID) {
        for (SKWHoldSlot& slot : m_slots)
            if (slot.dwThreadID == dwThreadID)
                return &slot;
        return nullptr;
    }

    void Remove(SKWHoldSlot& slot) { slot.dwThreadID = NO_THREAD; }

    // Threads that have a count.
    size_t GetCount() const {
        size_t nThreads = 0;
        for (const SKWHoldSlot& slot : m_slots)
            if (slot.dwThreadID != NO_THREAD)
                ++nThreads;
        return nThreads;
    }

    void Swap(CKWThreadHoldCounts& other) { m_slots.swap(other.m_slots); }

private:
    std::deque<SKWHoldSlot> m_slots;
};
