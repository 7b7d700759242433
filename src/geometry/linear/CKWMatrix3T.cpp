// CKWMatrix3T: the out-of-line members and the 3x3 matrices of both scalar
// pairs, instantiated once for every host.

#include <cmath>
#include <limits>
#include <utility>

#include "kwcore/geometry/linear/CKWMatrix3T.h"
#include "kwcore/geometry/linear/CKWQuaternionT.h"

template <class Real, class Other>
const CKWMatrix3T<Real, Other> CKWMatrix3T<Real, Other>::ZERO(Real(0), Real(0), Real(0));
template <class Real, class Other>
const CKWMatrix3T<Real, Other> CKWMatrix3T<Real, Other>::IDENTITY(Real(1), Real(1), Real(1));

template <class Real, class Other>
CKWMatrix3T<Real, Other>::CKWMatrix3T(const Vector3& u, const Vector3& v, const Vector3& w,
                                      bool columns) {
    const Real* vectors[3] = {u, v, w};
    this->SetVectors(vectors, columns);
}

template <class Real, class Other>
CKWMatrix3T<Real, Other>::CKWMatrix3T(const Vector3* vectors, bool columns) {
    const Real* components[3] = {vectors[0], vectors[1], vectors[2]};
    this->SetVectors(components, columns);
}

template <class Real, class Other>
CKWMatrix3T<Real, Other>::CKWMatrix3T(const Real* entries, bool rowMajor) {
    this->SetEntries(entries, rowMajor);
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::MakeTensorProduct(const Vector3& u, const Vector3& v) {
    this->SetTensorProduct(u, v);
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::FromAxisAngle(const Vector3& axis, Real angle) {
    const Real c = Math::Cos(angle), s = Math::Sin(angle), t = Real(1) - c;
    const Real x = axis[0], y = axis[1], z = axis[2];
    *this = CKWMatrix3T(t * x * x + c, t * x * y - s * z, t * x * z + s * y,  //
                        t * x * y + s * z, t * y * y + c, t * y * z - s * x,  //
                        t * x * z - s * y, t * y * z + s * x, t * z * z + c);
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::ToAxisAngle(Vector3& axis, Real& angle) const {
    CKWQuaternionT<Real, Other> q(*this);
    if (q.W() < Real(0)) {
        q = -q;
    }
    q.ToAxisAngle(axis, angle);
}

// Euler angles. With (i, j, k) the axes in the order of the product and s = +1
// for the cyclic orders (XYZ, YZX, ZXY) or -1 for the others, relabelling the
// axes turns R_i(a) R_j(b) R_k(c) into Rx(s a) Ry(s b) Rz(s c), so M(i, k) is
// s sin b. The conversions are written once on that form.

namespace {

// The rotation by angle about coordinate axis i, with exact zeros and ones.
template <class Matrix, class Math, class Real>
Matrix AxisRotation(int i, Real angle) {
    const int j = (i + 1) % 3, k = (i + 2) % 3;
    const Real c = Math::Cos(angle), s = Math::Sin(angle);
    Matrix m = Matrix::IDENTITY;
    m(j, j) = c;
    m(k, k) = c;
    m(k, j) = s;
    m(j, k) = -s;
    return m;
}

}  // namespace

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::FromEulerAngles(int i, int j, int k, Real a, Real b, Real c) {
    *this = AxisRotation<CKWMatrix3T, Math>(i, a) * AxisRotation<CKWMatrix3T, Math>(j, b) *
            AxisRotation<CKWMatrix3T, Math>(k, c);
}

template <class Real, class Other>
bool CKWMatrix3T<Real, Other>::ToEulerAngles(int i, int j, int k, Real& a, Real& b, Real& c) const {
    const Real s = (j == (i + 1) % 3) ? Real(1) : Real(-1);
    const CKWMatrix3T& m = *this;
    const Real sinB = s * m(i, k);
    if (sinB < Real(1)) {
        if (sinB > Real(-1)) {
            a = Math::ATan2(-s * m(j, k), m(k, k));
            b = Math::ASin(sinB);
            c = Math::ATan2(-s * m(i, j), m(i, i));
            return true;
        }
        // b = -pi/2: only a - c is fixed; c is taken as 0.
        a = -Math::ATan2(m(j, i), m(j, j));
        b = -Math::HALF_PI;
        c = Real(0);
        return false;
    }
    // b = +pi/2 (or the entry is not a number): only a + c is fixed.
    a = Math::ATan2(m(j, i), m(j, j));
    b = Math::HALF_PI;
    c = Real(0);
    return false;
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::Orthonormalize() {
    Vector3 columns[3];
    for (int c = 0; c < 3; ++c) {
        columns[c] = this->GetColumn(c);
        for (int p = 0; p < c; ++p) {
            columns[c] = columns[c] - columns[p] * columns[p].Dot(columns[c]);
        }
        columns[c].Normalize();
    }
    *this = CKWMatrix3T(columns, true);
}

// Symmetric eigen-decomposition ---------------------------------------------

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::Tridiagonalize(Real diag[3], Real subDiag[3], CKWMatrix3T& q) const {
    const CKWMatrix3T& m = *this;
    const Real a01 = m(0, 1), a02 = m(0, 2);
    const Real length = std::hypot(a01, a02);
    q = IDENTITY;
    diag[0] = m(0, 0);
    subDiag[2] = Real(0);
    if (length == Real(0)) {
        // Already tridiagonal.
        diag[1] = m(1, 1);
        diag[2] = m(2, 2);
        subDiag[0] = a01;
        subDiag[1] = m(1, 2);
        return;
    }
    // The reflection H = [[1, 0, 0], [0, u, v], [0, v, -u]] maps (a01, a02) to
    // (length, 0); T = H A H.
    const Real u = a01 / length, v = a02 / length;
    const Real a11 = m(1, 1), a12 = m(1, 2), a22 = m(2, 2);
    const Real w = Real(2) * u * a12 + v * (a22 - a11);
    diag[1] = a11 + v * w;
    diag[2] = a22 - v * w;
    subDiag[0] = length;
    subDiag[1] = a12 - u * w;
    q(1, 1) = u;
    q(1, 2) = v;
    q(2, 1) = v;
    q(2, 2) = -u;
}

template <class Real, class Other>
bool CKWMatrix3T<Real, Other>::QLAlgorithm(Real diag[3], Real subDiag[3], CKWMatrix3T& q) {
    const int kMaxIterations = 64;
    for (int l = 0; l < 3; ++l) {
        int iteration = 0;
        for (;;) {
            // The first negligible sub-diagonal entry from l on ends the block.
            int m = l;
            for (; m < 2; ++m) {
                const Real scale = std::fabs(diag[m]) + std::fabs(diag[m + 1]);
                if (std::fabs(subDiag[m]) <= std::numeric_limits<Real>::epsilon() * scale) {
                    break;
                }
            }
            if (m == l) {
                break;
            }
            if (++iteration > kMaxIterations) {
                return false;
            }
            // Wilkinson-style shift from the leading 2x2 block, then the
            // implicit QL sweep from m - 1 down to l.
            Real g = (diag[l + 1] - diag[l]) / (Real(2) * subDiag[l]);
            Real r = std::hypot(g, Real(1));
            g = diag[m] - diag[l] + subDiag[l] / (g + (g >= Real(0) ? r : -r));
            Real s = Real(1), c = Real(1), p = Real(0);
            int i = m - 1;
            for (; i >= l; --i) {
                Real f = s * subDiag[i];
                const Real b = c * subDiag[i];
                r = std::hypot(f, g);
                subDiag[i + 1] = r;
                if (r == Real(0)) {
                    // Underflow: deflate and restart this block.
                    diag[i + 1] -= p;
                    subDiag[m] = Real(0);
                    break;
                }
                s = f / r;
                c = g / r;
                g = diag[i + 1] - p;
                r = (diag[i] - g) * s + Real(2) * c * b;
                p = s * r;
                diag[i + 1] = g + p;
                g = c * r - b;
                for (int k = 0; k < 3; ++k) {
                    f = q(k, i + 1);
                    q(k, i + 1) = s * q(k, i) + c * f;
                    q(k, i) = c * q(k, i) - s * f;
                }
            }
            if (i >= l) {
                continue;
            }
            diag[l] -= p;
            subDiag[l] = g;
            subDiag[m] = Real(0);
        }
    }
    return true;
}

namespace {

// Sorts the entries of values ascending (descending when ascending is false)
// and the columns of vectors (and of others, when given) with them.
template <class Real, class Matrix>
void SortWithColumns(Real values[3], Matrix& vectors, bool ascending, Matrix* others = nullptr) {
    for (int i = 0; i < 2; ++i) {
        int pick = i;
        for (int j = i + 1; j < 3; ++j) {
            if (ascending ? values[j] < values[pick] : values[j] > values[pick]) {
                pick = j;
            }
        }
        if (pick == i) {
            continue;
        }
        std::swap(values[i], values[pick]);
        for (int r = 0; r < 3; ++r) {
            std::swap(vectors(r, i), vectors(r, pick));
            if (others) {
                std::swap((*others)(r, i), (*others)(r, pick));
            }
        }
    }
}

// Applies the plane rotation (c, s) to columns (or rows) a and b of m:
// a' = c a + s b, b' = -s a + c b.
template <class Real, class Matrix>
void RotateColumns(Matrix& m, int a, int b, Real c, Real s) {
    for (int r = 0; r < 3; ++r) {
        const Real x = m(r, a), y = m(r, b);
        m(r, a) = c * x + s * y;
        m(r, b) = -s * x + c * y;
    }
}
template <class Real, class Matrix>
void RotateRows(Matrix& m, int a, int b, Real c, Real s) {
    for (int col = 0; col < 3; ++col) {
        const Real x = m(a, col), y = m(b, col);
        m(a, col) = c * x + s * y;
        m(b, col) = -s * x + c * y;
    }
}

// The plane rotation (c, s) that takes (y, z) to (hypot(y, z), 0); when both
// are 0, the identity (1, 0) and false.
template <class Real>
bool PlaneRotation(Real y, Real z, Real& c, Real& s) {
    const Real r = std::hypot(y, z);
    if (r == Real(0)) {
        c = Real(1);
        s = Real(0);
        return false;
    }
    c = y / r;
    s = z / r;
    return true;
}

}  // namespace

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::EigenDecomposition(CKWMatrix3T& rotation,
                                                  CKWMatrix3T& diagonal) const {
    Real diag[3], subDiag[3];
    CKWMatrix3T q;
    Tridiagonalize(diag, subDiag, q);
    if (!QLAlgorithm(diag, subDiag, q)) {
        // Not a symmetric matrix of numbers (NaN or infinite entries).
        rotation = IDENTITY;
        diagonal.MakeDiagonal((*this)(0, 0), (*this)(1, 1), (*this)(2, 2));
        return;
    }
    SortWithColumns(diag, q, true);
    if (q.Determinant() < Real(0)) {
        for (int r = 0; r < 3; ++r) {
            q(r, 2) = -q(r, 2);
        }
    }
    rotation = q;
    diagonal.MakeDiagonal(diag[0], diag[1], diag[2]);
}

// Singular-value decomposition ----------------------------------------------

namespace {

// The Householder reflection H = I - 2 v v^T / (v^T v) that maps x, the
// entries from..2 of a column or row, onto a multiple of its first unit
// vector. Returns false when x is already there.
template <class Real, class Matrix>
bool Householder(const Real x[3], int from, Matrix& h) {
    Real v[3] = {Real(0), Real(0), Real(0)};
    Real tail = Real(0);
    for (int i = from + 1; i < 3; ++i) {
        v[i] = x[i];
        tail += x[i] * x[i];
    }
    h = Matrix::IDENTITY;
    if (tail == Real(0)) {
        return false;
    }
    const Real length = std::sqrt(x[from] * x[from] + tail);
    v[from] = x[from] + (x[from] >= Real(0) ? length : -length);
    const Real scale = Real(2) / (v[from] * v[from] + tail);
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            h(r, c) -= scale * v[r] * v[c];
        }
    }
    return true;
}

}  // namespace

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::Bidiagonalize(CKWMatrix3T& left, CKWMatrix3T& b,
                                             CKWMatrix3T& right) const {
    left = IDENTITY;
    right = IDENTITY;
    b = *this;
    CKWMatrix3T h;
    for (int k = 0; k < 3; ++k) {
        const Real column[3] = {b(0, k), b(1, k), b(2, k)};
        if (Householder(column, k, h)) {
            b = h * b;
            left = left * h;
        }
        if (k + 1 < 2) {
            const Real row[3] = {b(k, 0), b(k, 1), b(k, 2)};
            if (Householder(row, k + 1, h)) {
                b = b * h;
                right = right * h;
            }
        }
    }
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::GolubKahanStep(CKWMatrix3T& left, CKWMatrix3T& b, CKWMatrix3T& right,
                                              int lo, int hi) {
    // Shift: the eigenvalue of the trailing 2x2 block of b^T b nearer its
    // last diagonal entry.
    const Real dm = b(hi - 1, hi - 1), dn = b(hi, hi), fm = b(hi - 1, hi);
    const Real fmm = hi - 1 > lo ? b(hi - 2, hi - 1) : Real(0);
    const Real t11 = dm * dm + fmm * fmm, t12 = dm * fm, t22 = dn * dn + fm * fm;
    const Real delta = Real(0.5) * (t11 - t22);
    const Real root = std::hypot(delta, t12);
    const Real denominator = delta + (delta >= Real(0) ? root : -root);
    const Real mu = denominator != Real(0) ? t22 - t12 * t12 / denominator : t22 - std::fabs(t12);

    Real y = b(lo, lo) * b(lo, lo) - mu;
    Real z = b(lo, lo) * b(lo, lo + 1);
    for (int k = lo; k < hi; ++k) {
        // From the right: zero z against y in columns k, k + 1.
        Real c, s;
        PlaneRotation(y, z, c, s);
        RotateColumns(b, k, k + 1, c, s);
        RotateColumns(right, k, k + 1, c, s);
        // From the left: zero the bulge below the diagonal.
        PlaneRotation(b(k, k), b(k + 1, k), c, s);
        RotateRows(b, k, k + 1, c, s);
        RotateColumns(left, k, k + 1, c, s);
        b(k + 1, k) = Real(0);
        if (k + 1 < hi) {
            y = b(k, k + 1);
            z = b(k, k + 2);
        }
    }
}

namespace {

// The largest magnitude among the nine entries: the scale of the
// decompositions' tolerances.
template <class Real>
Real LargestMagnitude(const Real* entries) {
    Real norm = Real(0);
    for (int i = 0; i < 9; ++i) {
        norm = std::fmax(norm, std::fabs(entries[i]));
    }
    return norm;
}

// Sets the negligible superdiagonal entries of the upper bidiagonal b to 0,
// which splits it into blocks, and finds the last unreduced block lo..hi;
// false when b is diagonal.
template <class Real, class Matrix>
bool FindLastUnreducedBlock(Matrix& b, Real tolerance, int& lo, int& hi) {
    for (int i = 0; i < 2; ++i) {
        if (!(std::fabs(b(i, i + 1)) > tolerance)) {
            b(i, i + 1) = Real(0);
        }
    }
    hi = 2;
    while (hi > 0 && b(hi - 1, hi) == Real(0)) {
        --hi;
    }
    lo = hi - 1;
    while (lo > 0 && b(lo - 1, lo) != Real(0)) {
        --lo;
    }
    return hi > 0;
}

// The first negligible diagonal entry of the block lo..hi, or -1.
template <class Real, class Matrix>
int FindZeroOnDiagonal(const Matrix& b, Real tolerance, int lo, int hi) {
    for (int i = lo; i <= hi; ++i) {
        if (!(std::fabs(b(i, i)) > tolerance)) {
            return i;
        }
    }
    return -1;
}

// For a negligible b(zero, zero) in the block lo..hi: sets it to 0 and
// rotates the superdiagonal entry next to it away (against the rows below,
// or for the last one the columns to its left), which splits the block.
template <class Real, class Matrix>
void SplitAtZeroOnDiagonal(Matrix& left, Matrix& b, Matrix& right, int lo, int hi, int zero) {
    b(zero, zero) = Real(0);
    if (zero == hi) {
        for (int j = hi - 1; j >= lo; --j) {
            // Columns (j, hi): column j' = c column j + s column hi.
            Real c, s;
            if (!PlaneRotation(b(j, j), b(j, hi), c, s)) {
                continue;
            }
            RotateColumns(b, j, hi, c, s);
            RotateColumns(right, j, hi, c, s);
            b(j, hi) = Real(0);
        }
        return;
    }
    for (int j = zero + 1; j <= hi; ++j) {
        // Rows (j, zero): row j' = c row j + s row zero.
        Real c, s;
        if (!PlaneRotation(b(j, j), b(zero, j), c, s)) {
            continue;
        }
        RotateRows(b, j, zero, c, s);
        RotateColumns(left, j, zero, c, s);
        b(zero, j) = Real(0);
    }
}

}  // namespace

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::SingularValueDecomposition(CKWMatrix3T& left, CKWMatrix3T& diagonal,
                                                          CKWMatrix3T& rightTranspose) const {
    CKWMatrix3T b, right;
    Bidiagonalize(left, b, right);
    const Real tolerance =
        Real(4) * std::numeric_limits<Real>::epsilon() * LargestMagnitude(this->m_afEntry);
    const int kMaxSteps = 100;
    int lo, hi;
    for (int step = 0; step < kMaxSteps && FindLastUnreducedBlock(b, tolerance, lo, hi); ++step) {
        const int zero = FindZeroOnDiagonal(b, tolerance, lo, hi);
        if (zero < 0) {
            GolubKahanStep(left, b, right, lo, hi);
        } else {
            SplitAtZeroOnDiagonal<Real>(left, b, right, lo, hi, zero);
        }
    }
    // Non-negative singular values, descending, with their vectors.
    Real values[3];
    for (int i = 0; i < 3; ++i) {
        values[i] = b(i, i);
        if (values[i] < Real(0)) {
            values[i] = -values[i];
            for (int r = 0; r < 3; ++r) {
                left(r, i) = -left(r, i);
            }
        }
    }
    SortWithColumns(values, left, false, &right);
    rightTranspose = right.Transpose();
    diagonal.MakeDiagonal(values[0], values[1], values[2]);
}

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::SingularValueComposition(const CKWMatrix3T& left,
                                                        const CKWMatrix3T& diagonal,
                                                        const CKWMatrix3T& rightTranspose) {
    *this = left * diagonal * rightTranspose;
}

// QDU decomposition ----------------------------------------------------------

template <class Real, class Other>
void CKWMatrix3T<Real, Other>::QDUDecomposition(CKWMatrix3T& q, CKWMatrix3T& d,
                                                CKWMatrix3T& u) const {
    // Gram-Schmidt on the columns. A column that (nearly) depends on the ones
    // before it leaves its place in q to be filled by a unit vector
    // orthogonal to the others, with 0 in d.
    const Real tolerance =
        Real(16) * std::numeric_limits<Real>::epsilon() * LargestMagnitude(this->m_afEntry);
    Vector3 columns[3];
    bool filled[3] = {false, false, false};
    for (int c = 0; c < 3; ++c) {
        columns[c] = this->GetColumn(c);
        // Twice: the second pass restores the orthogonality that cancellation
        // loses on nearly dependent columns.
        for (int pass = 0; pass < 2; ++pass) {
            for (int p = 0; p < c; ++p) {
                if (filled[p]) {
                    columns[c] = columns[c] - columns[p] * columns[p].Dot(columns[c]);
                }
            }
        }
        const Real length = columns[c].Length();
        if (length > tolerance && length > Real(0)) {
            columns[c] = columns[c] * (Real(1) / length);
            filled[c] = true;
        }
    }
    // Complete the basis: each missing column is orthogonal to the ones there.
    for (int c = 0; c < 3; ++c) {
        if (filled[c]) {
            continue;
        }
        Real best = Real(-1);
        for (int axis = 0; axis < 3; ++axis) {
            Vector3 candidate(Real(0), Real(0), Real(0));
            candidate[axis] = Real(1);
            for (int p = 0; p < 3; ++p) {
                if (filled[p]) {
                    candidate = candidate - columns[p] * columns[p].Dot(candidate);
                }
            }
            const Real length = candidate.Length();
            if (length > best) {
                best = length;
                columns[c] = candidate * (Real(1) / length);
            }
        }
        filled[c] = true;
    }
    q = CKWMatrix3T(columns, true);
    CKWMatrix3T r = q.TransposeTimes(*this);
    if (q.Determinant() < Real(0)) {
        // -q is a rotation; -r keeps the product.
        q = -q;
        r = -r;
    }
    d.MakeDiagonal(r(0, 0), r(1, 1), r(2, 2));
    u = IDENTITY;
    for (int row = 0; row < 3; ++row) {
        for (int col = row + 1; col < 3; ++col) {
            u(row, col) = std::fabs(r(row, row)) > tolerance ? r(row, col) / r(row, row) : Real(0);
        }
    }
}

template <class Real, class Other>
CKWMatrix3T<Real, Other> CKWMatrix3T<Real, Other>::Slerp(Real t, const CKWMatrix3T& r0,
                                                         const CKWMatrix3T& r1) {
    Vector3 axis;
    Real angle;
    CKWMatrix3T(r0.TransposeTimes(r1)).ToAxisAngle(axis, angle);
    return r0 * CKWMatrix3T(axis, t * angle);
}

template class CKWMatrix3T<float, double>;
template class CKWMatrix3T<double, float>;
