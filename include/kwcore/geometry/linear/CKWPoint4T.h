// CKWPoint4T<Real, Other>: a homogeneous position (x, y, z, w).
//
// Adds construction from 4 values of either precision, per-component
// access and the text form "%f,%f,%f,%f" to CKWPointT<4>.
//
// A position carries w = 1; PolarBy sets it so.
//
//   CKWPoint4T<float, double> p(0, 0, 0, 1);
//   CKWPoint4T<float, double> q = p.PolarBy(CKWMathT<float, double>::HALF_PI, 2);  // (0, 2, 0, 1)
#pragma once

#include <type_traits>

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWVector4T.h"
#include "kwcore/platform/CString.h"

template <class Real, class Other>
class KWCORE_API CKWPoint4T : public CKWPointT<4, Real, Other> {
    using Base = CKWPointT<4, Real, Other>;

public:
    constexpr CKWPoint4T() = default;
    constexpr CKWPoint4T(const CKWPoint4T& p) = default;
    constexpr CKWPoint4T(const Base& p) : Base(p) {}
    constexpr CKWPoint4T(Real x, Real y, Real z, Real w) { this->Assign(x, y, z, w); }
    constexpr CKWPoint4T(Other x, Other y, Other z, Other w) { this->Assign(x, y, z, w); }
    // Whole numbers, which would otherwise fit Real and Other equally well.
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    constexpr CKWPoint4T(Int x, Int y, Int z, Int w) {
        this->Assign(x, y, z, w);
    }
    CKWPoint4T& operator=(const CKWPoint4T& p) = default;

    void Set(Real x, Real y, Real z, Real w) { this->Assign(x, y, z, w); }
    void Set(Other x, Other y, Other z, Other w) { this->Assign(x, y, z, w); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }
    Real Z() const { return this->m_aTuple[2]; }
    Real& Z() { return this->m_aTuple[2]; }
    Real W() const { return this->m_aTuple[3]; }
    Real& W() { return this->m_aTuple[3]; }
    void SetX(Real x) { this->m_aTuple[0] = x; }
    void SetY(Real y) { this->m_aTuple[1] = y; }
    void SetZ(Real z) { this->m_aTuple[2] = z; }
    void SetW(Real w) { this->m_aTuple[3] = w; }

    // (x + distance cos(angle), y + distance sin(angle), z, 1): the point
    // reached by stepping from this one in the plane.
    CKWPoint4T PolarBy(Real angle, Real distance) const {
        return CKWPoint4T(X() + distance * std::cos(angle), Y() + distance * std::sin(angle), Z(),
                          Real(1));
    }
    CKWVector4T<Real, Other> ToVector() const {
        return CKWVector4T<Real, Other>(X(), Y(), Z(), W());
    }

    // "%f,%f,%f,%f".
    CString ToString() const;
    // Spaces removed, split at ",", each piece converted like strtod; at most
    // 4 pieces are used and components without a piece keep their value.
    // Returns the number of components assigned. Uses the library-wide
    // tokenizer: not reentrant.
    int FromString(const CString& text);

    static const CKWPoint4T ZERO;
};

#if !defined(_WIN32)
extern template class CKWPoint4T<float, double>;
extern template class CKWPoint4T<double, float>;
#endif
