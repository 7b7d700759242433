// CKWMatrixT: a square matrix of order N (2, 3 or 4), the base of
// CKWMatrix2T, CKWMatrix3T and CKWMatrix4T.
//
// A plain value: N*N entries in row order, entry (r, c) at index r*N + c.
// Vectors are columns: M * v is the usual product, v * M the row-vector
// product (the transpose applied to v), and A * B * v applies B first.
// Exact comparison and ordering compare the entries' bytes, like the vectors.
// The arithmetic and products are inline here so that hosts inline them in
// their loops; both scalar pairs are instantiated in the library.
//
//   CKWMatrixT<3, float, double> m(false);         // identity
//   m(0, 1) = 2.0f;
//   CKWVectorT<3, float, double> v = m * v0;      // m(r, c) * v0[c]
#pragma once

#include <cmath>
#include <cstring>

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWTupleT.h"
#include "kwcore/geometry/linear/CKWVectorT.h"
#include "kwcore/geometry/linear/KWMatrixKernels.h"
#include "kwcore/platform/Export.h"

template <int N, class Real, class Other>
class KWCORE_API CKWMatrixT {
public:
    typedef CKWVectorT<N, Real, Other> VectorType;
    typedef CKWPointT<N, Real, Other> PointType;

    // The zero matrix when zero is true, else the identity.
    CKWMatrixT(bool zero = true) {
        if (zero) {
            MakeZero();
        } else {
            MakeIdentity();
        }
    }
    CKWMatrixT(const CKWMatrixT& m) = default;
    CKWMatrixT& operator=(const CKWMatrixT& m) = default;

    void MakeZero() {
        for (int i = 0; i < N * N; ++i) {
            m_afEntry[i] = Real(0);
        }
    }
    void MakeIdentity() {
        for (int r = 0; r < N; ++r) {
            for (int c = 0; c < N; ++c) {
                m_afEntry[I(r, c)] = r == c ? Real(1) : Real(0);
            }
        }
    }
    // diag holds N entries.
    void MakeDiagonal(const Real* diag) {
        for (int r = 0; r < N; ++r) {
            for (int c = 0; c < N; ++c) {
                m_afEntry[I(r, c)] = r == c ? diag[r] : Real(0);
            }
        }
    }

    // Rows and columns by index 0 .. N-1.
    VectorType GetRow(int r) const { return VectorType(m_afEntry + N * r); }
    void SetRow(int r, const VectorType& v) {
        for (int c = 0; c < N; ++c) {
            m_afEntry[I(r, c)] = v[c];
        }
    }
    VectorType GetColumn(int c) const {
        Real column[N];
        for (int r = 0; r < N; ++r) {
            column[r] = m_afEntry[I(r, c)];
        }
        return VectorType(column);
    }
    void SetColumn(int c, const VectorType& v) {
        for (int r = 0; r < N; ++r) {
            m_afEntry[I(r, c)] = v[r];
        }
    }
    // Writes the N*N entries in column order.
    void GetColumnMajor(Real* out) const {
        for (int c = 0; c < N; ++c) {
            for (int r = 0; r < N; ++r) {
                *out++ = m_afEntry[I(r, c)];
            }
        }
    }

    // Row r as an array of N entries.
    Real* operator[](int r) { return m_afEntry + N * r; }
    const Real* operator[](int r) const { return m_afEntry + N * r; }
    Real& operator()(int r, int c) { return m_afEntry[I(r, c)]; }
    Real operator()(int r, int c) const { return m_afEntry[I(r, c)]; }
    operator Real*() { return m_afEntry; }
    operator const Real*() const { return m_afEntry; }

    // Byte-wise: equal only for identical bits; a total order for sorting.
    KW_DECLARE_BYTE_COMPARISONS(CKWMatrixT)

    CKWMatrixT operator+(const CKWMatrixT& m) const {
        CKWMatrixT sum(*this);
        sum += m;
        return sum;
    }
    CKWMatrixT operator-(const CKWMatrixT& m) const {
        CKWMatrixT difference(*this);
        difference -= m;
        return difference;
    }
    CKWMatrixT operator-() const {
        CKWMatrixT negated(*this);
        kwTupleArithmetic::Negate<N * N>(negated.m_afEntry, m_afEntry);
        return negated;
    }
    CKWMatrixT operator*(Real s) const {
        CKWMatrixT scaled(*this);
        scaled *= s;
        return scaled;
    }
    // Division by exactly 0 gives MAX_REAL in every entry, as for vectors.
    CKWMatrixT operator/(Real s) const {
        CKWMatrixT quotient(*this);
        quotient /= s;
        return quotient;
    }
    CKWMatrixT& operator+=(const CKWMatrixT& m) {
        kwTupleArithmetic::Add<N * N>(m_afEntry, m.m_afEntry);
        return *this;
    }
    CKWMatrixT& operator-=(const CKWMatrixT& m) {
        kwTupleArithmetic::Subtract<N * N>(m_afEntry, m.m_afEntry);
        return *this;
    }
    CKWMatrixT& operator*=(Real s) {
        kwTupleArithmetic::Scale<N * N>(m_afEntry, s);
        return *this;
    }
    CKWMatrixT& operator/=(Real s) {
        kwTupleArithmetic::Divide<N * N, Real, Other>(m_afEntry, s);
        return *this;
    }

    // (A * B)(r, c) = sum over k of A(r, k) * B(k, c).
    CKWMatrixT operator*(const CKWMatrixT& b) const {
        CKWMatrixT product(true);
        for (int r = 0; r < N; ++r) {
            Real row[N];
            for (int c = 0; c < N; ++c) {
                row[c] = m_afEntry[I(r, 0)] * b.m_afEntry[c];
            }
            for (int k = 1; k < N; ++k) {
                for (int c = 0; c < N; ++c) {
                    row[c] += m_afEntry[I(r, k)] * b.m_afEntry[I(k, c)];
                }
            }
            for (int c = 0; c < N; ++c) {
                product.m_afEntry[I(r, c)] = row[c];
            }
        }
        return product;
    }
    CKWMatrixT Transpose() const {
        CKWMatrixT transposed(true);
        for (int r = 0; r < N; ++r) {
            for (int c = 0; c < N; ++c) {
                transposed.m_afEntry[I(r, c)] = m_afEntry[I(c, r)];
            }
        }
        return transposed;
    }
    // Transpose() * b, without forming the transpose.
    CKWMatrixT TransposeTimes(const CKWMatrixT& b) const {
        CKWMatrixT product(true);
        for (int r = 0; r < N; ++r) {
            for (int c = 0; c < N; ++c) {
                Real sum = Real(0);
                for (int k = 0; k < N; ++k) {
                    sum += m_afEntry[I(k, r)] * b.m_afEntry[I(k, c)];
                }
                product.m_afEntry[I(r, c)] = sum;
            }
        }
        return product;
    }
    // *this * b.Transpose(), without forming the transpose.
    CKWMatrixT TimesTranspose(const CKWMatrixT& b) const {
        CKWMatrixT product(true);
        for (int r = 0; r < N; ++r) {
            for (int c = 0; c < N; ++c) {
                Real sum = Real(0);
                for (int k = 0; k < N; ++k) {
                    sum += m_afEntry[I(r, k)] * b.m_afEntry[I(c, k)];
                }
                product.m_afEntry[I(r, c)] = sum;
            }
        }
        return product;
    }

    // M * v, v a column.
    VectorType operator*(const VectorType& v) const {
        Real out[N];
        Multiply(static_cast<const Real*>(v), out);
        return VectorType(out);
    }
    // M * p, p a column; no translation part is implied.
    PointType operator*(const PointType& p) const {
        Real out[N];
        Multiply(static_cast<const Real*>(p), out);
        return PointType(out);
    }
    // u^T * M * v.
    Real QForm(const VectorType& u, const VectorType& v) const {
        const VectorType mv = *this * v;
        Real sum = Real(0);
        for (int r = 0; r < N; ++r) {
            sum += u[r] * mv[r];
        }
        return sum;
    }

protected:
    static int I(int r, int c) { return r * N + c; }

    int CompareArrays(const CKWMatrixT& m) const {
        return std::memcmp(m_afEntry, m.m_afEntry, sizeof(m_afEntry));
    }

    void Multiply(const Real* in, Real* out) const {
        kwMatrixKernels::RowsTimesColumn<N>(m_afEntry, in, out);
    }
    // The N*N entries in row order when rowMajor is true, else in column order.
    void SetEntries(const Real* entries, bool rowMajor);
    // The N vectors (N components each) as rows, or as columns when columns.
    void SetVectors(const Real* const* vectors, bool columns);
    // The tensor product u * v^T.
    void SetTensorProduct(const Real* u, const Real* v);
    // The determinant expanded along row 0 with this matrix's adjugate.
    Real DeterminantWith(const CKWMatrixT& adjugate) const;
    // The adjugate divided by the determinant; zero when |det| <= EPSILON or
    // the determinant is not a number.
    CKWMatrixT InverseWith(CKWMatrixT adjugate) const;

    Real m_afEntry[N * N];
};

// The inverse's steps, inline for the inverses of orders 2 and 3.

template <int N, class Real, class Other>
inline Real CKWMatrixT<N, Real, Other>::DeterminantWith(const CKWMatrixT& adjugate) const {
    Real det = m_afEntry[0] * adjugate.m_afEntry[0];
    for (int c = 1; c < N; ++c) {
        det += m_afEntry[c] * adjugate.m_afEntry[I(c, 0)];
    }
    return det;
}

template <int N, class Real, class Other>
inline CKWMatrixT<N, Real, Other> CKWMatrixT<N, Real, Other>::InverseWith(
    CKWMatrixT adjugate) const {
    const Real det = DeterminantWith(adjugate);
    if (!(std::fabs(det) > CKWMathT<Real, Other>::EPSILON)) {
        return CKWMatrixT(true);
    }
    adjugate *= Real(1) / det;
    return adjugate;
}

template <int N, class Real, class Other>
inline CKWMatrixT<N, Real, Other> operator*(Real s, const CKWMatrixT<N, Real, Other>& m) {
    return m * s;
}

// The row-vector product v^T * M, equal to M^T * v.
template <int N, class Real, class Other>
inline CKWVectorT<N, Real, Other> operator*(const CKWVectorT<N, Real, Other>& v,
                                            const CKWMatrixT<N, Real, Other>& m) {
    Real out[N];
    for (int c = 0; c < N; ++c) {
        Real sum = v[0] * m(0, c);
        for (int r = 1; r < N; ++r) {
            sum += v[r] * m(r, c);
        }
        out[c] = sum;
    }
    return CKWVectorT<N, Real, Other>(out);
}

// The library holds the instantiations. Windows hosts instantiate the inline
// members themselves (MinGW does not export them) and import the rest.
#if !defined(_WIN32)
extern template class CKWMatrixT<2, float, double>;
extern template class CKWMatrixT<3, float, double>;
extern template class CKWMatrixT<4, float, double>;
extern template class CKWMatrixT<2, double, float>;
extern template class CKWMatrixT<3, double, float>;
extern template class CKWMatrixT<4, double, float>;
#endif
