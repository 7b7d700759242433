// CKWBound2T<Real, Other>: an axis-aligned rectangle given by its minimum and
// maximum corners.
//
// A default bound is empty (its minimum lies above its maximum) and grows to
// cover the points included into it. Corners given together are sorted per
// component, so the minimum never lies above the maximum in a non-empty
// bound. NaN coordinates are ignored by Include.
//
//   CKWBound2T<float, double> box;              // empty
//   box.Include(CKWPoint2T<float, double>(1, 5));
//   box.Include(CKWPoint2T<float, double>(3, 2));
//   // box.GetMin() is (1, 2), box.GetMax() is (3, 5)
#pragma once

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"

template <class Real, class Other>
class KWCORE_API CKWBound2T {
public:
    using Math = CKWMathT<Real, Other>;
    using Point2 = CKWPoint2T<Real, Other>;

    CKWBound2T()
        : m_ptMin(Math::MAX_REAL, Math::MAX_REAL), m_ptMax(-Math::MAX_REAL, -Math::MAX_REAL) {}
    CKWBound2T(const Point2& corner1, const Point2& corner2) { Set(corner1, corner2); }

    const Point2& GetMin() const { return m_ptMin; }
    const Point2& GetMax() const { return m_ptMax; }
    // The rectangle spanned by two opposite corners, in any order.
    void Set(const Point2& corner1, const Point2& corner2) {
        m_ptMin.Set(Lesser(corner1.X(), corner2.X()), Lesser(corner1.Y(), corner2.Y()));
        m_ptMax.Set(Greater(corner1.X(), corner2.X()), Greater(corner1.Y(), corner2.Y()));
    }
    void MakeEmpty() { *this = CKWBound2T(); }

    bool IsEmpty() const { return !(m_ptMin.X() <= m_ptMax.X() && m_ptMin.Y() <= m_ptMax.Y()); }
    Real GetWidth() const { return IsEmpty() ? Real(0) : m_ptMax.X() - m_ptMin.X(); }
    Real GetHeight() const { return IsEmpty() ? Real(0) : m_ptMax.Y() - m_ptMin.Y(); }

    // Grows the bound to cover p.
    void Include(const Point2& p) {
        if (p.X() < m_ptMin.X()) {
            m_ptMin.X() = p.X();
        }
        if (p.X() > m_ptMax.X()) {
            m_ptMax.X() = p.X();
        }
        if (p.Y() < m_ptMin.Y()) {
            m_ptMin.Y() = p.Y();
        }
        if (p.Y() > m_ptMax.Y()) {
            m_ptMax.Y() = p.Y();
        }
    }
    // True when p lies inside or on the border.
    bool Contains(const Point2& p) const {
        return p.X() >= m_ptMin.X() && p.X() <= m_ptMax.X() && p.Y() >= m_ptMin.Y() &&
               p.Y() <= m_ptMax.Y();
    }

private:
    static Real Lesser(Real a, Real b) { return b < a ? b : a; }
    static Real Greater(Real a, Real b) { return b > a ? b : a; }

    Point2 m_ptMin;
    Point2 m_ptMax;
};

#if !defined(_WIN32)
extern template class CKWBound2T<float, double>;
extern template class CKWBound2T<double, float>;
#endif
