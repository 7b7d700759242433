// CKWPoint3T<Real, Other>: a position in space (x, y, z).
//
// Adds construction from 3 values of either precision, per-component
// access and the text form "%f,%f,%f" to CKWPointT<3>.
//
//   CKWPoint3T<float, double> p(7, 8, 9);
//   p.FromString(" 1 , 2 ");         // (1, 2, 9): z had no piece and keeps its value
#pragma once

#include <type_traits>

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/platform/CString.h"

template <class Real, class Other>
class KWCORE_API CKWPoint3T : public CKWPointT<3, Real, Other> {
    using Base = CKWPointT<3, Real, Other>;

public:
    constexpr CKWPoint3T() = default;
    constexpr CKWPoint3T(const CKWPoint3T& p) = default;
    constexpr CKWPoint3T(const Base& p) : Base(p) {}
    constexpr CKWPoint3T(Real x, Real y, Real z) { this->Assign(x, y, z); }
    constexpr CKWPoint3T(Other x, Other y, Other z) { this->Assign(x, y, z); }
    // Whole numbers, which would otherwise fit Real and Other equally well.
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    constexpr CKWPoint3T(Int x, Int y, Int z) {
        this->Assign(x, y, z);
    }
    CKWPoint3T& operator=(const CKWPoint3T& p) = default;

    void Set(Real x, Real y, Real z) { this->Assign(x, y, z); }
    void Set(Other x, Other y, Other z) { this->Assign(x, y, z); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }
    Real Z() const { return this->m_aTuple[2]; }
    Real& Z() { return this->m_aTuple[2]; }
    void SetX(Real x) { this->m_aTuple[0] = x; }
    void SetY(Real y) { this->m_aTuple[1] = y; }
    void SetZ(Real z) { this->m_aTuple[2] = z; }

    // "%f,%f,%f".
    CString ToString() const;
    // Spaces removed, split at ",", each piece converted like strtod; at most
    // 3 pieces are used and components without a piece keep their value.
    // Returns the number of components assigned. Uses the library-wide
    // tokenizer: not reentrant.
    int FromString(const CString& text);

    static const CKWPoint3T ZERO;
};

#if !defined(_WIN32)
extern template class CKWPoint3T<float, double>;
extern template class CKWPoint3T<double, float>;
#endif
