// The reader-writer locks beside std::shared_mutex and a default
// pthread_rwlock_t (both reader-preferring in glibc), and beside a
// pthread_rwlock_t told to prefer writers as the library's locks do, on the
// same workloads:
//   - read-mostly throughput: 99 reads to 1 write of a small shared array;
//   - writer wait: one writer takes the lock again and again while four
//     threads read without pause; p50 and p99 of its waits in microseconds.
//     A reader-preferring lock may starve the writer for good, so a watchdog
//     holds the readers back once a wait passes the cap: such waits are
//     recorded as the cap and counted as starved.
// And the command round trip of a worker thread: from PostCommand to the
// body taking the command from WaitForNotification, p50 and p99.
#include <benchmark/benchmark.h>

#include <pthread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "kwcore/system/CKWReaderWriterLock.h"
#include "kwcore/system/CKWThread.h"
#include "kwcore/system/CReaderWriterLockNonReentrance.h"

namespace {

using Clock = std::chrono::steady_clock;

// The four locks behind one face: ReadLock/ReadUnlock/WriteLock/WriteUnlock.
template <class Lock>
struct KWLock {
    Lock lock;
    void ReadLock() { lock.AcquireReaderLock(); }
    void ReadUnlock() { lock.ReleaseReaderLock(); }
    void WriteLock() { lock.AcquireWriterLock(); }
    void WriteUnlock() { lock.ReleaseWriterLock(); }
};
using PlainLock = KWLock<CReaderWriterLockNonReentrance>;
using ReentrantLock = KWLock<CKWReaderWriterLock>;

struct SharedMutexLock {
    std::shared_mutex lock;
    void ReadLock() { lock.lock_shared(); }
    void ReadUnlock() { lock.unlock_shared(); }
    void WriteLock() { lock.lock(); }
    void WriteUnlock() { lock.unlock(); }
};

struct PthreadLock {
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
    PthreadLock() = default;
    PthreadLock(const PthreadLock&) = delete;
    PthreadLock& operator=(const PthreadLock&) = delete;
    ~PthreadLock() { pthread_rwlock_destroy(&lock); }
    void ReadLock() { pthread_rwlock_rdlock(&lock); }
    void ReadUnlock() { pthread_rwlock_unlock(&lock); }
    void WriteLock() { pthread_rwlock_wrlock(&lock); }
    void WriteUnlock() { pthread_rwlock_unlock(&lock); }
};

// glibc's rwlock told to prefer writers, as the library's locks do.
struct PthreadWriterLock : PthreadLock {
    PthreadWriterLock() {
        pthread_rwlockattr_t attributes;
        pthread_rwlockattr_init(&attributes);
        pthread_rwlockattr_setkind_np(&attributes, PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP);
        pthread_rwlock_init(&lock, &attributes);
        pthread_rwlockattr_destroy(&attributes);
    }
};

// The data the critical sections read and write: small, so the lock's own
// cost dominates.
struct SharedData {
    std::array<std::uint32_t, 16> values{};

    std::uint32_t Read() const {
        std::uint32_t sum = 0;
        for (std::uint32_t value : values)
            sum += value;
        return sum;
    }
    void Write() {
        for (std::uint32_t& value : values)
            ++value;
    }
};

template <class Lock>
struct Guarded {
    Lock lock;
    SharedData data;
};

// One lock and its data per lock type, shared by the benchmark's threads.
template <class Lock>
Guarded<Lock>& SharedState() {
    static Guarded<Lock> state;
    return state;
}

template <class Lock>
void ReadOnce(Guarded<Lock>& shared) {
    shared.lock.ReadLock();
    benchmark::DoNotOptimize(shared.data.Read());
    shared.lock.ReadUnlock();
}

template <class Lock>
void WriteOnce(Guarded<Lock>& shared) {
    shared.lock.WriteLock();
    shared.data.Write();
    shared.lock.WriteUnlock();
}

constexpr int kWriteEvery = 100;

template <class Lock>
void ReadMostly(benchmark::State& state) {
    Guarded<Lock>& shared = SharedState<Lock>();
    // Offset per thread, so the threads' writes do not fall together.
    int turn = state.thread_index() * 37;
    for (auto _ : state) {
        if (++turn % kWriteEvery == 0)
            WriteOnce(shared);
        else
            ReadOnce(shared);
    }
    state.SetItemsProcessed(state.iterations());
}

void ReadMostlyArgs(benchmark::internal::Benchmark* bench) {
    bench->Threads(1)->Threads(2)->Threads(8)->UseRealTime();
}
BENCHMARK_TEMPLATE(ReadMostly, PlainLock)->Apply(ReadMostlyArgs);
BENCHMARK_TEMPLATE(ReadMostly, ReentrantLock)->Apply(ReadMostlyArgs);
BENCHMARK_TEMPLATE(ReadMostly, SharedMutexLock)->Apply(ReadMostlyArgs);
BENCHMARK_TEMPLATE(ReadMostly, PthreadLock)->Apply(ReadMostlyArgs);
BENCHMARK_TEMPLATE(ReadMostly, PthreadWriterLock)->Apply(ReadMostlyArgs);

constexpr int kReaderThreads = 4;
constexpr int kWriterSamples = 200;
constexpr auto kWaitCap = std::chrono::milliseconds(50);
// The writer's pause between acquisitions, to let the readers back in.
constexpr auto kWriterPause = std::chrono::microseconds(200);

// Readers that read without pause until stopped, and a watchdog that holds
// them back while the writer has waited longer than the cap.
template <class Lock>
class ReaderCrowd {
public:
    explicit ReaderCrowd(Guarded<Lock>& shared) : m_shared(shared) {
        for (int i = 0; i < kReaderThreads; ++i)
            m_readers.emplace_back([this] { ReadUntilStopped(); });
        m_watchdog = std::thread([this] { WatchWriter(); });
    }
    ReaderCrowd(const ReaderCrowd&) = delete;
    ReaderCrowd& operator=(const ReaderCrowd&) = delete;
    ~ReaderCrowd() {
        m_stop = true;
        m_watchdog.join();
        for (std::thread& reader : m_readers)
            reader.join();
    }

    // Takes the write lock once: the wait, capped, and whether it hit the cap.
    Clock::duration AcquireForWriter(bool& starved) {
        m_waitStart = Clock::now().time_since_epoch().count();
        m_writerWaiting = true;
        m_shared.lock.WriteLock();
        const Clock::duration wait =
            Clock::now().time_since_epoch() - Clock::duration(m_waitStart.load());
        m_writerWaiting = false;
        m_holdReaders = false;
        starved = wait > kWaitCap;
        return starved ? std::chrono::duration_cast<Clock::duration>(kWaitCap) : wait;
    }

private:
    void ReadUntilStopped() {
        while (!m_stop) {
            if (m_holdReaders)
                std::this_thread::yield();
            else
                ReadOnce(m_shared);
        }
    }

    void WatchWriter() {
        while (!m_stop) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            // Waiting first: a start read after it belongs to this wait or
            // to a later one, never to an earlier one.
            if (!m_writerWaiting)
                continue;
            const Clock::duration waited =
                Clock::now().time_since_epoch() - Clock::duration(m_waitStart.load());
            if (waited > kWaitCap)
                m_holdReaders = true;
        }
    }

    Guarded<Lock>& m_shared;
    std::vector<std::thread> m_readers;
    std::thread m_watchdog;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_writerWaiting{false};
    std::atomic<bool> m_holdReaders{false};
    std::atomic<Clock::rep> m_waitStart{0};
};

double PercentileMicroseconds(std::vector<Clock::duration>& samples, double fraction) {
    const size_t index = static_cast<size_t>(fraction * static_cast<double>(samples.size() - 1));
    std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(index),
                     samples.end());
    return std::chrono::duration<double, std::micro>(samples[index]).count();
}

template <class Lock>
void WriterWait(benchmark::State& state) {
    Guarded<Lock> shared;
    std::vector<Clock::duration> waits;
    int starved = 0;
    {
        ReaderCrowd<Lock> readers(shared);
        for (auto _ : state) {
            bool bStarved = false;
            waits.push_back(readers.AcquireForWriter(bStarved));
            shared.data.Write();
            shared.lock.WriteUnlock();
            starved += bStarved ? 1 : 0;
            std::this_thread::sleep_for(kWriterPause);
        }
    }
    state.counters["p50_us"] = PercentileMicroseconds(waits, 0.50);
    state.counters["p99_us"] = PercentileMicroseconds(waits, 0.99);
    state.counters["starved"] = starved;
}

void WriterWaitArgs(benchmark::internal::Benchmark* bench) {
    bench->Iterations(kWriterSamples)->UseRealTime()->Unit(benchmark::kMicrosecond);
}
BENCHMARK_TEMPLATE(WriterWait, PlainLock)->Apply(WriterWaitArgs);
BENCHMARK_TEMPLATE(WriterWait, ReentrantLock)->Apply(WriterWaitArgs);
BENCHMARK_TEMPLATE(WriterWait, SharedMutexLock)->Apply(WriterWaitArgs);
BENCHMARK_TEMPLATE(WriterWait, PthreadLock)->Apply(WriterWaitArgs);
BENCHMARK_TEMPLATE(WriterWait, PthreadWriterLock)->Apply(WriterWaitArgs);

constexpr int kCommandSamples = 2000;
// Not one of the library's commands, so the body tells it apart.
constexpr int CMD_PING = 100;

// A thread body that notes when each ping reaches it and acknowledges it.
class CEchoThread : public CKWThread {
public:
    CEchoThread() { m_bSupportCommands = TRUE; }

    // Waits until the body has taken ping number uPing; when it took it.
    Clock::time_point WaitForAck(unsigned uPing) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_acked.wait(lock, [&] { return m_uAcks == uPing; });
        return m_received;
    }

protected:
    DWORD ThreadHandler() override {
        for (int command = 0;;) {
            WaitForNotification(command, INFINITE);
            if (command == CMD_STOP)
                return 0;
            if (command == CMD_PING)
                Acknowledge();
        }
    }

private:
    void Acknowledge() {
        const Clock::time_point received = Clock::now();
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_received = received;
            ++m_uAcks;
        }
        m_acked.notify_one();
    }

    std::mutex m_mutex;
    std::condition_variable m_acked;
    unsigned m_uAcks = 0;
    Clock::time_point m_received;
};

// PostCommand to the body's receipt, and on to the poster seeing the
// acknowledgement.
void CommandRoundTrip(benchmark::State& state) {
    CEchoThread thread;
    thread.Start();
    std::vector<Clock::duration> receipts;
    std::vector<Clock::duration> roundTrips;
    unsigned uPing = 0;
    for (auto _ : state) {
        const Clock::time_point posted = Clock::now();
        thread.PostCommand(CMD_PING);
        const Clock::time_point received = thread.WaitForAck(++uPing);
        roundTrips.push_back(Clock::now() - posted);
        receipts.push_back(received - posted);
    }
    DWORD dwExitCode = 0;
    thread.Stop(dwExitCode);
    state.counters["receipt_p50_us"] = PercentileMicroseconds(receipts, 0.50);
    state.counters["receipt_p99_us"] = PercentileMicroseconds(receipts, 0.99);
    state.counters["round_trip_p50_us"] = PercentileMicroseconds(roundTrips, 0.50);
    state.counters["round_trip_p99_us"] = PercentileMicroseconds(roundTrips, 0.99);
}
BENCHMARK(CommandRoundTrip)
    ->Iterations(kCommandSamples)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
