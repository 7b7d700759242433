// Observables: delivery order along the observation type chain, queued
// re-entrant publication, deferred registration changes, ownership.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "FrameworkTestTypes.h"
#include "kwcore/framework/CKWObservable.h"
#include "kwcore/framework/CKWToolEventRouter.h"

namespace {

const CKWGuid kBase(KW_BASE_OBSERVATION_TYPE_ID);
const CKWGuid kA(kObservationATypeID);
const CKWGuid kB(kObservationBTypeID);
const CKWGuid kC(kObservationCTypeID);

CKWObservation* NewC() {
    return KWTestCreate<CKWObservation>(CObservationC::GetCObservationCType());
}
CKWObservation* NewA() {
    return KWTestCreate<CKWObservation>(CObservationA::GetCObservationAType());
}
CKWObservation* NewBase() {
    return KWTestCreate<CKWObservation>(CKWObservation::GetCKWObservationType());
}
CKWObservation* Kept(CKWObservation* observation) {
    observation->SetAutoRelease(0);
    return observation;
}

class ObservableTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_pSubject = KWTestCreate<CKWObservable>(CKWToolEventRouter::GetCKWToolEventRouterType());
    }
    void TearDown() override {
        EXPECT_EQ(m_pSubject->Release(), 1);
        for (CRecordingObserver* observer : m_observers) {
            observer->Release();
        }
    }

    CRecordingObserver* Observer(const std::string& name, const CKWGuid* typeID = &kBase) {
        auto* observer =
            KWTestCreate<CRecordingObserver>(CRecordingObserver::GetCRecordingObserverType());
        observer->m_name = name;
        observer->m_pLog = &m_log;
        m_observers.push_back(observer);
        if (typeID) {
            EXPECT_EQ(m_pSubject->AddObserver(observer, *typeID), 1);
        }
        return observer;
    }
    // The names of the observers that received something since the last call.
    std::vector<std::string> Received() {
        std::vector<std::string> names;
        for (const SReceipt& receipt : m_log) {
            names.push_back(receipt.observer);
        }
        m_log.clear();
        return names;
    }

    CKWObservable* m_pSubject = nullptr;
    std::vector<CRecordingObserver*> m_observers;
    std::vector<SReceipt> m_log;
};

using Seen = std::vector<std::string>;

TEST_F(ObservableTest, DeliversMostDerivedTypeFirstThenEachAncestorAndReleasesAfter) {
    Observer("base");
    Observer("a", &kA);
    CRecordingObserver* twice = Observer("c+b", &kC);
    Observer("c", &kC);
    ASSERT_EQ(m_pSubject->AddObserver(twice, kB), 1);
    auto* type = CObservationC::GetCObservationCType();
    const int before = type->GetInstanceCount();

    m_pSubject->NotifyObservers(NewC());
    EXPECT_EQ(Received(), (Seen{"c+b", "c", "c+b", "a", "base"}));
    EXPECT_EQ(type->GetInstanceCount(), before);
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Received(), (Seen{"a", "base"}));
    m_pSubject->NotifyObservers(NewBase());
    EXPECT_EQ(Received(), (Seen{"base"}));

    CKWObservation* kept = Kept(NewC());
    m_pSubject->NotifyObservers(kept);
    m_pSubject->NotifyObservers(kept);
    EXPECT_EQ(Received().size(), 10u);
    EXPECT_EQ(kept->Release(), 1);
    EXPECT_EQ(m_pSubject->IsLocked(), 0);
}

TEST_F(ObservableTest, ObservationsRaisedDuringDeliveryAreQueuedBehindIt) {
    CRecordingObserver* first = Observer("first");
    Observer("second");
    CKWObservation* outer = Kept(NewA());
    CKWObservation* inner = Kept(NewA());
    int depth = 0;
    int deepest = 0;
    int raised = 0;
    first->m_action = [&](CKWObservation* observation) {
        deepest = std::max(deepest, ++depth);
        if (observation == outer) {
            m_pSubject->NotifyObservers(inner);
            EXPECT_EQ(m_pSubject->GetPendingCount(), 1);
        } else if (observation != inner && ++raised < 1000) {
            m_pSubject->NotifyObservers(NewA());  // a long chain, each raising the next
        }
        --depth;
    };
    m_pSubject->NotifyObservers(outer);
    EXPECT_EQ(m_log,
              (std::vector<SReceipt>{
                  {"first", outer}, {"second", outer}, {"first", inner}, {"second", inner}}));
    Received();
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Received().size(), 2000u);
    EXPECT_EQ(deepest, 1);
    EXPECT_EQ(m_pSubject->GetPendingCount(), 0);
    outer->Release();
    inner->Release();
}

TEST_F(ObservableTest, AddDuringDeliveryIsDeferredAndFiledUnderTheBaseType) {
    CRecordingObserver* trigger = Observer("trigger", &kA);
    CRecordingObserver* late = Observer("late", nullptr);
    trigger->m_action = [&](CKWObservation*) {
        EXPECT_EQ(m_pSubject->AddObserver(late, kC), 1);
        EXPECT_EQ(m_pSubject->IsLocked(), 1);
    };
    m_pSubject->NotifyObservers(NewC());
    EXPECT_EQ(Received(), (Seen{"trigger"}));
    trigger->m_action = nullptr;
    EXPECT_EQ(m_pSubject->GetObserver(kBase, late->GetInstanceID()), late);
    EXPECT_EQ(m_pSubject->GetObserver(kC, late->GetInstanceID()), nullptr);
    m_pSubject->NotifyObservers(NewBase());
    EXPECT_EQ(Received(), (Seen{"late"}));
}

TEST_F(ObservableTest, RemoveDuringDeliveryOnlyLeavesTheBaseTypeAfterwards) {
    CRecordingObserver* specific = Observer("specific", &kA);
    CRecordingObserver* general = Observer("general");
    CRecordingObserver* fickle = Observer("fickle");
    Observer("after");
    specific->m_action = [&](CKWObservation*) {
        EXPECT_EQ(m_pSubject->RemoveObserver(specific, kA), 1);
    };
    general->m_action = [&](CKWObservation*) { m_pSubject->RemoveObserver(general, kBase); };
    fickle->m_action = [&](CKWObservation*) {
        m_pSubject->RemoveObserver(fickle, kBase);
        m_pSubject->RemoveObserver(fickle, kBase);
        EXPECT_EQ(m_pSubject->AddObserver(fickle, kBase), 0);  // cancels both removes
    };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Received(), (Seen{"specific", "general", "fickle", "after"}));
    for (CRecordingObserver* observer : m_observers) {
        observer->m_action = nullptr;
    }
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Received(), (Seen{"specific", "fickle", "after"}));
}

TEST_F(ObservableTest, RegistrationResults) {
    CRecordingObserver* observer = Observer("o");
    // Braced lists evaluate left to right: each list is a sequence of calls.
    EXPECT_EQ((std::vector<int>{m_pSubject->AddObserver(nullptr, kBase),
                                m_pSubject->AddObserver(observer, kBase),
                                m_pSubject->AddObserver(observer, kA)}),
              (std::vector<int>{0, 0, 1}));
    EXPECT_EQ(m_pSubject->GetObserver(kBase, CKWGuid::CreateNewGUID()), nullptr);
    EXPECT_EQ(m_pSubject->GetObserver(kB, observer->GetInstanceID()), nullptr);
    EXPECT_EQ(
        (std::vector<int>{m_pSubject->RemoveObserver(observer, kB),
                          m_pSubject->RemoveObserver(nullptr, kBase),
                          m_pSubject->RemoveObserver(observer, kBase),
                          m_pSubject->RemoveObserver(observer, kBase),
                          m_pSubject->GetObserverCount(kBase), m_pSubject->GetObserverCount(kA)}),
        (std::vector<int>{1, 1, 1, 1, 0, 1}));
}

TEST_F(ObservableTest, NullObservationEndsTheDeliveryAndLeavesTheRestQueued) {
    CRecordingObserver* observer = Observer("o");
    m_pSubject->NotifyObservers(nullptr);
    EXPECT_TRUE(m_log.empty());
    EXPECT_EQ(m_pSubject->IsLocked(), 0);

    CKWObservation* waiting = NewA();
    bool fired = false;
    observer->m_action = [&](CKWObservation*) {
        if (std::exchange(fired, true)) {
            return;
        }
        m_pSubject->NotifyObservers(nullptr);
        m_pSubject->NotifyObservers(waiting);
    };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Received().size(), 1u);
    EXPECT_EQ(m_pSubject->GetPendingCount(), 1);
    m_pSubject->NotifyObservers(NewBase());
    ASSERT_EQ(m_log.size(), 2u);
    EXPECT_EQ(m_log[0].observation, waiting);
}

TEST_F(ObservableTest, ReleaseIsRefusedDuringDeliveryAndFreesQueuedObservations) {
    CRecordingObserver* observer = Observer("o");
    int refused = -1;
    observer->m_action = [&](CKWObservation*) { refused = m_pSubject->Release(); };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(refused, 0);

    // Queued behind a null, twice: the release gives it back once (LeakSanitizer checks).
    auto* other = KWTestCreate<CKWObservable>(CKWToolEventRouter::GetCKWToolEventRouterType());
    CKWObservation* queued = NewA();
    CKWObservation* kept = Kept(NewA());
    other->AddObserver(observer, kBase);
    bool fired = false;
    observer->m_action = [&](CKWObservation*) {
        if (std::exchange(fired, true)) {
            return;
        }
        for (CKWObservation* observation :
             {static_cast<CKWObservation*>(nullptr), queued, queued, kept}) {
            other->NotifyObservers(observation);
        }
    };
    other->NotifyObservers(NewBase());
    EXPECT_EQ(other->GetPendingCount(), 3);
    EXPECT_EQ(other->Release(), 1);
    EXPECT_EQ(kept->Release(), 1);
}

TEST_F(ObservableTest, CopiedObservationKeepsItsFieldsAndIsNeverFreedByDelivery) {
    CKWObservation* original = NewA();
    original->SetSourceID(CKWGuid::CreateNewGUID());
    CKWObservation copy(*original);
    EXPECT_EQ(copy.GetInstanceID(), original->GetInstanceID());
    EXPECT_EQ(copy.GetSourceID(), original->GetSourceID());
    EXPECT_EQ(copy.CanAutoRelease(), 1);
    Observer("o");
    m_pSubject->NotifyObservers(&copy);  // auto-release on, but a copy: left alone
    EXPECT_EQ(Received().size(), 1u);

    CKWObservation* target = Kept(NewBase());
    *target = *original;
    EXPECT_EQ(target->GetSourceID(), original->GetSourceID());
    EXPECT_EQ(target->CanAutoRelease(), 1);
    EXPECT_EQ(target->Release(), 1);
    EXPECT_EQ(original->Release(), 1);
}

}  // namespace
