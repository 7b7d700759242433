// CPoint, CSize and CRect: MFC's geometry values over the Win32 records.
//
// Plain values deriving from POINT, SIZE and RECT, so they pass wherever the
// records are expected. A rectangle includes its left and top edges and
// excludes its right and bottom ones; it is empty when it has no area.
// TopLeft and BottomRight return copies (MFC returns references into the
// rectangle).
//
//   CRect box(0, 0, 10, 20);
//   box.OffsetRect(5, 5);               // (5, 5, 15, 25)
//   BOOL inside = box.PtInRect(CPoint(6, 6));
#pragma once

#include <algorithm>
#include <utility>

#include "kwcore/platform/Win32Types.h"

class CPoint;
class CRect;

class CSize : public SIZE {
public:
    CSize() noexcept : SIZE{0, 0} {}
    CSize(int initCx, int initCy) noexcept : SIZE{initCx, initCy} {}
    CSize(SIZE size) noexcept : SIZE(size) {}
    explicit CSize(POINT point) noexcept : SIZE{point.x, point.y} {}

    bool operator==(SIZE size) const noexcept { return cx == size.cx && cy == size.cy; }
    bool operator!=(SIZE size) const noexcept { return !(*this == size); }
    void operator+=(SIZE size) noexcept {
        cx += size.cx;
        cy += size.cy;
    }
    void operator-=(SIZE size) noexcept {
        cx -= size.cx;
        cy -= size.cy;
    }
    CSize operator+(SIZE size) const noexcept { return CSize(cx + size.cx, cy + size.cy); }
    CSize operator-(SIZE size) const noexcept { return CSize(cx - size.cx, cy - size.cy); }
    CSize operator-() const noexcept { return CSize(-cx, -cy); }
    inline CPoint operator+(POINT point) const noexcept;
    inline CPoint operator-(POINT point) const noexcept;
};

class CPoint : public POINT {
public:
    CPoint() noexcept : POINT{0, 0} {}
    CPoint(int initX, int initY) noexcept : POINT{initX, initY} {}
    CPoint(POINT point) noexcept : POINT(point) {}
    explicit CPoint(SIZE size) noexcept : POINT{size.cx, size.cy} {}

    void Offset(int dx, int dy) noexcept {
        x += dx;
        y += dy;
    }
    void Offset(POINT point) noexcept { Offset(point.x, point.y); }
    void Offset(SIZE size) noexcept { Offset(size.cx, size.cy); }
    void SetPoint(int newX, int newY) noexcept {
        x = newX;
        y = newY;
    }

    bool operator==(POINT point) const noexcept { return x == point.x && y == point.y; }
    bool operator!=(POINT point) const noexcept { return !(*this == point); }
    void operator+=(SIZE size) noexcept { Offset(size); }
    void operator-=(SIZE size) noexcept { Offset(-size.cx, -size.cy); }
    void operator+=(POINT point) noexcept { Offset(point); }
    void operator-=(POINT point) noexcept { Offset(-point.x, -point.y); }
    CPoint operator+(SIZE size) const noexcept { return CPoint(x + size.cx, y + size.cy); }
    CPoint operator-(SIZE size) const noexcept { return CPoint(x - size.cx, y - size.cy); }
    CPoint operator+(POINT point) const noexcept { return CPoint(x + point.x, y + point.y); }
    // The difference of two points is the distance between them.
    CSize operator-(POINT point) const noexcept { return CSize(x - point.x, y - point.y); }
    CPoint operator-() const noexcept { return CPoint(-x, -y); }
    inline CRect operator+(const RECT* rect) const noexcept;
    inline CRect operator-(const RECT* rect) const noexcept;
};

class CRect : public RECT {
public:
    CRect() noexcept : RECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) noexcept : RECT{l, t, r, b} {}
    CRect(const RECT& rect) noexcept : RECT(rect) {}
    CRect(const RECT* rect) noexcept : RECT(rect ? *rect : RECT{0, 0, 0, 0}) {}
    CRect(POINT topLeft, SIZE size) noexcept
        : RECT{topLeft.x, topLeft.y, topLeft.x + size.cx, topLeft.y + size.cy} {}
    CRect(POINT topLeft, POINT bottomRight) noexcept
        : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    operator RECT*() noexcept { return this; }
    operator const RECT*() const noexcept { return this; }

    int Width() const noexcept { return right - left; }
    int Height() const noexcept { return bottom - top; }
    CSize Size() const noexcept { return CSize(Width(), Height()); }
    CPoint TopLeft() const noexcept { return CPoint(left, top); }
    CPoint BottomRight() const noexcept { return CPoint(right, bottom); }
    CPoint CenterPoint() const noexcept { return CPoint((left + right) / 2, (top + bottom) / 2); }

    // Empty: no area (also when not normalised). Null: all four values zero.
    BOOL IsRectEmpty() const noexcept { return Width() <= 0 || Height() <= 0; }
    BOOL IsRectNull() const noexcept { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    BOOL PtInRect(POINT point) const noexcept {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    BOOL EqualRect(const RECT* rect) const noexcept {
        return rect && left == rect->left && top == rect->top && right == rect->right &&
               bottom == rect->bottom;
    }

    void SetRect(int l, int t, int r, int b) noexcept { *this = CRect(l, t, r, b); }
    void SetRectEmpty() noexcept { SetRect(0, 0, 0, 0); }
    void CopyRect(const RECT* rect) noexcept { *this = CRect(rect); }

    void OffsetRect(int dx, int dy) noexcept {
        SetRect(left + dx, top + dy, right + dx, bottom + dy);
    }
    void OffsetRect(POINT point) noexcept { OffsetRect(point.x, point.y); }
    void OffsetRect(SIZE size) noexcept { OffsetRect(size.cx, size.cy); }
    void InflateRect(int l, int t, int r, int b) noexcept {
        SetRect(left - l, top - t, right + r, bottom + b);
    }
    void InflateRect(int x, int y) noexcept { InflateRect(x, y, x, y); }
    void InflateRect(SIZE size) noexcept { InflateRect(size.cx, size.cy); }
    void InflateRect(const RECT* rect) noexcept {
        if (rect) {
            InflateRect(rect->left, rect->top, rect->right, rect->bottom);
        }
    }
    void DeflateRect(int l, int t, int r, int b) noexcept { InflateRect(-l, -t, -r, -b); }
    void DeflateRect(int x, int y) noexcept { InflateRect(-x, -y); }
    void DeflateRect(SIZE size) noexcept { InflateRect(-size.cx, -size.cy); }
    void DeflateRect(const RECT* rect) noexcept {
        if (rect) {
            DeflateRect(rect->left, rect->top, rect->right, rect->bottom);
        }
    }
    // Swaps edges so that left <= right and top <= bottom.
    void NormalizeRect() noexcept {
        if (left > right) {
            std::swap(left, right);
        }
        if (top > bottom) {
            std::swap(top, bottom);
        }
    }

    // Both return FALSE and leave this rectangle empty (all zero) when the
    // result has no area; a null argument counts as an empty rectangle.
    BOOL IntersectRect(const RECT* rect1, const RECT* rect2) noexcept;
    // An empty rectangle does not contribute to the union.
    BOOL UnionRect(const RECT* rect1, const RECT* rect2) noexcept;

    bool operator==(const RECT& rect) const noexcept { return EqualRect(&rect); }
    bool operator!=(const RECT& rect) const noexcept { return !EqualRect(&rect); }
    void operator+=(POINT point) noexcept { OffsetRect(point); }
    void operator+=(SIZE size) noexcept { OffsetRect(size); }
    void operator+=(const RECT* rect) noexcept { InflateRect(rect); }
    void operator-=(POINT point) noexcept { OffsetRect(-point.x, -point.y); }
    void operator-=(SIZE size) noexcept { OffsetRect(-size.cx, -size.cy); }
    void operator-=(const RECT* rect) noexcept { DeflateRect(rect); }
    CRect operator+(POINT point) const noexcept { return Moved(point.x, point.y); }
    CRect operator+(SIZE size) const noexcept { return Moved(size.cx, size.cy); }
    CRect operator-(POINT point) const noexcept { return Moved(-point.x, -point.y); }
    CRect operator-(SIZE size) const noexcept { return Moved(-size.cx, -size.cy); }
    CRect operator+(const RECT* rect) const noexcept {
        CRect result(*this);
        result.InflateRect(rect);
        return result;
    }
    CRect operator-(const RECT* rect) const noexcept {
        CRect result(*this);
        result.DeflateRect(rect);
        return result;
    }

private:
    CRect Moved(int dx, int dy) const noexcept {
        CRect result(*this);
        result.OffsetRect(dx, dy);
        return result;
    }
};

inline CPoint CSize::operator+(POINT point) const noexcept {
    return CPoint(cx + point.x, cy + point.y);
}

inline CPoint CSize::operator-(POINT point) const noexcept {
    return CPoint(cx - point.x, cy - point.y);
}

inline CRect CPoint::operator+(const RECT* rect) const noexcept {
    return CRect(rect) + *this;
}

inline CRect CPoint::operator-(const RECT* rect) const noexcept {
    return CRect(rect) - *this;
}

inline BOOL CRect::IntersectRect(const RECT* rect1, const RECT* rect2) noexcept {
    const CRect first(rect1);
    const CRect second(rect2);
    const CRect overlap(std::max(first.left, second.left), std::max(first.top, second.top),
                        std::min(first.right, second.right), std::min(first.bottom, second.bottom));
    if (first.IsRectEmpty() || second.IsRectEmpty() || overlap.IsRectEmpty()) {
        SetRectEmpty();
        return FALSE;
    }
    *this = overlap;
    return TRUE;
}

inline BOOL CRect::UnionRect(const RECT* rect1, const RECT* rect2) noexcept {
    const CRect first(rect1);
    const CRect second(rect2);
    if (first.IsRectEmpty() || second.IsRectEmpty()) {
        *this = first.IsRectEmpty() ? second : first;
        if (IsRectEmpty()) {
            SetRectEmpty();
            return FALSE;
        }
        return TRUE;
    }
    SetRect(std::min(first.left, second.left), std::min(first.top, second.top),
            std::max(first.right, second.right), std::max(first.bottom, second.bottom));
    return TRUE;
}
