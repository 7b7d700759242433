#include "KWHeldLocks.h"

#include <memory>
#include <unordered_map>

namespace kwHeldLocks {

namespace {

thread_local std::unique_ptr<std::unordered_map<std::uint64_t, DWORD>> t_pMoreHeld;

}  // namespace

DWORD* FindMore(std::uint64_t uLockID) {
    auto it = t_pMoreHeld->find(uLockID);
    return it == t_pMoreHeld->end() ? nullptr : &it->second;
}

DWORD& AddMore(std::uint64_t uLockID) {
    if (!t_pMoreHeld)
        t_pMoreHeld = std::make_unique<std::unordered_map<std::uint64_t, DWORD>>();
    ++t_nMoreHeld;
    return (*t_pMoreHeld)[uLockID];
}

void RemoveMore(std::uint64_t uLockID) {
    t_nMoreHeld -= t_pMoreHeld->erase(uLockID);
}

DWORD& AddToFullTable(std::uint64_t uLockID) {
    SHeld kept[SLOTS];
    unsigned nKept = 0;
    for (SHeld& held : t_held) {
        if (held.dwCount != 0)
            kept[nKept++] = held;
        held = SHeld{0, 0};
    }
    for (unsigned uKept = 0; uKept < nKept; ++uKept)
        t_held[Probe(kept[uKept].uLockID)] = kept[uKept];
    const unsigned uSlot = Probe(uLockID);
    if (uSlot == SLOTS)
        return AddMore(uLockID);
    t_held[uSlot] = SHeld{uLockID, 0};
    return t_held[uSlot].dwCount;
}

void EmptySlot(unsigned uEmpty) {
    t_held[uEmpty] = SHeld{0, 0};
    for (unsigned uSlot = Next(uEmpty); t_held[uSlot].uLockID != 0; uSlot = Next(uSlot)) {
        const unsigned uHome = Home(t_held[uSlot].uLockID);
        // The entry stays when its home lies cyclically in (uEmpty, uSlot].
        const bool bStays = uEmpty < uSlot ? (uEmpty < uHome && uHome <= uSlot)
                                           : (uEmpty < uHome || uHome <= uSlot);
        if (bStays)
            continue;
        t_held[uEmpty] = t_held[uSlot];
        t_held[uSlot] = SHeld{0, 0};
        uEmpty = uSlot;
    }
}

}  // namespace kwHeldLocks
