#include "kwcore/system/CKWReaderWriterLock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

// Reads the lock's bookkeeping under its guard, so a test can wait until
// another thread has reached a known state (for instance, blocked).
template <class Lock>
class CLockProbe : public Lock {
public:
    unsigned Writers() {
        return Read([this] { return this->m_uWriters; });
    }
    unsigned Readers() { return this->GetReaders(); }
    unsigned WaitingReaders() {
        return Read([this] { return this->m_uWaitingReaders; });
    }
    bool HasEvents() {
        return Read([this] { return this->m_hWriterEvent || this->m_hReaderEvent; });
    }

    template <class Condition>
    void WaitUntil(Condition condition) {
        while (!condition(*this))
            std::this_thread::yield();
    }

protected:
    template <class Getter>
    auto Read(Getter getter) {
        this->EnterGuard();
        auto value = getter();
        this->LeaveGuard();
        return value;
    }
};

class CReentrantProbe : public CLockProbe<CKWReaderWriterLock> {
public:
    // The calling thread's hold count; 0 when it has no entry.
    DWORD HeldHere() const { return GetThreadHoldCount(); }
};

typedef CLockProbe<CReaderWriterLockNonReentrance> CPlainProbe;

// The order in which threads passed marked points.
class CTrail {
public:
    void Mark(const std::string& strStep) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_steps.push_back(strStep);
    }
    std::vector<std::string> Steps() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_steps;
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_steps;
};

template <class Probe>
class SystemReaderWriterLockBoth : public ::testing::Test {};
typedef ::testing::Types<CPlainProbe, CReentrantProbe> LockProbes;
TYPED_TEST_SUITE(SystemReaderWriterLockBoth, LockProbes);

TYPED_TEST(SystemReaderWriterLockBoth, WaitingWriterBlocksNewReaders) {
    TypeParam lock;
    CTrail trail;
    std::atomic<bool> bLetGo{false};
    std::vector<std::thread> earlyReaders;
    for (int i = 0; i < 2; ++i)
        earlyReaders.emplace_back([&] {
            lock.AcquireReaderLock();
            while (!bLetGo)
                std::this_thread::yield();
            lock.ReleaseReaderLock();
        });
    lock.WaitUntil([](auto& probe) { return probe.Readers() == 2; });
    std::thread writer([&] {
        lock.AcquireWriterLock();
        trail.Mark("writer");
        lock.ReleaseWriterLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.Writers() == 1; });
    std::thread lateReader([&] {
        lock.AcquireReaderLock();
        trail.Mark("late reader");
        lock.ReleaseReaderLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.WaitingReaders() == 1; });
    EXPECT_TRUE(trail.Steps().empty());
    bLetGo = true;
    for (auto& reader : earlyReaders)
        reader.join();
    writer.join();
    lateReader.join();
    EXPECT_EQ(trail.Steps(), (std::vector<std::string>{"writer", "late reader"}));
    EXPECT_FALSE(lock.HasEvents());
}

TYPED_TEST(SystemReaderWriterLockBoth, ReleasingTheLastWriterWakesEveryWaitingReader) {
    TypeParam lock;
    lock.AcquireWriterLock();
    std::atomic<int> iReadersIn{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i)
        readers.emplace_back([&] {
            lock.AcquireReaderLock();
            ++iReadersIn;
            // Hold until all three are in: they must all be in at once.
            while (iReadersIn < 3)
                std::this_thread::yield();
            lock.ReleaseReaderLock();
        });
    lock.WaitUntil([](auto& probe) { return probe.WaitingReaders() == 3; });
    EXPECT_EQ(iReadersIn, 0);
    lock.ReleaseWriterLock();
    for (auto& reader : readers)
        reader.join();
    EXPECT_EQ(lock.Readers(), 0u);
    EXPECT_FALSE(lock.HasEvents());
}

TYPED_TEST(SystemReaderWriterLockBoth, WritersTakeTurns) {
    TypeParam lock;
    CTrail trail;
    lock.AcquireWriterLock();
    std::thread second([&] {
        lock.AcquireWriterLock();
        trail.Mark("second");
        lock.ReleaseWriterLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.Writers() == 2; });
    trail.Mark("first");
    lock.ReleaseWriterLock();
    second.join();
    EXPECT_EQ(trail.Steps(), (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(lock.Writers(), 0u);
    EXPECT_FALSE(lock.HasEvents());
}

TYPED_TEST(SystemReaderWriterLockBoth, ReleasingAnUnheldLockIsRefused) {
    TypeParam lock;
    EXPECT_DEBUG_DEATH(lock.ReleaseReaderLock(), "not held");
    EXPECT_DEBUG_DEATH(lock.ReleaseWriterLock(), "not held");
    EXPECT_EQ(lock.Readers(), 0u);
    EXPECT_EQ(lock.Writers(), 0u);
}

enum EHold { eRead, eWrite };

// Two reads and two writes of one thread, taken and released in every order:
// a writer takes reads and writes again without waiting, and nothing is left behind.
TEST(SystemReaderWriterLockReentrant, NestedHoldsTakeAndReleaseInAnyOrder) {
    std::array<EHold, 4> acquires = {eRead, eRead, eWrite, eWrite};
    do {
        std::array<EHold, 4> releases = acquires;
        std::sort(releases.begin(), releases.end());
        do {
            CReentrantProbe lock;
            for (EHold hold : acquires)
                hold == eRead ? lock.AcquireReaderLock() : lock.AcquireWriterLock();
            EXPECT_EQ(lock.Writers(), 1u);
            EXPECT_EQ(lock.Readers(), 0u);
            for (EHold hold : releases)
                hold == eRead ? lock.ReleaseReaderLock() : lock.ReleaseWriterLock();
            EXPECT_EQ(lock.HeldHere(), 0u);
            EXPECT_EQ(lock.Readers(), 0u);
            EXPECT_EQ(lock.Writers(), 0u);
            EXPECT_FALSE(lock.HasEvents());
            // Another thread gets the lock at once: nothing was left behind.
            std::thread other([&] {
                lock.AcquireWriterLock();
                lock.ReleaseWriterLock();
            });
            other.join();
        } while (std::next_permutation(releases.begin(), releases.end()));
    } while (std::next_permutation(acquires.begin(), acquires.end()));
}

TEST(SystemReaderWriterLockReentrant, UpgradeWaitsOnlyForTheOtherReaders) {
    CReentrantProbe lock;
    CTrail trail;
    std::atomic<bool> bLetGo{false};
    std::thread other([&] {
        lock.AcquireReaderLock();
        while (!bLetGo)
            std::this_thread::yield();
        trail.Mark("other reader leaves");
        lock.ReleaseReaderLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.Readers() == 1; });
    std::thread upgrader([&] {
        lock.AcquireReaderLock();
        lock.AcquireWriterLock();
        trail.Mark("upgraded");
        lock.ReleaseWriterLock();
        lock.ReleaseReaderLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.Writers() == 1; });
    EXPECT_EQ(lock.Readers(), 1u);
    bLetGo = true;
    other.join();
    upgrader.join();
    EXPECT_EQ(trail.Steps(), (std::vector<std::string>{"other reader leaves", "upgraded"}));
    EXPECT_EQ(lock.HeldHere(), 0u);
    EXPECT_FALSE(lock.HasEvents());
}

TEST(SystemReaderWriterLockReentrant, SoleReaderUpgradesAndDowngrades) {
    CReentrantProbe lock;
    lock.AcquireReaderLock();
    lock.AcquireWriterLock();
    EXPECT_EQ(lock.Readers(), 0u);
    EXPECT_EQ(lock.Writers(), 1u);
    lock.ReleaseWriterLock();
    EXPECT_EQ(lock.Readers(), 1u);
    EXPECT_EQ(lock.Writers(), 0u);
    // Downgraded: another reader shares the lock, a writer waits for both.
    std::thread reader([&] {
        lock.AcquireReaderLock();
        lock.ReleaseReaderLock();
    });
    reader.join();
    CTrail trail;
    std::thread writer([&] {
        lock.AcquireWriterLock();
        trail.Mark("writer");
        lock.ReleaseWriterLock();
    });
    lock.WaitUntil([](auto& probe) { return probe.Writers() == 1; });
    trail.Mark("reader leaves");
    lock.ReleaseReaderLock();
    writer.join();
    EXPECT_EQ(trail.Steps(), (std::vector<std::string>{"reader leaves", "writer"}));
    EXPECT_EQ(lock.HeldHere(), 0u);
}

TEST(SystemReaderWriterLockReentrant, CopyTakesTheCopyingThreadsHoldsButNotEvents) {
    CReentrantProbe lock;
    lock.AcquireReaderLock();
    lock.AcquireReaderLock();
    CReentrantProbe copy(lock);
    EXPECT_EQ(copy.HeldHere(), 2u);
    EXPECT_EQ(copy.Readers(), 1u);
    lock.ReleaseReaderLock();
    lock.ReleaseReaderLock();
    EXPECT_EQ(lock.HeldHere(), 0u);
    // The copy believes this thread holds the read lock and gives it back.
    copy.ReleaseReaderLock();
    copy.ReleaseReaderLock();
    copy.AcquireWriterLock();
    copy.ReleaseWriterLock();
    EXPECT_EQ(copy.HeldHere(), 0u);
    // Assigning a lock this thread does not hold drops the holds.
    copy.AcquireReaderLock();
    CReentrantProbe unheld;
    copy = unheld;
    EXPECT_EQ(copy.HeldHere(), 0u);
    EXPECT_EQ(copy.Readers(), 0u);
}

TEST(SystemReaderWriterLockReentrant, AssignmentReplacesCountsAndKeepsTheSource) {
    CReentrantProbe source;
    source.AcquireReaderLock();
    CReentrantProbe target;
    target.AcquireWriterLock();
    target = source;
    // The target's writer is gone; it holds what the source held.
    EXPECT_EQ(target.Writers(), 0u);
    EXPECT_EQ(target.Readers(), 1u);
    EXPECT_EQ(target.HeldHere(), 1u);
    target.ReleaseReaderLock();
    target.AcquireWriterLock();
    target.ReleaseWriterLock();
    EXPECT_EQ(target.HeldHere(), 0u);
    EXPECT_EQ(source.Readers(), 1u);
    source.ReleaseReaderLock();
    EXPECT_EQ(source.HeldHere(), 0u);
}

TEST(SystemReaderWriterLockReentrant, ManyThreadsAndManyLocksKeepTheirOwnCounts) {
    // More locks than a thread keeps at hand, held at once by every thread.
    const unsigned uLocks = 20;
    const unsigned uThreads = 12;
    std::vector<CReentrantProbe> locks(uLocks);
    std::atomic<unsigned> uHolding{0};
    std::atomic<int> iWrongCounts{0};
    std::vector<std::thread> threads;
    for (unsigned uThread = 0; uThread < uThreads; ++uThread)
        threads.emplace_back([&] {
            for (unsigned uLock = 0; uLock < uLocks; ++uLock)
                for (unsigned uTimes = 0; uTimes <= uLock % 3; ++uTimes)
                    locks[uLock].AcquireReaderLock();
            // Every thread holds all its locks before any lets go.
            ++uHolding;
            while (uHolding < uThreads)
                std::this_thread::yield();
            for (unsigned uLock = 0; uLock < uLocks; ++uLock) {
                if (locks[uLock].HeldHere() != uLock % 3 + 1)
                    ++iWrongCounts;
                for (unsigned uTimes = 0; uTimes <= uLock % 3; ++uTimes)
                    locks[uLock].ReleaseReaderLock();
                if (locks[uLock].HeldHere() != 0)
                    ++iWrongCounts;
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(iWrongCounts, 0);
    for (CReentrantProbe& lock : locks) {
        EXPECT_EQ(lock.Readers(), 0u);
        lock.AcquireWriterLock();
        EXPECT_EQ(lock.HeldHere(), CKWReaderWriterLock::WRITER_HOLD);
        lock.ReleaseWriterLock();
    }
}

// Several threads take the lock in every way it allows; no writer may ever
// share it with a reader or with another writer.
class CInvariantWatch {
public:
    void EnterRead() { Check(++m_iReaders > 0 && m_iWriters == 0); }
    void LeaveRead() { --m_iReaders; }
    void EnterWrite() { Check(++m_iWriters == 1 && m_iReaders == 0); }
    void LeaveWrite() { --m_iWriters; }
    int Violations() const { return m_iViolations; }

private:
    void Check(bool bHolds) {
        if (!bHolds)
            ++m_iViolations;
    }
    std::atomic<int> m_iReaders{0};
    std::atomic<int> m_iWriters{0};
    std::atomic<int> m_iViolations{0};
};

template <class Lock>
void RunPlainRound(Lock& lock, CInvariantWatch& watch, unsigned uStep) {
    if (uStep % 3 == 0) {
        lock.AcquireWriterLock();
        watch.EnterWrite();
        watch.LeaveWrite();
        lock.ReleaseWriterLock();
    } else {
        lock.AcquireReaderLock();
        watch.EnterRead();
        std::this_thread::yield();
        watch.LeaveRead();
        lock.ReleaseReaderLock();
    }
}

void RunReentrantRound(CKWReaderWriterLock& lock, CInvariantWatch& watch, unsigned uStep) {
    if (uStep % 4 != 1) {
        RunPlainRound(lock, watch, uStep);
        return;
    }
    lock.AcquireReaderLock();
    watch.EnterRead();
    watch.LeaveRead();
    lock.AcquireWriterLock();
    watch.EnterWrite();
    lock.AcquireReaderLock();
    watch.LeaveWrite();
    lock.ReleaseWriterLock();
    watch.EnterRead();
    watch.LeaveRead();
    lock.ReleaseReaderLock();
    lock.ReleaseReaderLock();
}

template <class Lock, class Round>
void Stress(Lock& lock, Round round) {
    CInvariantWatch watch;
    std::vector<std::thread> threads;
    for (unsigned uThread = 0; uThread < 6; ++uThread)
        threads.emplace_back([&, uThread] {
            for (unsigned uStep = 0; uStep < 2000; ++uStep)
                round(lock, watch, uStep + uThread);
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(watch.Violations(), 0);
}

TEST(SystemReaderWriterLockStress, NoWriterEverSharesTheLock) {
    CPlainProbe plain;
    Stress(plain, RunPlainRound<CReaderWriterLockNonReentrance>);
    EXPECT_FALSE(plain.HasEvents());
    CReentrantProbe reentrant;
    Stress(reentrant, RunReentrantRound);
    EXPECT_EQ(reentrant.HeldHere(), 0u);
    EXPECT_FALSE(reentrant.HasEvents());
}

}  // namespace
