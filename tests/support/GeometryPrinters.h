// Readable failure messages for vectors and points.
#pragma once

#include <ostream>

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWVectorT.h"

// "kind(e0, e1, ...)" for the first count entries of values.
template <class Values>
void PrintEntries(const char* kind, const Values& values, int count, std::ostream* os) {
    *os << kind << "(";
    for (int i = 0; i < count; ++i) {
        *os << (i ? ", " : "") << values[i];
    }
    *os << ")";
}

template <int N, class Real, class Other>
void PrintTo(const CKWVectorT<N, Real, Other>& v, std::ostream* os) {
    PrintEntries("vector", v, N, os);
}

template <int N, class Real, class Other>
void PrintTo(const CKWPointT<N, Real, Other>& p, std::ostream* os) {
    PrintEntries("point", p, N, os);
}
