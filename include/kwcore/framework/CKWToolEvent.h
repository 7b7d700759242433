// CKWToolEvent: one pointer, key, paint or wheel input of a view, published
// to tools through a CKWToolEventRouter.
//
// The kind selects the tool handler (CKWTool::ProcessToolEvent); the other
// fields are that handler's arguments:
//   kind                  first word   second word  window point  wheel  world point
//   mouse down, up, move  button       flags        CPoint        -      x, y, z
//   key down, up          key          repeat/flags x and y args  -      -
//   paint                 HDC          int arg      CSize         -      -
//   mouse wheel           -            flags        CPoint        delta  -
//   mouse leave           -            -            -             -      -
// The first word is pointer-sized so that a device context survives on 64-bit
// platforms; the handlers that take an int receive it narrowed.
//
// A view makes an event through its type (auto-release on), fills it with one
// of the Set... helpers or the field setters, and publishes it:
//   CKWToolEvent* e = CKWToolEvent::Create();
//   e->SetPointer(CKWToolEvent::KIND_MOUSE_DOWN, 1, 0, CPoint(10, 20), 1.5, 2.5, 0);
//   router->NotifyObservers(e);   // delivered, then released
#pragma once

#include "kwcore/framework/CKWObservation.h"
#include "kwcore/platform/CRect.h"

class KWCORE_API CKWToolEvent : public CKWObservation {
    KW_DECLARE_TYPE(CKWToolEvent, CKWObjectTypeImpl)

public:
    // The handler each kind reaches; 7 and kinds above 8 reach none.
    enum EKind {
        KIND_MOUSE_DOWN = 0,
        KIND_MOUSE_UP = 1,
        KIND_MOUSE_MOVE = 2,
        KIND_KEY_DOWN = 3,
        KIND_KEY_UP = 4,
        KIND_PAINT = 5,
        KIND_MOUSE_WHEEL = 6,
        KIND_NONE = 7,
        KIND_MOUSE_LEAVE = 8,
    };

    // A new event made through the type, auto-release on; null when out of memory.
    static CKWToolEvent* Create();

    // Copies every field, the observation's IDs and auto-release flag included.
    CKWToolEvent(const CKWToolEvent& other) = default;
    CKWToolEvent& operator=(const CKWToolEvent& other) = default;
    ~CKWToolEvent() override = default;

    // Fill helpers, one per family of kinds; each sets the kind too.
    void SetPointer(int kind, int button, UINT flags, CPoint windowPoint, double worldX,
                    double worldY, double worldZ);
    void SetKey(int kind, UINT key, UINT flags, int x, int y);
    void SetPaint(HDC dc, int value, CSize size);
    void SetWheel(short delta, UINT flags, CPoint windowPoint);
    void SetMouseLeave() { m_iKind = KIND_MOUSE_LEAVE; }

    INT_PTR GetFirstWord() const { return m_firstWord; }
    void SetFirstWord(INT_PTR firstWord) { m_firstWord = firstWord; }
    UINT GetSecondWord() const { return m_uSecondWord; }
    void SetSecondWord(UINT secondWord) { m_uSecondWord = secondWord; }
    CPoint GetWindowPoint() const { return m_windowPoint; }
    void SetWindowPoint(CPoint windowPoint) { m_windowPoint = windowPoint; }
    short GetWheelDelta() const { return m_sWheelDelta; }
    void SetWheelDelta(short delta) { m_sWheelDelta = delta; }
    double GetWorldX() const { return m_dWorldX; }
    double GetWorldY() const { return m_dWorldY; }
    double GetWorldZ() const { return m_dWorldZ; }
    void SetWorldPoint(double x, double y, double z);
    int GetKind() const { return m_iKind; }
    void SetKind(int kind) { m_iKind = kind; }

protected:
    CKWToolEvent() = default;

private:
    INT_PTR m_firstWord = 0;
    UINT m_uSecondWord = 0;
    CPoint m_windowPoint;
    short m_sWheelDelta = 0;
    double m_dWorldX = 0;
    double m_dWorldY = 0;
    double m_dWorldZ = 0;
    int m_iKind = KIND_NONE;
};
