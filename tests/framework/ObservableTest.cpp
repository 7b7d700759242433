// Observables: delivery order along the observation type chain, queued
// re-entrant publication, deferred registration changes, ownership.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FrameworkTestTypes.h"
#include "kwcore/framework/CKWObservable.h"

namespace {

const CKWGuid kBase(KW_BASE_OBSERVATION_TYPE_ID);

class ObservableTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_pSubject = Make<CKWObservable>(CKWObservable::GetCKWObservableType());
        ASSERT_NE(m_pSubject, nullptr);
    }

    void TearDown() override {
        EXPECT_EQ(m_pSubject->Release(), 1);
        for (CRecordingObserver* observer : m_observers) {
            observer->Release();
        }
    }

    CRecordingObserver* Observer(const std::string& name) {
        auto* observer = Make<CRecordingObserver>(CRecordingObserver::GetCRecordingObserverType());
        observer->m_name = name;
        observer->m_pLog = &m_log;
        m_observers.push_back(observer);
        return observer;
    }

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const SReceipt& receipt : m_log) {
            names.push_back(receipt.observer);
        }
        return names;
    }

    CKWObservable* m_pSubject = nullptr;
    std::vector<CRecordingObserver*> m_observers;
    std::vector<SReceipt> m_log;
};

CObservationC* NewC() {
    return Make<CObservationC>(CObservationC::GetCObservationCType());
}
CObservationA* NewA() {
    return Make<CObservationA>(CObservationA::GetCObservationAType());
}
CKWObservation* NewBase() {
    return Make<CKWObservation>(CKWObservation::GetCKWObservationType());
}

TEST_F(ObservableTest, DeliversMostDerivedTypeFirstThenEachAncestor) {
    ASSERT_EQ(m_pSubject->AddObserver(Observer("base"), kBase), 1);
    ASSERT_EQ(m_pSubject->AddObserver(Observer("a"), CKWGuid(kObservationATypeID)), 1);
    CRecordingObserver* twice = Observer("c+b");
    ASSERT_EQ(m_pSubject->AddObserver(twice, CKWGuid(kObservationCTypeID)), 1);
    ASSERT_EQ(m_pSubject->AddObserver(Observer("c"), CKWGuid(kObservationCTypeID)), 1);
    ASSERT_EQ(m_pSubject->AddObserver(twice, CKWGuid(kObservationBTypeID)), 1);

    m_pSubject->NotifyObservers(NewC());
    EXPECT_EQ(Names(), (std::vector<std::string>{"c+b", "c", "c+b", "a", "base"}));

    m_log.clear();
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Names(), (std::vector<std::string>{"a", "base"}));

    m_log.clear();
    m_pSubject->NotifyObservers(NewBase());
    EXPECT_EQ(Names(), (std::vector<std::string>{"base"}));
    EXPECT_EQ(m_pSubject->IsLocked(), 0);
}

TEST_F(ObservableTest, AutoReleaseFreesAfterDeliveryUnlessTurnedOff) {
    m_pSubject->AddObserver(Observer("base"), kBase);
    auto* type = CObservationC::GetCObservationCType();
    const int before = type->GetInstanceCount();

    CObservationC* released = NewC();
    EXPECT_EQ(released->CanAutoRelease(), 1);
    m_pSubject->NotifyObservers(released);
    EXPECT_EQ(type->GetInstanceCount(), before);

    CObservationC* kept = NewC();
    kept->SetAutoRelease(0);
    kept->SetSourceID(m_pSubject->GetInstanceID());
    m_pSubject->NotifyObservers(kept);
    m_pSubject->NotifyObservers(kept);
    ASSERT_EQ(type->GetInstanceCount(), before + 1);
    EXPECT_EQ(kept->GetSourceID(), m_pSubject->GetInstanceID());
    EXPECT_EQ(m_log.size(), 3u);
    EXPECT_EQ(m_log.back().observation, kept);
    kept->Release();
}

TEST_F(ObservableTest, ObservationRaisedDuringDeliveryIsQueuedBehindIt) {
    CRecordingObserver* first = Observer("first");
    CRecordingObserver* second = Observer("second");
    m_pSubject->AddObserver(first, kBase);
    m_pSubject->AddObserver(second, kBase);
    CObservationA* outer = NewA();
    CObservationA* inner = NewA();
    outer->SetAutoRelease(0);
    inner->SetAutoRelease(0);
    int depth = 0;
    int deepest = 0;
    first->m_action = [&](CKWObservation* observation) {
        deepest = std::max(deepest, ++depth);
        if (observation == outer) {
            m_pSubject->NotifyObservers(inner);
            EXPECT_EQ(m_pSubject->GetPendingCount(), 1);
        }
        --depth;
    };

    m_pSubject->NotifyObservers(outer);
    const std::vector<SReceipt> expected = {
        {"first", outer}, {"second", outer}, {"first", inner}, {"second", inner}};
    EXPECT_EQ(m_log, expected);
    EXPECT_EQ(deepest, 1);
    EXPECT_EQ(m_pSubject->GetPendingCount(), 0);
    outer->Release();
    inner->Release();
}

TEST_F(ObservableTest, ChainOfRaisedObservationsIsDeliveredInOrderWithoutNesting) {
    CRecordingObserver* relay = Observer("relay");
    m_pSubject->AddObserver(relay, kBase);
    int raised = 0;
    relay->m_action = [&](CKWObservation*) {
        if (++raised < 1000) {
            m_pSubject->NotifyObservers(NewA());
        }
    };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(m_log.size(), 1000u);
    EXPECT_EQ(m_pSubject->GetPendingCount(), 0);
}

TEST_F(ObservableTest, AddDuringDeliveryIsDeferredAndFiledUnderTheBaseType) {
    CRecordingObserver* trigger = Observer("trigger");
    CRecordingObserver* late = Observer("late");
    m_pSubject->AddObserver(trigger, CKWGuid(kObservationATypeID));
    trigger->m_action = [&](CKWObservation*) {
        EXPECT_EQ(m_pSubject->AddObserver(late, CKWGuid(kObservationCTypeID)), 1);
        EXPECT_EQ(m_pSubject->IsLocked(), 1);
    };

    m_pSubject->NotifyObservers(NewC());
    EXPECT_EQ(Names(), (std::vector<std::string>{"trigger"}));
    trigger->m_action = nullptr;
    EXPECT_EQ(m_pSubject->GetObserver(kBase, late->GetInstanceID()), late);
    EXPECT_EQ(m_pSubject->GetObserver(CKWGuid(kObservationCTypeID), late->GetInstanceID()),
              nullptr);

    m_log.clear();
    m_pSubject->NotifyObservers(NewBase());
    EXPECT_EQ(Names(), (std::vector<std::string>{"late"}));
}

TEST_F(ObservableTest, RemoveDuringDeliveryOnlyLeavesTheBaseTypeAfterwards) {
    CRecordingObserver* specific = Observer("specific");
    CRecordingObserver* general = Observer("general");
    CRecordingObserver* after = Observer("after");
    m_pSubject->AddObserver(specific, CKWGuid(kObservationATypeID));
    m_pSubject->AddObserver(general, kBase);
    m_pSubject->AddObserver(after, kBase);
    specific->m_action = [&](CKWObservation*) {
        EXPECT_EQ(m_pSubject->RemoveObserver(specific, CKWGuid(kObservationATypeID)), 1);
    };
    general->m_action = [&](CKWObservation*) {
        EXPECT_EQ(m_pSubject->RemoveObserver(general, kBase), 1);
    };

    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Names(), (std::vector<std::string>{"specific", "general", "after"}));
    specific->m_action = nullptr;

    m_log.clear();
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(Names(), (std::vector<std::string>{"specific", "after"}));
}

TEST_F(ObservableTest, ReAddingDuringDeliveryCancelsTheDeferredRemove) {
    CRecordingObserver* fickle = Observer("fickle");
    m_pSubject->AddObserver(fickle, kBase);
    fickle->m_action = [&](CKWObservation*) {
        m_pSubject->RemoveObserver(fickle, kBase);
        m_pSubject->RemoveObserver(fickle, kBase);
        EXPECT_EQ(m_pSubject->AddObserver(fickle, kBase), 0);
    };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(m_pSubject->GetObserver(kBase, fickle->GetInstanceID()), fickle);
}

TEST_F(ObservableTest, RegistrationResults) {
    CRecordingObserver* observer = Observer("o");
    EXPECT_EQ(m_pSubject->AddObserver(nullptr, kBase), 0);
    EXPECT_EQ(m_pSubject->AddObserver(observer, kBase), 1);
    EXPECT_EQ(m_pSubject->AddObserver(observer, kBase), 0);
    EXPECT_EQ(m_pSubject->AddObserver(observer, CKWGuid(kObservationATypeID)), 1);
    EXPECT_EQ(m_pSubject->GetObserverCount(kBase), 1);
    EXPECT_EQ(m_pSubject->GetObserver(kBase, CKWGuid::CreateNewGUID()), nullptr);
    EXPECT_EQ(m_pSubject->GetObserver(CKWGuid(kObservationBTypeID), observer->GetInstanceID()),
              nullptr);

    EXPECT_EQ(m_pSubject->RemoveObserver(observer, CKWGuid(kObservationBTypeID)), 1);
    EXPECT_EQ(m_pSubject->RemoveObserver(nullptr, kBase), 1);
    EXPECT_EQ(m_pSubject->RemoveObserver(observer, kBase), 1);
    EXPECT_EQ(m_pSubject->RemoveObserver(observer, kBase), 1);
    EXPECT_EQ(m_pSubject->GetObserverCount(kBase), 0);
    EXPECT_EQ(m_pSubject->GetObserverCount(CKWGuid(kObservationATypeID)), 1);
}

TEST_F(ObservableTest, NullObservationEndsTheDeliveryAndLeavesTheRestQueued) {
    CRecordingObserver* observer = Observer("o");
    m_pSubject->AddObserver(observer, kBase);
    m_pSubject->NotifyObservers(nullptr);
    EXPECT_TRUE(m_log.empty());
    EXPECT_EQ(m_pSubject->IsLocked(), 0);

    CObservationA* first = NewA();
    CObservationA* waiting = NewA();
    observer->m_action = [&](CKWObservation* observation) {
        if (observation == first) {
            m_pSubject->NotifyObservers(nullptr);
            m_pSubject->NotifyObservers(waiting);
        }
    };
    m_pSubject->NotifyObservers(first);
    EXPECT_EQ(m_log.size(), 1u);
    EXPECT_EQ(m_pSubject->GetPendingCount(), 1);

    observer->m_action = nullptr;
    m_pSubject->NotifyObservers(NewBase());
    ASSERT_EQ(m_log.size(), 3u);
    EXPECT_EQ(m_log[1].observation, waiting);
}

TEST_F(ObservableTest, ReleaseIsRefusedDuringDeliveryAndFreesQueuedObservations) {
    CRecordingObserver* observer = Observer("o");
    m_pSubject->AddObserver(observer, kBase);
    int refused = -1;
    observer->m_action = [&](CKWObservation*) { refused = m_pSubject->Release(); };
    m_pSubject->NotifyObservers(NewA());
    EXPECT_EQ(refused, 0);
    observer->m_action = nullptr;

    // Queued behind a null: the release gives them back (LeakSanitizer checks).
    auto* other = Make<CKWObservable>(CKWObservable::GetCKWObservableType());
    CObservationA* queued = NewA();
    CObservationA* kept = NewA();
    kept->SetAutoRelease(0);
    other->AddObserver(observer, kBase);
    observer->m_action = [&](CKWObservation*) {
        other->NotifyObservers(nullptr);
        other->NotifyObservers(queued);
        other->NotifyObservers(queued);
        other->NotifyObservers(kept);
    };
    other->NotifyObservers(NewBase());
    EXPECT_EQ(other->GetPendingCount(), 3);
    EXPECT_EQ(other->Release(), 1);
    EXPECT_EQ(kept->Release(), 1);
}

TEST_F(ObservableTest, CopiedObservationKeepsItsFieldsAndIsNeverFreedByDelivery) {
    CObservationA* original = NewA();
    original->SetSourceID(CKWGuid::CreateNewGUID());
    CKWObservation copy(*original);
    EXPECT_EQ(copy.GetInstanceID(), original->GetInstanceID());
    EXPECT_EQ(copy.GetSourceID(), original->GetSourceID());
    EXPECT_EQ(copy.CanAutoRelease(), 1);

    m_pSubject->AddObserver(Observer("o"), kBase);
    m_pSubject->NotifyObservers(&copy);
    EXPECT_EQ(m_log.size(), 1u);

    CKWObservation* target = NewBase();
    target->SetAutoRelease(0);
    *target = *original;
    EXPECT_EQ(target->GetSourceID(), original->GetSourceID());
    EXPECT_EQ(target->CanAutoRelease(), 1);
    EXPECT_EQ(target->Release(), 1);
    EXPECT_EQ(original->Release(), 1);
}

}  // namespace
