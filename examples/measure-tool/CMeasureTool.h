// CMeasureTool: measures the distance between the world points where a mouse
// button went down and came up. Moves with the button held report the running
// distance; Escape drops a measurement under way.
#pragma once

#include <cstdio>

#include <kwcore/kwcore.h>

class CMeasureTool : public CKWTool {
    KW_DECLARE_SERIAL_TYPE(CMeasureTool)

public:
    // Where the report lines go (standard output by default).
    void SetOutput(std::FILE* output) { m_pOutput = output; }
    // The distance of the last completed measurement, or -1.
    double GetLastDistance() const { return m_dLastDistance; }

    // Keeps the event's double-precision world point before the dispatch,
    // which hands the handlers single-precision points.
    void ProcessToolEvent(CKWToolEvent* event) override;
    void OnMouseDown(int button, UINT flags, CPoint windowPoint,
                     CKWPoint4T<float, double> worldPoint) override;
    void OnMouseMove(int button, UINT flags, CPoint windowPoint,
                     CKWPoint4T<float, double> worldPoint) override;
    void OnMouseUp(int button, UINT flags, CPoint windowPoint,
                   CKWPoint4T<float, double> worldPoint) override;
    void OnKeyDown(UINT key, UINT flags, int x, int y) override;
    void OnFocusChanged(bool bFocus, CWnd* window) override;

protected:
    CMeasureTool() = default;

private:
    struct SPoint {
        double x, y, z;
    };
    double DistanceTo(const SPoint& end) const;

    std::FILE* m_pOutput = stdout;
    SPoint m_current = {0, 0, 0};
    SPoint m_start = {0, 0, 0};
    bool m_bMeasuring = false;
    double m_dLastDistance = -1;
};
