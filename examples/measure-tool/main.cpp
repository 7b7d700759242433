// The measuring-tool example: a view turns synthetic pointer and key input
// into tool events and publishes them through a router; the host's measuring
// tool, subscribed through its observer adapter, reports distances.
//
//   kwcore_example_measure_tool                  the built-in drag
//   kwcore_example_measure_tool X1 Y1 X2 Y2      a drag between two pixels
#include <cstdio>
#include <cstdlib>

#include <kwcore/kwcore.h>

#include "CMeasureTool.h"

namespace {

// A view of the plane z = 0 at a quarter world unit per pixel, y up.
class CExampleView {
public:
    explicit CExampleView(CKWToolEventRouter* router) : m_pRouter(router) {}

    void Pointer(int kind, int x, int y) {
        CKWToolEvent* event = CKWToolEvent::Create();
        event->SetSourceID(m_viewID);
        event->SetPointer(kind, 1, 0, CPoint(x, y), x * kWorldPerPixel,
                          (kHeight - y) * kWorldPerPixel, 0.0);
        m_pRouter->NotifyObservers(event);  // delivered, then released
    }
    void Key(UINT key) {
        CKWToolEvent* event = CKWToolEvent::Create();
        event->SetKey(CKWToolEvent::KIND_KEY_DOWN, key, 1, 0, 0);
        m_pRouter->NotifyObservers(event);
    }
    void Focus(bool bFocus) {
        CKWFocusEvent* event = CKWFocusEvent::Create();
        event->Set(bFocus, &m_window);
        m_pRouter->NotifyObservers(event);
    }

private:
    static constexpr double kWorldPerPixel = 0.25;
    static constexpr int kHeight = 480;

    CKWToolEventRouter* m_pRouter;
    CWnd m_window;
    CKWGuid m_viewID = CKWGuid::CreateNewGUID();
};

void Drag(CExampleView& view, int x1, int y1, int x2, int y2) {
    view.Pointer(CKWToolEvent::KIND_MOUSE_DOWN, x1, y1);
    view.Pointer(CKWToolEvent::KIND_MOUSE_MOVE, (x1 + x2) / 2, (y1 + y2) / 2);
    view.Pointer(CKWToolEvent::KIND_MOUSE_UP, x2, y2);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 1 && argc != 5) {
        std::fprintf(stderr, "usage: %s [X1 Y1 X2 Y2]\n", argv[0]);
        return 2;
    }
    CKWTypeSystem::Initialize(CKWGuid("{D496C21B-A3C5-47E8-8C6F-2B4B5D3F6A7A}"));

    auto* router = static_cast<CKWToolEventRouter*>(
        CKWToolEventRouter::GetCKWToolEventRouterType()->CreateInstance(CKWGuid()));
    auto* tool =
        static_cast<CMeasureTool*>(CMeasureTool::GetCMeasureToolType()->CreateInstance(CKWGuid()));
    const CKWGuid allObservations(KW_BASE_OBSERVATION_TYPE_ID);
    router->AddObserver(tool->GetObserver(), allObservations);
    std::printf("%s (%s) listening to a %s\n", static_cast<const char*>(tool->GetType()->GetName()),
                static_cast<const char*>(CKWTool::GetCKWToolType()->GetDescription()),
                static_cast<const char*>(router->GetType()->GetName()));

    CExampleView view(router);
    view.Focus(true);
    if (argc == 5) {
        Drag(view, std::atoi(argv[1]), std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4]));
    } else {
        Drag(view, 40, 440, 52, 424);  // 3 right, 4 up in world units: distance 5
        view.Pointer(CKWToolEvent::KIND_MOUSE_DOWN, 0, 0);
        view.Key(0x1B);  // escape drops the second one
        view.Pointer(CKWToolEvent::KIND_MOUSE_UP, 100, 100);
    }
    view.Focus(false);
    const double distance = tool->GetLastDistance();

    router->RemoveObserver(tool->GetObserver(), allObservations);
    tool->Release();
    router->Release();
    CKWTypeSystem::Release();
    return distance >= 0 ? 0 : 1;
}
