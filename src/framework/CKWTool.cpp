#include "kwcore/framework/CKWTool.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWTool, "{45AE9A00-017B-4CEF-8CE5-FD6802B90C83}",
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CKWTool)
KW_END_FIELDS()

// Only the tool's own table renames its type: derived tools keep their names.
void CKWTool::CKWToolType::CreateFields(CKWSerialObjectTypeImpl* type, IKWObject* object) {
    if (type == this && !object) {
        SetName("Tool");
        SetDescription("A Tool");
    }
    CKWSerialObjectTypeImpl::CreateFields(type, object);
}

int CKWTool::OnInitialize() {
    if (!CKWSerialObject::OnInitialize()) {
        return 0;
    }
    m_pObserver = static_cast<CKWObserverAdapter*>(
        CKWObserverAdapter::GetCKWObserverAdapterType()->CreateInstance(CKWGuid()));
    if (m_pObserver) {
        m_pObserver->SetListener(this);
    }
    return 1;
}

int CKWTool::OnBeforeRelease() {
    if (m_pObserver) {
        m_pObserver->Release();
        m_pObserver = nullptr;
    }
    return CKWSerialObject::OnBeforeRelease();
}

CKWObserver* CKWTool::GetObserver() {
    return m_pObserver;
}

int CKWTool::OnSetActivated(CKWMDIChildWnd* window, int activate) {
    if (activate) {
        m_pActiveWindow = window;
    }
    return 0;
}

void CKWTool::OnUpdate(CKWObservation* observation) {
    if (!observation) {
        return;
    }
    if (observation->IsTypeOf(CKWToolEvent::GetCKWToolEventType()->GetID())) {
        ProcessToolEvent(dynamic_cast<CKWToolEvent*>(observation));
    } else if (observation->IsTypeOf(CKWFocusEvent::GetCKWFocusEventType()->GetID())) {
        if (auto* focus = dynamic_cast<CKWFocusEvent*>(observation)) {
            OnFocusChanged(focus->GetFocus(), focus->GetWindow());
        }
    }
}

void CKWTool::ProcessToolEvent(CKWToolEvent* event) {
    if (!event) {
        return;
    }
    const int first = static_cast<int>(event->GetFirstWord());
    const UINT second = event->GetSecondWord();
    const CPoint window = event->GetWindowPoint();
    const CKWPoint4T<float, double> world(static_cast<float>(event->GetWorldX()),
                                          static_cast<float>(event->GetWorldY()),
                                          static_cast<float>(event->GetWorldZ()), 1.0f);
    switch (event->GetKind()) {
        case CKWToolEvent::KIND_MOUSE_DOWN:
            OnMouseDown(first, second, window, world);
            break;
        case CKWToolEvent::KIND_MOUSE_UP:
            OnMouseUp(first, second, window, world);
            break;
        case CKWToolEvent::KIND_MOUSE_MOVE:
            OnMouseMove(first, second, window, world);
            break;
        case CKWToolEvent::KIND_KEY_DOWN:
            OnKeyDown(static_cast<UINT>(first), second, window.x, window.y);
            break;
        case CKWToolEvent::KIND_KEY_UP:
            OnKeyUp(static_cast<UINT>(first), second, window.x, window.y);
            break;
        case CKWToolEvent::KIND_PAINT:
            OnPaint(reinterpret_cast<HDC>(event->GetFirstWord()), static_cast<int>(second),
                    CSize(window.x, window.y), CKWBound2T<float, double>(), 0.0);
            break;
        case CKWToolEvent::KIND_MOUSE_WHEEL:
            OnMouseWheel(event->GetWheelDelta(), second, window, CKWPoint4T<float, double>());
            break;
        case CKWToolEvent::KIND_MOUSE_LEAVE:
            OnMouseLeave();
            break;
        default:
            break;  // kind 7 and unknown kinds reach no handler
    }
}

void CKWTool::OnMouseDown(int, UINT, CPoint, CKWPoint4T<float, double>) {}
void CKWTool::OnMouseUp(int, UINT, CPoint, CKWPoint4T<float, double>) {}
void CKWTool::OnMouseMove(int, UINT, CPoint, CKWPoint4T<float, double>) {}
void CKWTool::OnMouseWheel(short, UINT, CPoint, CKWPoint4T<float, double>) {}
void CKWTool::OnMouseLeave() {}
void CKWTool::OnKeyDown(UINT, UINT, int, int) {}
void CKWTool::OnKeyUp(UINT, UINT, int, int) {}
void CKWTool::OnPaint(HDC, int, CSize, CKWBound2T<float, double>, double) {}
void CKWTool::OnFocusChanged(bool, CWnd*) {}
