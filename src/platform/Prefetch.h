// Prefetch: starts fetching memory a loop will read soon, where the compiler
// offers it. Walks over scattered objects use it to overlap their cache
// misses; it never changes what they compute.
#pragma once

namespace kwMemory {

inline void Prefetch(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    (void)address;
#endif
}

}  // namespace kwMemory
