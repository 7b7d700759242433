#include "platform/SideStack.h"

#include <cstdint>
#include <exception>
#include <utility>

#if defined(_WIN32)
#include "kwcore/platform/Win32Types.h"  // <windows.h>, lean and without min/max
#else
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>
#endif

#if defined(KW_SIDE_STACK_ASAN)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#elif defined(KW_SIDE_STACK_TSAN)
#include <sanitizer/tsan_interface.h>
#endif

namespace kwStack {

namespace {

// One call handed to a side stack, and the exception it ended with.
struct Job {
    SideStack::Call call;
    void* argument;
    std::exception_ptr error;
};

// An exception must not leave the stack it was thrown on: it is carried
// back and thrown again on the caller's side.
void RunJob(Job& job) noexcept {
    try {
        job.call(job.argument);
    } catch (...) {
        job.error = std::current_exception();
    }
}

}  // namespace

#if defined(_WIN32)

// Fibers: a thread that is not one yet becomes one for the length of a Run.
// A fiber's function must never return, so it waits for its next job.
struct SideStack::Context {
    ~Context() {
        if (fiber) {
            DeleteFiber(fiber);
        }
    }
    bool SwitchIn();
    static VOID CALLBACK Main(LPVOID self);

    void* fiber = nullptr;
    void* caller = nullptr;
    Job* pJob = nullptr;
};

namespace {
// Below what a call may use: the guard pages and the system's own records.
constexpr std::size_t kFiberSlack = 64 << 10;
constexpr std::size_t kFiberCommit = 64 << 10;
}  // namespace

namespace {
// GetCurrentFiber reads the thread's record at an offset of the gs segment,
// which g++ 12 takes for an access out of an array's bounds.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
__attribute__((noinline)) void* CurrentFiber() {
    return GetCurrentFiber();
}
#pragma GCC diagnostic pop
}  // namespace

VOID CALLBACK SideStack::Context::Main(LPVOID self) {
    auto* context = static_cast<Context*>(self);
    for (;;) {
        RunJob(*context->pJob);
        SwitchToFiber(context->caller);
    }
}

bool SideStack::Context::SwitchIn() {
    const bool becomeFiber = !IsThreadAFiber();
    if (becomeFiber && !ConvertThreadToFiber(nullptr)) {
        return false;
    }
    caller = CurrentFiber();
    SwitchToFiber(fiber);
    if (becomeFiber) {
        ConvertFiberToThread();
    }
    return true;
}

// A fiber's stack is committed and guarded by the system as it grows; it
// cannot be given back in part.
bool SideStack::Trim(std::size_t) {
    return false;
}

std::unique_ptr<SideStack> SideStack::Reserve(std::size_t size) {
    auto context = std::make_unique<Context>();
    context->fiber =
        CreateFiberEx(kFiberCommit, size + kFiberSlack, 0, &Context::Main, context.get());
    if (!context->fiber) {
        return nullptr;
    }
    return std::unique_ptr<SideStack>(new SideStack(std::move(context)));
}

#else

// A context made once on a mapping of its own, with a guard page below. Its
// function runs one job per switch into it and switches back; it never
// returns, so the sanitizers see one unbroken stack of calls on it.
struct SideStack::Context {
    ~Context();
    bool SwitchIn();
    void SwitchOut();
    void Entered();
    static void Main(int high, int low);

    char* mapping = nullptr;
    std::size_t mappingSize = 0;
    std::size_t guardSize = 0;
    ucontext_t own{};
    ucontext_t caller{};
    Job* pJob = nullptr;
    // The caller's stack, as the address sanitizer reports it on entry.
    const void* callerBottom = nullptr;
    std::size_t callerSize = 0;
    void* tsanFiber = nullptr;
    void* tsanCaller = nullptr;
};

SideStack::Context::~Context() {
#if defined(KW_SIDE_STACK_ASAN)
    // Frames left on the stack keep their poisoned guards; the addresses
    // may serve other memory once unmapped.
    __asan_unpoison_memory_region(mapping, mappingSize);
#elif defined(KW_SIDE_STACK_TSAN)
    if (tsanFiber) {
        __tsan_destroy_fiber(tsanFiber);
    }
#endif
    munmap(mapping, mappingSize);
}

// The address sanitizer is told which stack the code is about to run on
// before each switch, and that it arrived after it; the thread sanitizer
// which fiber runs next.
bool SideStack::Context::SwitchIn() {
#if defined(KW_SIDE_STACK_ASAN)
    void* fakeStack = nullptr;
    __sanitizer_start_switch_fiber(&fakeStack, mapping + guardSize, mappingSize - guardSize);
#elif defined(KW_SIDE_STACK_TSAN)
    tsanCaller = __tsan_get_current_fiber();
    __tsan_switch_to_fiber(tsanFiber, 0);
#endif
    const bool switched = swapcontext(&caller, &own) == 0;
#if defined(KW_SIDE_STACK_ASAN)
    __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#elif defined(KW_SIDE_STACK_TSAN)
    if (!switched) {
        __tsan_switch_to_fiber(tsanCaller, 0);
    }
#endif
    return switched;
}

void SideStack::Context::SwitchOut() {
#if defined(KW_SIDE_STACK_ASAN)
    void* fakeStack = nullptr;
    __sanitizer_start_switch_fiber(&fakeStack, callerBottom, callerSize);
#elif defined(KW_SIDE_STACK_TSAN)
    __tsan_switch_to_fiber(tsanCaller, 0);
#endif
    swapcontext(&own, &caller);
#if defined(KW_SIDE_STACK_ASAN)
    __sanitizer_finish_switch_fiber(fakeStack, &callerBottom, &callerSize);
#endif
}

void SideStack::Context::Entered() {
#if defined(KW_SIDE_STACK_ASAN)
    __sanitizer_finish_switch_fiber(nullptr, &callerBottom, &callerSize);
#endif
}

// makecontext hands over int arguments only: the context's address comes
// in two halves.
void SideStack::Context::Main(int high, int low) {
    const std::uint64_t address =
        (std::uint64_t{static_cast<unsigned>(high)} << 32) | static_cast<unsigned>(low);
    auto* context = reinterpret_cast<Context*>(static_cast<std::uintptr_t>(address));
    context->Entered();
    for (;;) {
        RunJob(*context->pJob);
        context->SwitchOut();
    }
}

bool SideStack::Trim(std::size_t keep) {
    const std::size_t stackSize = m_pContext->mappingSize - m_pContext->guardSize;
    if (keep >= stackSize) {
        return true;
    }
    char* low = m_pContext->mapping + m_pContext->guardSize;
    const std::size_t unused = (stackSize - keep) / m_pContext->guardSize * m_pContext->guardSize;
    return madvise(low, unused, MADV_DONTNEED) == 0;
}

std::unique_ptr<SideStack> SideStack::Reserve(std::size_t size) {
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t stackSize = (size + page - 1) / page * page;
    void* mapping = mmap(nullptr, stackSize + page, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (mapping == MAP_FAILED) {
        return nullptr;
    }
    auto context = std::make_unique<Context>();
    context->mapping = static_cast<char*>(mapping);
    context->mappingSize = stackSize + page;
    context->guardSize = page;
    if (mprotect(mapping, page, PROT_NONE) != 0 || getcontext(&context->own) != 0) {
        return nullptr;
    }
    context->own.uc_stack.ss_sp = context->mapping + page;
    context->own.uc_stack.ss_size = stackSize;
    context->own.uc_link = nullptr;
    const auto address =
        static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(context.get()));
    makecontext(&context->own, reinterpret_cast<void (*)()>(&Context::Main), 2,
                static_cast<int>(address >> 32), static_cast<int>(address & 0xFFFFFFFFu));
#if defined(KW_SIDE_STACK_TSAN)
    context->tsanFiber = __tsan_create_fiber(0);
#endif
    return std::unique_ptr<SideStack>(new SideStack(std::move(context)));
}

#endif

SideStack::SideStack(std::unique_ptr<Context> context) : m_pContext(std::move(context)) {}

SideStack::~SideStack() = default;

bool SideStack::Run(Call call, void* argument) {
    Job job{call, argument, nullptr};
    m_pContext->pJob = &job;
    if (!m_pContext->SwitchIn()) {
        return false;
    }
    if (job.error) {
        std::rethrow_exception(job.error);
    }
    return true;
}

}  // namespace kwStack
