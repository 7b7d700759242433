// Tools: dispatch of every event kind, focus events, activation, the observer
// adapter's life, and events' copies.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "KWTestObjects.h"
#include "kwcore/framework/CKWTool.h"
#include "kwcore/framework/CKWToolEventRouter.h"

// Writes each handler call with its arguments into a log line.
class CRecordingTool : public CKWTool {
    KW_DECLARE_SERIAL_TYPE(CRecordingTool)

public:
    std::vector<std::string> m_log;

    void OnMouseDown(int a, UINT b, CPoint p, CKWPoint4T<float, double> w) override {
        Log("down", a, b, p, &w);
    }
    void OnMouseUp(int a, UINT b, CPoint p, CKWPoint4T<float, double> w) override {
        Log("up", a, b, p, &w);
    }
    void OnMouseMove(int a, UINT b, CPoint p, CKWPoint4T<float, double> w) override {
        Log("move", a, b, p, &w);
    }
    void OnMouseWheel(short a, UINT b, CPoint p, CKWPoint4T<float, double> w) override {
        Log("wheel", a, b, p, &w);
    }
    void OnMouseLeave() override { m_log.push_back("leave"); }
    void OnKeyDown(UINT a, UINT b, int x, int y) override { Log("keydown", a, b, CPoint(x, y)); }
    void OnKeyUp(UINT a, UINT b, int x, int y) override { Log("keyup", a, b, CPoint(x, y)); }
    void OnPaint(HDC dc, int a, CSize size, CKWBound2T<float, double>, double) override {
        Log("paint", reinterpret_cast<long long>(dc), a, CPoint(size));
    }
    void OnFocusChanged(bool bFocus, CWnd* window) override {
        m_log.push_back(std::string(bFocus ? "gained " : "lost ") + (window ? "window" : "null"));
    }

private:
    void Log(const char* name, long long a, long long b, CPoint p,
             const CKWPoint4T<float, double>* w = nullptr) {
        char line[160];
        int n = std::snprintf(line, sizeof line, "%s %lld %lld (%d,%d)", name, a, b,
                              static_cast<int>(p.x), static_cast<int>(p.y));
        if (w) {
            std::snprintf(line + n, sizeof line - n, " (%.9g,%.9g,%.9g,%.9g)", (*w)[0], (*w)[1],
                          (*w)[2], (*w)[3]);
        }
        m_log.push_back(line);
    }
};

KW_IMPLEMENT_SERIAL_TYPE(CRecordingTool, "{B274A0F9-81A3-45C6-A47D-0F293B1D4758}",
                         "{45AE9A00-017B-4CEF-8CE5-FD6802B90C83}")
KW_BEGIN_FIELDS(CRecordingTool)
KW_END_FIELDS()

namespace {

const CKWGuid kBase(KW_BASE_OBSERVATION_TYPE_ID);

class ToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_pTool = KWTestCreate<CRecordingTool>(CRecordingTool::GetCRecordingToolType());
        m_pRouter =
            KWTestCreate<CKWToolEventRouter>(CKWToolEventRouter::GetCKWToolEventRouterType());
        ASSERT_TRUE(m_pTool && m_pRouter);
        ASSERT_EQ(m_pRouter->AddObserver(m_pTool->GetObserver(), kBase), 1);
    }
    void TearDown() override {
        m_pRouter->RemoveObserver(m_pTool->GetObserver(), kBase);
        EXPECT_EQ(m_pTool->Release(), 1);
        EXPECT_EQ(m_pRouter->Release(), 1);
    }

    CRecordingTool* m_pTool = nullptr;
    CKWToolEventRouter* m_pRouter = nullptr;
};

TEST_F(ToolTest, EveryKindReachesItsHandlerWithItsArguments) {
    auto publish = [this](auto fill) {
        CKWToolEvent* event = CKWToolEvent::Create();
        event->SetWorldPoint(7, 8, 9);  // reaches the pointer handlers only
        fill(event);
        m_pRouter->NotifyObservers(event);
    };
    using E = CKWToolEvent;
    for (int kind : {E::KIND_MOUSE_DOWN, E::KIND_MOUSE_UP, E::KIND_MOUSE_MOVE}) {
        publish([&](E* e) { e->SetPointer(kind, 2, 0x11, CPoint(-3, 40), 1.5, 2.5, 3.5); });
    }
    publish([](E* e) { e->SetPointer(E::KIND_MOUSE_MOVE, 0, 0, CPoint(), 0.1, 1e300, -2); });
    publish([](E* e) { e->SetKey(E::KIND_KEY_DOWN, 0x1B, 3, 7, -8); });
    publish([](E* e) { e->SetKey(E::KIND_KEY_UP, 0x41, 1, 0, 0); });
    publish([](E* e) {
        e->SetPaint(reinterpret_cast<HDC>(static_cast<INT_PTR>(0x7FFF12345678LL)), -5,
                    CSize(640, 480));
    });
    publish([](E* e) { e->SetWheel(-120, 4, CPoint(9, 10)); });
    publish([](E* e) { e->SetMouseLeave(); });
    for (int kind : {7, 9, 100, -1}) {
        publish([&](E* e) { e->SetKind(kind); });
    }
    const std::vector<std::string> expected = {
        "down 2 17 (-3,40) (1.5,2.5,3.5,1)",
        "up 2 17 (-3,40) (1.5,2.5,3.5,1)",
        "move 2 17 (-3,40) (1.5,2.5,3.5,1)",
        "move 0 0 (0,0) (0.100000001,inf,-2,1)",
        "keydown 27 3 (7,-8)",
        "keyup 65 1 (0,0)",
        "paint 140733498807928 -5 (640,480)",
        "wheel -120 4 (9,10) (0,0,0,0)",
        "leave",
    };
    EXPECT_EQ(m_pTool->m_log, expected);
}

TEST_F(ToolTest, FocusEventsReachOnFocusChangedAndOtherObservationsNothing) {
    CWnd view;
    CKWFocusEvent* gained = CKWFocusEvent::Create();
    gained->Set(true, &view);
    CKWFocusEvent* lost = CKWFocusEvent::Create();
    lost->SetFocus(false);
    m_pRouter->NotifyObservers(gained);
    m_pRouter->NotifyObservers(lost);
    m_pRouter->NotifyObservers(
        KWTestCreate<CKWObservation>(CKWObservation::GetCKWObservationType()));
    m_pTool->ProcessToolEvent(nullptr);
    m_pTool->OnUpdate(nullptr);
    EXPECT_EQ(m_pTool->m_log, (std::vector<std::string>{"gained window", "lost null"}));
}

TEST_F(ToolTest, ActivationStoresTheWindowOnlyWhenActivatingAndAlwaysGivesZero) {
    CKWMDIChildWnd first;
    CKWMDIChildWnd second;
    EXPECT_EQ(m_pTool->OnSetActivated(&first, 0), 0);
    EXPECT_EQ(m_pTool->GetActiveWindow(), nullptr);
    EXPECT_EQ(m_pTool->OnSetActivated(&first, 1), 0);
    EXPECT_EQ(m_pTool->OnSetActivated(&second, 0), 0);
    EXPECT_EQ(m_pTool->GetActiveWindow(), &first);
    EXPECT_EQ(std::string(m_pTool->GetType()->GetName()), "CRecordingTool");  // not renamed
}

TEST(ToolLife, TheObserverAdapterIsMadeOnInitializeAndReleasedWithTheTool) {
    auto* adapterType = CKWObserverAdapter::GetCKWObserverAdapterType();
    const int before = adapterType->GetInstanceCount();
    auto* tool = KWTestCreate<CKWTool>(CKWTool::GetCKWToolType());
    ASSERT_NE(tool, nullptr);
    auto* adapter = dynamic_cast<CKWObserverAdapter*>(tool->GetObserver());
    ASSERT_NE(adapter, nullptr);
    EXPECT_EQ(adapter->GetListener(), static_cast<IKWObservationListener*>(tool));
    EXPECT_EQ(adapterType->GetInstanceCount(), before + 1);
    EXPECT_EQ(tool->Release(), 1);
    EXPECT_EQ(adapterType->GetInstanceCount(), before);
}

TEST(ToolEvents, CopiesAndAssignmentsCarryEveryField) {
    CKWToolEvent* event = CKWToolEvent::Create();
    event->SetPointer(CKWToolEvent::KIND_MOUSE_UP, 3, 9, CPoint(1, 2), 4.25, 5.5, 6.75);
    event->SetWheelDelta(240);
    event->SetSourceID(CKWGuid::CreateNewGUID());
    event->SetAutoRelease(0);
    CKWToolEvent copy(*event);
    CKWToolEvent* target = CKWToolEvent::Create();
    *target = *event;
    const CKWToolEvent* copies[] = {&copy, target};
    for (const CKWToolEvent* same : copies) {
        EXPECT_EQ(same->GetInstanceID(), event->GetInstanceID());
        EXPECT_EQ(same->GetSourceID(), event->GetSourceID());
        EXPECT_EQ(same->CanAutoRelease(), 0);
        EXPECT_EQ(same->GetFirstWord(), 3);
        EXPECT_EQ(same->GetSecondWord(), 9u);
        EXPECT_EQ(same->GetWindowPoint(), CPoint(1, 2));
        EXPECT_EQ(same->GetWheelDelta(), 240);
        EXPECT_EQ(same->GetWorldX() + same->GetWorldY() + same->GetWorldZ(), 16.5);
        EXPECT_EQ(same->GetKind(), CKWToolEvent::KIND_MOUSE_UP);
    }
    EXPECT_EQ(target->Release(), 1);
    EXPECT_EQ(event->Release(), 1);

    CWnd window;
    CKWFocusEvent* focus = CKWFocusEvent::Create();
    focus->Set(true, &window);
    CKWFocusEvent focusCopy(*focus);
    EXPECT_TRUE(focusCopy.GetFocus());
    EXPECT_EQ(focusCopy.GetWindow(), &window);
    EXPECT_EQ(focusCopy.GetInstanceID(), focus->GetInstanceID());
    EXPECT_EQ(focus->Release(), 1);
}

}  // namespace
