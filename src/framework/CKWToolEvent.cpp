#include "kwcore/framework/CKWToolEvent.h"

KW_IMPLEMENT_TYPE(CKWToolEvent, "{2693E4BF-CD4A-4D2F-9722-3CD885AF66AC}",
                  KW_BASE_OBSERVATION_TYPE_ID)

CKWToolEvent* CKWToolEvent::Create() {
    return static_cast<CKWToolEvent*>(m_CKWToolEventType.CreateInstance(CKWGuid()));
}

void CKWToolEvent::SetPointer(int kind, int button, UINT flags, CPoint windowPoint, double worldX,
                              double worldY, double worldZ) {
    m_iKind = kind;
    m_firstWord = button;
    m_uSecondWord = flags;
    m_windowPoint = windowPoint;
    SetWorldPoint(worldX, worldY, worldZ);
}

void CKWToolEvent::SetKey(int kind, UINT key, UINT flags, int x, int y) {
    m_iKind = kind;
    m_firstWord = static_cast<INT_PTR>(key);
    m_uSecondWord = flags;
    m_windowPoint = CPoint(x, y);
}

void CKWToolEvent::SetPaint(HDC dc, int value, CSize size) {
    m_iKind = KIND_PAINT;
    m_firstWord = reinterpret_cast<INT_PTR>(dc);
    m_uSecondWord = static_cast<UINT>(value);
    m_windowPoint = CPoint(size.cx, size.cy);
}

void CKWToolEvent::SetWheel(short delta, UINT flags, CPoint windowPoint) {
    m_iKind = KIND_MOUSE_WHEEL;
    m_sWheelDelta = delta;
    m_uSecondWord = flags;
    m_windowPoint = windowPoint;
}

void CKWToolEvent::SetWorldPoint(double x, double y, double z) {
    m_dWorldX = x;
    m_dWorldY = y;
    m_dWorldZ = z;
}
