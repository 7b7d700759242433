// CKWTool: turns a view's input into actions of the application.
//
// A tool receives tool and focus events through its observer adapter, made in
// OnInitialize and released with the tool, and dispatches each tool event to
// one of its handlers by kind (ProcessToolEvent). The base handlers do
// nothing: application tools derive and override the ones they need. The
// tool does not subscribe itself; the host registers GetObserver() with a
// router, and removes it again before it releases the tool (the router keeps
// plain pointers). Release a tool outside the router's delivery.
//
//   CKWTool* tool = static_cast<CKWTool*>(CMyTool::GetCMyToolType()->CreateInstance(CKWGuid()));
//   router->AddObserver(tool->GetObserver(), CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
//   ...
//   router->RemoveObserver(tool->GetObserver(), CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
//   tool->Release();
#pragma once

#include "kwcore/framework/CKWFocusEvent.h"
#include "kwcore/framework/CKWMDIChildWnd.h"
#include "kwcore/framework/CKWObserverAdapter.h"
#include "kwcore/framework/CKWToolEvent.h"
#include "kwcore/framework/IKWObservationListener.h"
#include "kwcore/geometry/linear/CKWBound2T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"
#include "kwcore/platform/CRect.h"
#include "kwcore/serial/CKWSerialObject.h"

// The serial type of tools renames itself "Tool" when its field table is built.
#define KW_TOOL_TYPE_MEMBERS_ \
    KW_SERIAL_TYPE_MEMBERS_   \
    void CreateFields(CKWSerialObjectTypeImpl* type, IKWObject* object) override;

class KWCORE_API CKWTool : public CKWSerialObject, public IKWObservationListener {
    KW_DECLARE_TYPE_WITH(CKWTool, CKWSerialObjectTypeImpl, KW_TOOL_TYPE_MEMBERS_)

protected:
    ~CKWTool() override = default;

public:
    // Calls the handler the event's kind selects; null and unknown kinds are
    // ignored. The world point reaches the pointer handlers in single
    // precision as (x, y, z, 1): override this to read the doubles first.
    virtual void ProcessToolEvent(CKWToolEvent* event);
    // Stores window as the active window when activate is nonzero. Gives 0
    // in every case: the result is not a failure.
    virtual int OnSetActivated(CKWMDIChildWnd* window, int activate);
    // The tool's observer adapter, for the host to register with a router.
    virtual CKWObserver* GetObserver();
    virtual void OnMouseDown(int button, UINT flags, CPoint windowPoint,
                             CKWPoint4T<float, double> worldPoint);
    virtual void OnMouseUp(int button, UINT flags, CPoint windowPoint,
                           CKWPoint4T<float, double> worldPoint);
    virtual void OnMouseMove(int button, UINT flags, CPoint windowPoint,
                             CKWPoint4T<float, double> worldPoint);
    virtual void OnMouseWheel(short delta, UINT flags, CPoint windowPoint,
                              CKWPoint4T<float, double> worldPoint);
    virtual void OnMouseLeave();
    virtual void OnKeyDown(UINT key, UINT flags, int x, int y);
    virtual void OnKeyUp(UINT key, UINT flags, int x, int y);
    // The event carries no scale: the dispatcher passes 0 as the last argument.
    virtual void OnPaint(HDC dc, int value, CSize size, CKWBound2T<float, double> bounds,
                         double scale);
    virtual void OnFocusChanged(bool bFocus, CWnd* window);

    // Tool events go to ProcessToolEvent, focus events to OnFocusChanged;
    // anything else is ignored.
    void OnUpdate(CKWObservation* observation) override;

    // The MDI child window the tool was last activated in, or null.
    CKWMDIChildWnd* GetActiveWindow() const { return m_pActiveWindow; }

protected:
    CKWTool() = default;

    // Makes the observer adapter, with this tool as its listener.
    int OnInitialize() override;
    // Releases the observer adapter.
    int OnBeforeRelease() override;

private:
    CKWObserverAdapter* m_pObserver = nullptr;
    CKWMDIChildWnd* m_pActiveWindow = nullptr;
};
