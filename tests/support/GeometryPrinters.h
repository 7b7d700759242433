// Readable failure messages for vectors and points.
#pragma once

#include <ostream>

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWVectorT.h"

template <int N, class Real, class Other>
void PrintTo(const CKWVectorT<N, Real, Other>& v, std::ostream* os) {
    *os << "vector(";
    for (int i = 0; i < N; ++i) {
        *os << (i ? ", " : "") << v[i];
    }
    *os << ")";
}

template <int N, class Real, class Other>
void PrintTo(const CKWPointT<N, Real, Other>& p, std::ostream* os) {
    *os << "point(";
    for (int i = 0; i < N; ++i) {
        *os << (i ? ", " : "") << p[i];
    }
    *os << ")";
}
