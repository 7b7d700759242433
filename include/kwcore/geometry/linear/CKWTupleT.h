// CKWTupleT<N, Real, Other>: the N components (x, y, z, w) that points and
// vectors are made of, and the component rules the kernel's value types share.
//
// CKWPointT and CKWVectorT derive from the tuple and add no data: a point is
// exactly its components, a vector its virtual-table pointer followed by
// them. Each declares the common members with KW_DECLARE_TUPLE_MEMBERS, so
// that every class exports them under its own name: GetN, GetTuple, the
// conversions to a component pointer, operator[], the byte-order comparisons,
// Approx_Equal, ZERO() and UNIT(i). The named points and vectors
// (CKWNamedTupleT) show their text form through FormatTuple and ParseTuple.
// Matrices and quaternions use the same comparisons
// (KW_DECLARE_BYTE_COMPARISONS) and arithmetic (kwTupleArithmetic).
//
// Equality and ordering compare the component bytes in memory order (0 and -0
// differ; a NaN equals itself when its bits match): a total order for sorted
// containers, not the numeric order. Approx_Equal rounds each component to the
// given number of digits (CKWMathT::Approx_Equal) and stops at the first that
// differs.
//
//   CKWPoint3T<float, double> p(1, 2, 3);
//   p[2] = 4;                                           // (1, 2, 4)
//   bool before = p < CKWPoint3T<float, double>(1, 2, 5);
#pragma once

#include <cstring>

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

// Component-wise arithmetic on arrays of Count entries.
namespace kwTupleArithmetic {

template <int Count, class Real>
void Add(Real* to, const Real* from) {
    for (int i = 0; i < Count; ++i) {
        to[i] += from[i];
    }
}
template <int Count, class Real>
void Subtract(Real* to, const Real* from) {
    for (int i = 0; i < Count; ++i) {
        to[i] -= from[i];
    }
}
template <int Count, class Real>
void Negate(Real* to, const Real* from) {
    for (int i = 0; i < Count; ++i) {
        to[i] = -from[i];
    }
}
template <int Count, class Real>
void Scale(Real* to, Real s) {
    for (int i = 0; i < Count; ++i) {
        to[i] *= s;
    }
}
// Multiplies by 1/s; division by exactly 0 gives MAX_REAL in every entry
// rather than an infinity.
template <int Count, class Real, class Other>
void Divide(Real* to, Real s) {
    if (s == Real(0)) {
        for (int i = 0; i < Count; ++i) {
            to[i] = CKWMathT<Real, Other>::MAX_REAL;
        }
        return;
    }
    Scale<Count>(to, Real(1) / s);
}

}  // namespace kwTupleArithmetic

template <int N, class Real, class Other>
class KWCORE_API CKWTupleT {
protected:
    constexpr CKWTupleT() : m_aTuple{} {}
    // From N components; a null pointer gives zero.
    explicit CKWTupleT(const Real* tuple);

    // Sets the N components in order, each converted to Real.
    template <class... Values>
    constexpr void Assign(Values... values);
    // Component i set to 1, the others 0; an index outside [0, N) gives zero.
    void MakeUnit(int i);
    int CompareTuple(const CKWTupleT& t) const;
    bool ApproxEqualTuple(const CKWTupleT& t, int digits) const;
    // The text form of the named classes: "%f" for each component, joined by
    // ","; ParseTuple returns the number of components it assigned.
    CString FormatTuple() const;
    int ParseTuple(const CString& text);

    Real m_aTuple[N];
};

// The tuple's hot members, inline so that hosts' compilers keep them in their
// loops.

template <int N, class Real, class Other>
inline CKWTupleT<N, Real, Other>::CKWTupleT(const Real* tuple) : m_aTuple{} {
    if (tuple) {
        std::memcpy(m_aTuple, tuple, sizeof(m_aTuple));
    }
}

template <int N, class Real, class Other>
template <class... Values>
constexpr void CKWTupleT<N, Real, Other>::Assign(Values... values) {
    static_assert(sizeof...(Values) == N, "one value per component");
    int i = 0;
    ((m_aTuple[i++] = static_cast<Real>(values)), ...);
}

template <int N, class Real, class Other>
inline int CKWTupleT<N, Real, Other>::CompareTuple(const CKWTupleT& t) const {
    return std::memcmp(m_aTuple, t.m_aTuple, sizeof(m_aTuple));
}

// The six comparisons of a value class through its CompareArrays, a byte-wise
// comparison in memory order.
// clang-format off
#define KW_DECLARE_BYTE_COMPARISONS(Class)                                   \
    bool operator==(const Class& o) const { return CompareArrays(o) == 0; } \
    bool operator!=(const Class& o) const { return CompareArrays(o) != 0; } \
    bool operator<(const Class& o) const { return CompareArrays(o) < 0; }   \
    bool operator<=(const Class& o) const { return CompareArrays(o) <= 0; } \
    bool operator>(const Class& o) const { return CompareArrays(o) > 0; }   \
    bool operator>=(const Class& o) const { return CompareArrays(o) >= 0; }

// The members a class derived from CKWTupleT declares as its own, so that each
// class exports them under its name; leaves the class body public.
#define KW_DECLARE_TUPLE_MEMBERS(Class)                                          \
public:                                                                          \
    int GetN() const { return N; }                                               \
    const Real* GetTuple() const { return this->m_aTuple; }                      \
    Real* GetTuple() { return this->m_aTuple; }                                  \
    operator const Real*() const { return this->m_aTuple; }                      \
    operator Real*() { return this->m_aTuple; }                                  \
    /* i must lie in [0, N). */                                                  \
    Real operator[](int i) const { return this->m_aTuple[i]; }                   \
    Real& operator[](int i) { return this->m_aTuple[i]; }                        \
    KW_DECLARE_BYTE_COMPARISONS(Class)                                           \
    bool Approx_Equal(const Class& t, int digits) const {                        \
        return this->ApproxEqualTuple(t, digits);                                \
    }                                                                            \
    static Class ZERO() { return Class(); }                                      \
    /* Component i set to 1, the others 0; outside [0, N) the zero tuple. */    \
    static Class UNIT(int i) {                                                   \
        Class unit;                                                              \
        unit.MakeUnit(i);                                                        \
        return unit;                                                             \
    }                                                                            \
                                                                                 \
protected:                                                                       \
    int CompareArrays(const Class& t) const { return this->CompareTuple(t); }    \
                                                                                 \
public:
// clang-format on

#if !defined(_WIN32)
extern template class CKWTupleT<2, float, double>;
extern template class CKWTupleT<3, float, double>;
extern template class CKWTupleT<4, float, double>;
extern template class CKWTupleT<2, double, float>;
extern template class CKWTupleT<3, double, float>;
extern template class CKWTupleT<4, double, float>;
#endif
