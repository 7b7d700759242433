// CKWVector3T<Real, Other>: a three-dimensional vector (x, y, z).
//
// Adds the right-handed cross product, orthonormal bases and the text form
// "%f,%f,%f" to CKWVectorT<3>. Arithmetic keeps the type, so results can be
// crossed again. Values of the Other precision are converted on the way in.
//
//   CKWVector3T<float, double> z = CKWVector3T<float, double>::UNIT_X.Cross(
//       CKWVector3T<float, double>::UNIT_Y);   // (0, 0, 1)
//   z.FromString("1, 2");                       // (1, 2, 1): z keeps its value
#pragma once

#include <type_traits>

#include "kwcore/geometry/linear/CKWVectorT.h"
#include "kwcore/platform/CString.h"

template <class Real, class Other>
class KWCORE_API CKWVector3T : public CKWVectorT<3, Real, Other> {
    using Base = CKWVectorT<3, Real, Other>;

public:
    using Math = CKWMathT<Real, Other>;

    constexpr CKWVector3T() = default;
    constexpr CKWVector3T(const CKWVector3T& v) = default;
    constexpr CKWVector3T(const Base& v) : Base(v) {}
    constexpr CKWVector3T(Real x, Real y, Real z) { this->Assign(x, y, z); }
    constexpr CKWVector3T(Other x, Other y, Other z) { this->Assign(x, y, z); }
    // Whole numbers, which would otherwise fit Real and Other equally well.
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    constexpr CKWVector3T(Int x, Int y, Int z) {
        this->Assign(x, y, z);
    }
    CKWVector3T& operator=(const CKWVector3T& v) = default;

    void Set(Real x, Real y, Real z) { this->Assign(x, y, z); }
    void Set(Other x, Other y, Other z) { this->Assign(x, y, z); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }
    Real Z() const { return this->m_aTuple[2]; }
    Real& Z() { return this->m_aTuple[2]; }

    KW_DECLARE_VECTOR_ARITHMETIC(CKWVector3T)

    // Right-handed cross product; UnitCross normalizes it (zero when the
    // vectors are parallel). The overloads on CKWVector3T keep the type.
    Base Cross(const Base& v) const final { return CrossOf(v); }
    Base UnitCross(const Base& v) const final { return CrossOf(v).GetNormalized(); }
    CKWVector3T Cross(const CKWVector3T& v) const { return CrossOf(v); }
    CKWVector3T UnitCross(const CKWVector3T& v) const { return CrossOf(v).GetNormalized(); }

    // Gram-Schmidt in the order u, v, w; each normalized by the kernel's rule.
    static void Orthonormalize(CKWVector3T& u, CKWVector3T& v, CKWVector3T& w);
    static void Orthonormalize(CKWVector3T* threeVectors);
    // u and v become unit vectors that with w form a right-handed orthonormal
    // basis (u x v = w); w is normalized first unless unitLengthW says it is.
    static void GenerateOrthonormalBasis(CKWVector3T& u, CKWVector3T& v, CKWVector3T& w,
                                         bool unitLengthW);

    // "%f,%f,%f".
    CString ToString() const;
    // Spaces removed, split at ",", each piece converted like strtod; at most
    // three pieces are used and components without a piece keep their value.
    // Returns the number of components assigned. Uses the library-wide
    // tokenizer: not reentrant.
    int FromString(const CString& text);

    static const CKWVector3T ZERO;
    static const CKWVector3T UNIT_X;
    static const CKWVector3T UNIT_Y;
    static const CKWVector3T UNIT_Z;

private:
    CKWVector3T CrossOf(const Base& v) const {
        return CKWVector3T(Y() * v[2] - Z() * v[1], Z() * v[0] - X() * v[2],
                           X() * v[1] - Y() * v[0]);
    }
};

#if !defined(_WIN32)
extern template class CKWVector3T<float, double>;
extern template class CKWVector3T<double, float>;
#endif
