// Side stacks: stacks of the library's own on which a call runs, so that a
// recursion deeper than the caller's stack allows can go on there.
//
// Internal to the library. A side stack is reserved from the system in one
// piece with a guard below it, and the system commits its pages only as the
// call reaches them, so a large one costs address space, not memory. Run
// switches to the stack (a context on POSIX systems, a fiber on Windows),
// calls there and switches back; side stacks nest, each Run made from the
// stack that the previous one switched to. The address and thread
// sanitizers are told of every switch. Stacks grow downwards on every
// platform the library builds for.
//
//   auto stack = kwStack::SideStack::Reserve(16 << 20);
//   if (stack && stack->Run(call, &state)) { ... }
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#if defined(__SANITIZE_ADDRESS__)
#define KW_SIDE_STACK_ASAN 1
#elif defined(__SANITIZE_THREAD__)
#define KW_SIDE_STACK_TSAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KW_SIDE_STACK_ASAN 1
#elif __has_feature(thread_sanitizer)
#define KW_SIDE_STACK_TSAN 1
#endif
#endif

namespace kwStack {

// Where the running function's frame lies; deeper calls give lower values.
inline std::uintptr_t Position() {
#if defined(__GNUC__)
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
    volatile char here = 0;
    return reinterpret_cast<std::uintptr_t>(&here);
#endif
}

class SideStack {
public:
    using Call = void (*)(void* argument);

#if defined(KW_SIDE_STACK_TSAN)
    // The thread sanitizer records at most 65535 calls of one stack; this
    // much of even the smallest frames stays below that.
    static constexpr std::size_t kLargestSize = 2 << 20;
#else
    static constexpr std::size_t kLargestSize = std::size_t{1} << 30;
#endif

    // A stack on which a call may use at least size bytes below its first
    // frame; null when the system refuses the reservation.
    static std::unique_ptr<SideStack> Reserve(std::size_t size);
    ~SideStack();
    SideStack(const SideStack&) = delete;
    SideStack& operator=(const SideStack&) = delete;

    // Runs call(argument) on this stack and returns once it returns; an
    // exception it throws is thrown again here. False, with nothing run,
    // when the switch cannot be made.
    bool Run(Call call, void* argument);

    // Gives the pages below the top keep bytes back to the system, so that
    // a stack kept for later holds little memory; false where a stack
    // cannot give pages back while it lives (then it is not worth keeping).
    bool Trim(std::size_t keep);

private:
    struct Context;

    explicit SideStack(std::unique_ptr<Context> context);

    std::unique_ptr<Context> m_pContext;
};

}  // namespace kwStack
