// Publishing observations along a three-level observation type chain to 1, 10
// and 100 observers, against Boost.Signals2 delivering the same calls
// (OnUpdate on the same observers) to the same number of slots. Also
// re-entrant publication: each delivery raises the next observation, and the
// cost per notification should not depend on how long the chain runs.
#include <benchmark/benchmark.h>

#include <boost/signals2.hpp>
#include <vector>

#include "KWTestObjects.h"
#include "kwcore/framework/CKWObservable.h"
#include "kwcore/framework/CKWToolEventRouter.h"

namespace {

constexpr const char* kBenchATypeID = "{0B6D2E81-4C3F-4A95-8E27-51D9C0F3A6B4}";
constexpr const char* kBenchBTypeID = "{1C7E3F92-5D40-4BA6-9F38-62EAD104B7C5}";
constexpr const char* kBenchCTypeID = "{2D8F40A3-6E51-4CB7-A049-73FBE215C8D6}";

}  // namespace

class CBenchObservationA : public CKWObservation {
    KW_DECLARE_TYPE(CBenchObservationA, CKWObjectTypeImpl)
};
class CBenchObservationB : public CBenchObservationA {
    KW_DECLARE_TYPE(CBenchObservationB, CKWObjectTypeImpl)
};
class CBenchObservationC : public CBenchObservationB {
    KW_DECLARE_TYPE(CBenchObservationC, CKWObjectTypeImpl)
};

// Counts what it receives; optionally raises the next observation itself.
class CBenchObserver : public CKWObserver {
    KW_DECLARE_TYPE(CBenchObserver, CKWObjectTypeImpl)

public:
    void OnUpdate(CKWObservation* observation) override;

    long m_lReceived = 0;
    int m_iRaiseLeft = 0;
    CKWObservable* m_pRelay = nullptr;
    boost::signals2::signal<void(CKWObservation*)>* m_pRelaySignal = nullptr;
};

KW_IMPLEMENT_TYPE(CBenchObservationA, kBenchATypeID, KW_BASE_OBSERVATION_TYPE_ID)
KW_IMPLEMENT_TYPE(CBenchObservationB, kBenchBTypeID, kBenchATypeID)
KW_IMPLEMENT_TYPE(CBenchObservationC, kBenchCTypeID, kBenchBTypeID)
KW_IMPLEMENT_TYPE(CBenchObserver, "{3E9051B4-7F62-4DC8-B15A-840CF326D9E7}",
                  "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}")

void CBenchObserver::OnUpdate(CKWObservation* observation) {
    ++m_lReceived;
    if (m_iRaiseLeft > 0) {
        --m_iRaiseLeft;
        if (m_pRelay) {
            m_pRelay->NotifyObservers(observation);
        } else if (m_pRelaySignal) {
            (*m_pRelaySignal)(observation);
        }
    }
}

namespace {

const SCollectTypes s_collectBenchTypes(CKWGuid::CreateNewGUID());

const CKWGuid kChain[3] = {CKWGuid(kBenchCTypeID), CKWGuid(kBenchBTypeID), CKWGuid(kBenchATypeID)};

// n observers, the i-th registered under level i % 3 of the chain, or all in
// one signal's slots: the same OnUpdate calls in the same number.
struct Audience {
    explicit Audience(int n) {
        for (int i = 0; i < n; ++i) {
            observers.push_back(
                KWTestCreate<CBenchObserver>(CBenchObserver::GetCBenchObserverType()));
        }
    }
    ~Audience() {
        for (CBenchObserver* observer : observers) {
            observer->Release();
        }
    }
    long Received() const {
        long total = 0;
        for (const CBenchObserver* observer : observers) {
            total += observer->m_lReceived;
        }
        return total;
    }
    std::vector<CBenchObserver*> observers;
};

void ReportCalls(benchmark::State& state, long received) {
    state.SetItemsProcessed(received);
    state.counters["calls/publish"] =
        static_cast<double>(received) / static_cast<double>(state.iterations());
}

// One observation, kept by the publisher (auto-release off), published over and over.
void BM_KWPublish(benchmark::State& state) {
    Audience audience(static_cast<int>(state.range(0)));
    auto* subject = KWTestCreate<CKWObservable>(CKWToolEventRouter::GetCKWToolEventRouterType());
    for (std::size_t i = 0; i < audience.observers.size(); ++i) {
        subject->AddObserver(audience.observers[i], kChain[i % 3]);
    }
    auto* observation =
        KWTestCreate<CBenchObservationC>(CBenchObservationC::GetCBenchObservationCType());
    observation->SetAutoRelease(0);
    for (auto _ : state) {
        subject->NotifyObservers(observation);
    }
    ReportCalls(state, audience.Received());
    observation->Release();
    subject->Release();
}
BENCHMARK(BM_KWPublish)->Arg(1)->Arg(10)->Arg(100);

// A new observation per publication, made through its type and auto-released.
void BM_KWPublishNew(benchmark::State& state) {
    Audience audience(static_cast<int>(state.range(0)));
    auto* subject = KWTestCreate<CKWObservable>(CKWToolEventRouter::GetCKWToolEventRouterType());
    for (std::size_t i = 0; i < audience.observers.size(); ++i) {
        subject->AddObserver(audience.observers[i], kChain[i % 3]);
    }
    IKWObjectType* type = CBenchObservationC::GetCBenchObservationCType();
    const CKWGuid empty;
    for (auto _ : state) {
        subject->NotifyObservers(static_cast<CKWObservation*>(type->CreateInstance(empty)));
    }
    ReportCalls(state, audience.Received());
    subject->Release();
}
BENCHMARK(BM_KWPublishNew)->Arg(1)->Arg(10)->Arg(100);

void BM_Signals2Publish(benchmark::State& state) {
    Audience audience(static_cast<int>(state.range(0)));
    boost::signals2::signal<void(CKWObservation*)> signal;
    for (CBenchObserver* observer : audience.observers) {
        signal.connect([observer](CKWObservation* o) { observer->OnUpdate(o); });
    }
    auto* observation =
        KWTestCreate<CBenchObservationC>(CBenchObservationC::GetCBenchObservationCType());
    observation->SetAutoRelease(0);
    for (auto _ : state) {
        signal(observation);
    }
    ReportCalls(state, audience.Received());
    observation->Release();
}
BENCHMARK(BM_Signals2Publish)->Arg(1)->Arg(10)->Arg(100);

// Each delivery raises the next observation until the chain is state.range(0) long.
void BM_KWReentrant(benchmark::State& state) {
    const int length = static_cast<int>(state.range(0));
    Audience audience(1);
    CBenchObserver* relay = audience.observers.front();
    auto* subject = KWTestCreate<CKWObservable>(CKWToolEventRouter::GetCKWToolEventRouterType());
    subject->AddObserver(relay, CKWGuid(kBenchCTypeID));
    relay->m_pRelay = subject;
    auto* observation =
        KWTestCreate<CBenchObservationC>(CBenchObservationC::GetCBenchObservationCType());
    observation->SetAutoRelease(0);
    for (auto _ : state) {
        relay->m_iRaiseLeft = length - 1;
        subject->NotifyObservers(observation);
    }
    ReportCalls(state, audience.Received());
    observation->Release();
    subject->Release();
}
BENCHMARK(BM_KWReentrant)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);

// The peer nests instead: each emission runs inside the slot that raised it.
void BM_Signals2Reentrant(benchmark::State& state) {
    const int length = static_cast<int>(state.range(0));
    Audience audience(1);
    CBenchObserver* relay = audience.observers.front();
    boost::signals2::signal<void(CKWObservation*)> signal;
    signal.connect([relay](CKWObservation* o) { relay->OnUpdate(o); });
    relay->m_pRelaySignal = &signal;
    auto* observation =
        KWTestCreate<CBenchObservationC>(CBenchObservationC::GetCBenchObservationCType());
    observation->SetAutoRelease(0);
    for (auto _ : state) {
        relay->m_iRaiseLeft = length - 1;
        signal(observation);
    }
    ReportCalls(state, audience.Received());
    observation->Release();
}
BENCHMARK(BM_Signals2Reentrant)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace
