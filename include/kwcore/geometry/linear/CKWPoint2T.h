// CKWPoint2T<Real, Other>: a planar position (x, y).
//
// Adds construction from 2 values of either precision, per-component
// access and the text form "%f,%f" to CKWPointT<2>.
//
//   CKWPoint2T<double, float> p(1, 2);
//   CString text = p.ToString();   // "1.000000,2.000000"
#pragma once

#include <type_traits>

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/platform/CString.h"

template <class Real, class Other>
class KWCORE_API CKWPoint2T : public CKWPointT<2, Real, Other> {
    using Base = CKWPointT<2, Real, Other>;

public:
    constexpr CKWPoint2T() = default;
    constexpr CKWPoint2T(const CKWPoint2T& p) = default;
    constexpr CKWPoint2T(const Base& p) : Base(p) {}
    constexpr CKWPoint2T(Real x, Real y) { this->Assign(x, y); }
    constexpr CKWPoint2T(Other x, Other y) { this->Assign(x, y); }
    // Whole numbers, which would otherwise fit Real and Other equally well.
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    constexpr CKWPoint2T(Int x, Int y) {
        this->Assign(x, y);
    }
    CKWPoint2T& operator=(const CKWPoint2T& p) = default;

    void Set(Real x, Real y) { this->Assign(x, y); }
    void Set(Other x, Other y) { this->Assign(x, y); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }
    void SetX(Real x) { this->m_aTuple[0] = x; }
    void SetY(Real y) { this->m_aTuple[1] = y; }

    // "%f,%f".
    CString ToString() const;
    // Spaces removed, split at ",", each piece converted like strtod; at most
    // 2 pieces are used and components without a piece keep their value.
    // Returns the number of components assigned. Uses the library-wide
    // tokenizer: not reentrant.
    int FromString(const CString& text);

    static const CKWPoint2T ZERO;
};

#if !defined(_WIN32)
extern template class CKWPoint2T<float, double>;
extern template class CKWPoint2T<double, float>;
#endif
