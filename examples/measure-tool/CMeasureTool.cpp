#include "CMeasureTool.h"

#include <cmath>

// Type ID, then CKWTool's.
KW_IMPLEMENT_SERIAL_TYPE(CMeasureTool, "{C385B10A-92B4-46D7-B58E-1A3A4C2E5869}",
                         "{45AE9A00-017B-4CEF-8CE5-FD6802B90C83}")
KW_BEGIN_FIELDS(CMeasureTool)
KW_END_FIELDS()

namespace {

constexpr UINT kEscapeKey = 0x1B;

}  // namespace

void CMeasureTool::ProcessToolEvent(CKWToolEvent* event) {
    if (event) {
        m_current = {event->GetWorldX(), event->GetWorldY(), event->GetWorldZ()};
    }
    CKWTool::ProcessToolEvent(event);
}

void CMeasureTool::OnMouseDown(int, UINT, CPoint windowPoint, CKWPoint4T<float, double>) {
    m_start = m_current;
    m_bMeasuring = true;
    std::fprintf(m_pOutput, "down at pixel (%ld, %ld), world (%g, %g, %g)\n",
                 static_cast<long>(windowPoint.x), static_cast<long>(windowPoint.y), m_start.x,
                 m_start.y, m_start.z);
}

void CMeasureTool::OnMouseMove(int, UINT, CPoint, CKWPoint4T<float, double>) {
    if (m_bMeasuring) {
        std::fprintf(m_pOutput, "  dragging: %g so far\n", DistanceTo(m_current));
    }
}

void CMeasureTool::OnMouseUp(int, UINT, CPoint windowPoint, CKWPoint4T<float, double>) {
    if (!m_bMeasuring) {
        return;
    }
    m_bMeasuring = false;
    m_dLastDistance = DistanceTo(m_current);
    std::fprintf(m_pOutput, "up at pixel (%ld, %ld), world (%g, %g, %g): distance %g\n",
                 static_cast<long>(windowPoint.x), static_cast<long>(windowPoint.y), m_current.x,
                 m_current.y, m_current.z, m_dLastDistance);
}

void CMeasureTool::OnKeyDown(UINT key, UINT, int, int) {
    if (key == kEscapeKey && m_bMeasuring) {
        m_bMeasuring = false;
        std::fprintf(m_pOutput, "escape: measurement dropped\n");
    }
}

void CMeasureTool::OnFocusChanged(bool bFocus, CWnd*) {
    std::fprintf(m_pOutput, "view %s the focus\n", bFocus ? "gained" : "lost");
}

double CMeasureTool::DistanceTo(const SPoint& end) const {
    return std::sqrt((end.x - m_start.x) * (end.x - m_start.x) +
                     (end.y - m_start.y) * (end.y - m_start.y) +
                     (end.z - m_start.z) * (end.z - m_start.z));
}
