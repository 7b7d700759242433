// CKWNamedTupleT: the components of a named point or vector, by name.
//
// CKWPoint2T to CKWPoint4T and CKWVector2T to CKWVector4T (the vectors through
// CKWNamedVectorT) derive from it and inherit its constructors, so that a
// point and a vector of one dimension name their components alike: the
// constructors and Set from N values, X() to W() by value and by reference
// (Z from three components on, W at four), SetX to SetW, the text form and
// the constant ZERO. Named is the named class itself, Kind<N, Real, Other>
// the generic point or vector under it (CKWPointT or CKWVectorT), which
// converts to a Named implicitly. No data is added.
//
// Input says what the constructors and Set take: with RealOnly N Real values;
// with EitherPrecision also N Other values, converted to Real, and, for the
// constructors, N whole numbers of one type (which would otherwise fit Real
// and Other equally well).
//
//   CKWPoint3T<float, double> p(1, 2, 3);   // whole numbers
//   p.Set(0.5, 1.5, 2.5);                   // Other values
//   p.Z() += 1;                             // (0.5, 1.5, 3.5)
//   CString text = p.ToString();            // "0.500000,1.500000,3.500000"
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "kwcore/platform/CString.h"

// What the constructors and Set of a named point or vector take.
enum class KWComponentInput { RealOnly, EitherPrecision };

namespace kwNamedTuple {
// T once for each component index: Each<Real, I>... is a list of N Reals.
template <class T, std::size_t>
using Each = T;
}  // namespace kwNamedTuple

template <template <class, class> class Named, template <int, class, class> class Kind, int N,
          class Real, class Other, KWComponentInput Input = KWComponentInput::EitherPrecision,
          class Indices = std::make_index_sequence<N>>
class CKWNamedTupleT;

template <template <class, class> class Named, template <int, class, class> class Kind, int N,
          class Real, class Other, std::size_t... I>
class CKWNamedTupleT<Named, Kind, N, Real, Other, KWComponentInput::RealOnly,
                     std::index_sequence<I...>> : public Kind<N, Real, Other> {
    using Generic = Kind<N, Real, Other>;

public:
    constexpr CKWNamedTupleT() = default;
    constexpr CKWNamedTupleT(const Generic& t) : Generic(t) {}
    constexpr CKWNamedTupleT(kwNamedTuple::Each<Real, I>... components) {
        this->Assign(components...);
    }

    void Set(kwNamedTuple::Each<Real, I>... components) { this->Assign(components...); }

    Real X() const { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    template <int M = N, std::enable_if_t<(M >= 3), int> = 0>
    Real Z() const {
        return this->m_aTuple[2];
    }
    template <int M = N, std::enable_if_t<(M >= 4), int> = 0>
    Real W() const {
        return this->m_aTuple[3];
    }

    Real& X() { return this->m_aTuple[0]; }
    Real& Y() { return this->m_aTuple[1]; }
    template <int M = N, std::enable_if_t<(M >= 3), int> = 0>
    Real& Z() {
        return this->m_aTuple[2];
    }
    template <int M = N, std::enable_if_t<(M >= 4), int> = 0>
    Real& W() {
        return this->m_aTuple[3];
    }

    void SetX(Real x) { this->m_aTuple[0] = x; }
    void SetY(Real y) { this->m_aTuple[1] = y; }
    template <int M = N, std::enable_if_t<(M >= 3), int> = 0>
    void SetZ(Real z) {
        this->m_aTuple[2] = z;
    }
    template <int M = N, std::enable_if_t<(M >= 4), int> = 0>
    void SetW(Real w) {
        this->m_aTuple[3] = w;
    }

    // "%f" for each component, joined by ",".
    CString ToString() const { return this->FormatTuple(); }
    // Spaces removed, split at ",", each piece converted like strtod; at most
    // N pieces are used and components without a piece keep their value.
    // Returns the number of components assigned. Uses the library-wide
    // tokenizer: not reentrant.
    int FromString(const CString& text) { return this->ParseTuple(text); }

    static const Named<Real, Other> ZERO;
};

// Every component zero; constant-initialized, so ready before any code runs.
template <template <class, class> class Named, template <int, class, class> class Kind, int N,
          class Real, class Other, std::size_t... I>
inline const Named<Real, Other> CKWNamedTupleT<
    Named, Kind, N, Real, Other, KWComponentInput::RealOnly, std::index_sequence<I...>>::ZERO{};

template <template <class, class> class Named, template <int, class, class> class Kind, int N,
          class Real, class Other, std::size_t... I>
class CKWNamedTupleT<Named, Kind, N, Real, Other, KWComponentInput::EitherPrecision,
                     std::index_sequence<I...>>
    : public CKWNamedTupleT<Named, Kind, N, Real, Other, KWComponentInput::RealOnly> {
    using RealOnly = CKWNamedTupleT<Named, Kind, N, Real, Other, KWComponentInput::RealOnly>;

public:
    using RealOnly::RealOnly;
    constexpr CKWNamedTupleT() = default;
    // The Real list again, beside the Other list, so that values fitting both
    // equally well stay ambiguous with every compiler (clang would prefer the
    // Other list, declared in the derived class, to an inherited Real list).
    constexpr CKWNamedTupleT(kwNamedTuple::Each<Real, I>... components) : RealOnly(components...) {}
    constexpr CKWNamedTupleT(kwNamedTuple::Each<Other, I>... components) {
        this->Assign(components...);
    }
    // Whole numbers of one type, which would otherwise fit both lists.
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    constexpr CKWNamedTupleT(kwNamedTuple::Each<Int, I>... components) {
        this->Assign(components...);
    }

    using RealOnly::Set;
    void Set(kwNamedTuple::Each<Other, I>... components) { this->Assign(components...); }
};
