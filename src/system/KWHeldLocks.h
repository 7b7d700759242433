// The calling thread's hold counts of reentrant reader-writer locks.
//
// Each thread keeps the counts of the locks it holds in a table of its own,
// so taking a held lock again, or finding that it is not held, costs no
// shared memory traffic. A lock is named by its address, which the lock
// reads without touching its own memory: readers of other threads write
// there. A count of 0 stands for no entry, so the entry of a destroyed lock
// is harmless to a lock that comes to live at the same address; a lock
// destroyed while a thread holds it is a caller error, as for any lock.
//
// The table is a small open-addressed one: a lock's count sits in its home
// slot or in the slots after it, up to the first free one. A count that
// falls to 0 keeps its slot, so a thread that takes and releases the same
// lock again and again finds it at once; such slots are cleared when the
// table fills. Threads rarely hold more locks at once than it has slots;
// the rest go to a map. The common paths are inline: they run on every
// acquisition.
#pragma once

#include "kwcore/platform/Win32Types.h"

#include <cstddef>
#include <cstdint>

namespace kwHeldLocks {

struct SHeld {
    std::uint64_t uLockID;  // 0 when the slot is free
    DWORD dwCount;
};

constexpr unsigned SLOTS = 8;

// Plain data, so reaching it costs no initialisation check; on ELF it sits
// in the static TLS block, reached without a call. The block keeps room for
// this much even when the library is loaded late.
#if defined(__ELF__)
#define KW_STATIC_TLS __attribute__((tls_model("initial-exec")))
#else
#define KW_STATIC_TLS
#endif
// Defined here, zero-initialised, so that users reach them directly rather
// than through a call that would first check for a dynamic initialiser.
inline KW_STATIC_TLS thread_local SHeld t_held[SLOTS] = {};
// Counts in the map beside the table.
inline KW_STATIC_TLS thread_local std::size_t t_nMoreHeld = 0;

inline std::uint64_t LockID(const void* pLock) {
    return reinterpret_cast<std::uintptr_t>(pLock);
}

// The map's side: the count, null when missing; added as 0; removed.
DWORD* FindMore(std::uint64_t uLockID);
DWORD& AddMore(std::uint64_t uLockID);
void RemoveMore(std::uint64_t uLockID);
// Adds a count to a full table: first clears the slots whose count is 0,
// then falls back to the map.
DWORD& AddToFullTable(std::uint64_t uLockID);
// Empties a table slot, moving later entries of its run back so that every
// entry stays reachable from its home slot.
void EmptySlot(unsigned uSlot);

inline unsigned Home(std::uint64_t uLockID) {
    // Fibonacci hashing: the top bits of the product spread addresses that
    // differ only in a few bits.
    return static_cast<unsigned>((uLockID * 0x9E3779B97F4A7C15ull) >> 61);
}

inline unsigned Next(unsigned uSlot) {
    return (uSlot + 1) & (SLOTS - 1);
}

// The slot holding the lock's count, or else the free slot where it would
// go (SLOTS when neither exists: the table is full).
inline unsigned Probe(std::uint64_t uLockID) {
    unsigned uSlot = Home(uLockID);
    for (unsigned uStep = 0; uStep < SLOTS; ++uStep, uSlot = Next(uSlot))
        if (t_held[uSlot].uLockID == uLockID || t_held[uSlot].uLockID == 0)
            return uSlot;
    return SLOTS;
}

// The calling thread's count for the lock, or null when it has none; a
// count may be 0.
inline DWORD* Find(std::uint64_t uLockID) {
    const unsigned uSlot = Probe(uLockID);
    if (uSlot != SLOTS && t_held[uSlot].uLockID == uLockID)
        return &t_held[uSlot].dwCount;
    return t_nMoreHeld ? FindMore(uLockID) : nullptr;
}

// The calling thread's count for the lock, added as 0 when missing.
inline DWORD& Add(std::uint64_t uLockID) {
    const unsigned uSlot = Probe(uLockID);
    if (uSlot != SLOTS && t_held[uSlot].uLockID == uLockID)
        return t_held[uSlot].dwCount;
    if (DWORD* pCount = t_nMoreHeld ? FindMore(uLockID) : nullptr)
        return *pCount;
    if (uSlot == SLOTS)
        return AddToFullTable(uLockID);
    t_held[uSlot] = SHeld{uLockID, 0};
    return t_held[uSlot].dwCount;
}

inline bool InTable(const DWORD* pCount) {
    for (const SHeld& held : t_held)
        if (&held.dwCount == pCount)
            return true;
    return false;
}

// The count that Find or Add gave for the lock has fallen to 0.
inline void Emptied(std::uint64_t uLockID, DWORD* pCount) {
    if (!InTable(pCount))
        RemoveMore(uLockID);
}

// Removes the count that Find or Add gave for the lock.
inline void Remove(std::uint64_t uLockID, DWORD* pCount) {
    for (unsigned uSlot = 0; uSlot < SLOTS; ++uSlot)
        if (&t_held[uSlot].dwCount == pCount)
            return EmptySlot(uSlot);
    RemoveMore(uLockID);
}

// Removes the calling thread's count for the lock, if it has one.
inline void Remove(std::uint64_t uLockID) {
    if (DWORD* pCount = Find(uLockID))
        Remove(uLockID, pCount);
}

}  // namespace kwHeldLocks
