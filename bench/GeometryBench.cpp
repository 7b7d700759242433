// Matrices, quaternions and vectors of the geometry kernel against Eigen's
// fixed-size types, on the same data: arrays of 10^4 items, one pass per
// iteration. Each operation runs in both precisions; the names pair up as
// Op_Kw<float> and Op_Eigen<float>.
#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <Eigen/Geometry>
#include <vector>

#include "kwcore/geometry/linear/CKWMatrix3T.h"
#include "kwcore/geometry/linear/CKWMatrix4T.h"
#include "kwcore/geometry/linear/CKWQuaternionT.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

namespace {

constexpr int kCount = 10000;

template <class Real>
using OtherOf = typename std::conditional<std::is_same<Real, float>::value, double, float>::type;

// Values in [-1, 1] from a fixed linear congruential sequence.
class Values {
public:
    double Next() {
        m_state = m_state * 1664525u + 1013904223u;
        return (m_state >> 8) / double(1 << 23) - 1.0;
    }

private:
    unsigned m_state = 12345;
};

// The same items in the library's types and in Eigen's.
template <class Real>
struct Data {
    typedef OtherOf<Real> Other;
    typedef Eigen::Matrix<Real, 3, 3> EM3;
    typedef Eigen::Matrix<Real, 4, 4> EM4;
    typedef Eigen::Matrix<Real, 3, 1> EV3;
    typedef Eigen::Matrix<Real, 4, 1> EV4;
    typedef Eigen::Quaternion<Real> EQ;

    std::vector<CKWMatrix3T<Real, Other>> m3;
    std::vector<CKWMatrix4T<Real, Other>> m4;
    std::vector<CKWVector3T<Real, Other>> v3, w3;
    std::vector<CKWVector4T<Real, Other>> v4;
    std::vector<CKWQuaternionT<Real, Other>> p, q;
    std::vector<EM3> em3;
    std::vector<EM4> em4;
    std::vector<EV3> ev3, ew3;
    std::vector<EV4> ev4;
    std::vector<EQ> ep, eq;

    Data() {
        Values values;
        for (int i = 0; i < kCount; ++i) {
            CKWMatrix3T<Real, Other> a;
            CKWMatrix4T<Real, Other> b;
            EM3 ea;
            EM4 eb;
            for (int r = 0; r < 4; ++r) {
                for (int c = 0; c < 4; ++c) {
                    // Diagonally dominant, so every inverse exists.
                    const Real x = Real(values.Next() + (r == c ? 3 : 0));
                    b(r, c) = eb(r, c) = x;
                    if (r < 3 && c < 3) {
                        a(r, c) = ea(r, c) = x;
                    }
                }
            }
            m3.push_back(a);
            m4.push_back(b);
            em3.push_back(ea);
            em4.push_back(eb);
            const Real x = Real(values.Next()), y = Real(values.Next()), z = Real(values.Next());
            const Real s = Real(values.Next()), t = Real(values.Next()), u = Real(values.Next());
            v3.emplace_back(x, y, z);
            w3.emplace_back(s, t, u);
            v4.emplace_back(x, y, z, Real(1));
            ev3.emplace_back(x, y, z);
            ew3.emplace_back(s, t, u);
            ev4.emplace_back(x, y, z, Real(1));
            // Unit quaternions in one hemisphere (positive dot product), so
            // both libraries interpolate along the same arc.
            CKWQuaternionT<Real, Other> a0(Real(2), x, y, z), a1(Real(2), s, t, u);
            a0.Normalize();
            a1.Normalize();
            p.push_back(a0);
            q.push_back(a1);
            ep.emplace_back(a0.W(), a0.X(), a0.Y(), a0.Z());
            eq.emplace_back(a1.W(), a1.X(), a1.Y(), a1.Z());
        }
    }
};

template <class Real>
const Data<Real>& GetData() {
    static const Data<Real> data;
    return data;
}

// Runs body(i) for every item per iteration and keeps the output alive.
template <class Output, class Body>
void Run(benchmark::State& state, std::vector<Output>& out, Body body) {
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) {
            body(i);
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}

template <class Real>
void M3TimesV3_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWVector3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m3[i] * d.v3[i]; });
}
template <class Real>
void M3TimesV3_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EV3> out(kCount);
    Run(state, out, [&](int i) { out[i].noalias() = d.em3[i] * d.ev3[i]; });
}

template <class Real>
void M4TimesV4_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWVector4T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m4[i] * d.v4[i]; });
}
template <class Real>
void M4TimesV4_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EV4> out(kCount);
    Run(state, out, [&](int i) { out[i].noalias() = d.em4[i] * d.ev4[i]; });
}

template <class Real>
void M3TimesM3_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWMatrix3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m3[i] * d.m3[kCount - 1 - i]; });
}
template <class Real>
void M3TimesM3_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EM3> out(kCount);
    Run(state, out, [&](int i) { out[i].noalias() = d.em3[i] * d.em3[kCount - 1 - i]; });
}

template <class Real>
void M4TimesM4_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWMatrix4T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m4[i] * d.m4[kCount - 1 - i]; });
}
template <class Real>
void M4TimesM4_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EM4> out(kCount);
    Run(state, out, [&](int i) { out[i].noalias() = d.em4[i] * d.em4[kCount - 1 - i]; });
}

template <class Real>
void M3Inverse_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWMatrix3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m3[i].Inverse(); });
}
template <class Real>
void M3Inverse_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EM3> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.em3[i].inverse(); });
}

template <class Real>
void M4Inverse_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWMatrix4T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.m4[i].Inverse(); });
}
template <class Real>
void M4Inverse_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EM4> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.em4[i].inverse(); });
}

template <class Real>
void QuaternionToMatrix_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWMatrix3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { d.p[i].ToRotationMatrix(out[i]); });
}
template <class Real>
void QuaternionToMatrix_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EM3> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.ep[i].toRotationMatrix(); });
}

template <class Real>
void Slerp_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWQuaternionT<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i].Slerp(Real(0.3), d.p[i], d.q[i]); });
}
template <class Real>
void Slerp_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EQ> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.ep[i].slerp(Real(0.3), d.eq[i]); });
}

template <class Real>
void V3Normalize_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWVector3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.v3[i].GetNormalized(); });
}
template <class Real>
void V3Normalize_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EV3> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.ev3[i].normalized(); });
}

template <class Real>
void V3Cross_Kw(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<CKWVector3T<Real, OtherOf<Real>>> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.v3[i].Cross(d.w3[i]); });
}
template <class Real>
void V3Cross_Eigen(benchmark::State& state) {
    const auto& d = GetData<Real>();
    std::vector<typename Data<Real>::EV3> out(kCount);
    Run(state, out, [&](int i) { out[i] = d.ev3[i].cross(d.ew3[i]); });
}

}  // namespace

#define KWCORE_GEOMETRY_BENCH(op)          \
    BENCHMARK_TEMPLATE(op##_Kw, float);    \
    BENCHMARK_TEMPLATE(op##_Eigen, float); \
    BENCHMARK_TEMPLATE(op##_Kw, double);   \
    BENCHMARK_TEMPLATE(op##_Eigen, double)

KWCORE_GEOMETRY_BENCH(M3TimesV3);
KWCORE_GEOMETRY_BENCH(M4TimesV4);
KWCORE_GEOMETRY_BENCH(M3TimesM3);
KWCORE_GEOMETRY_BENCH(M4TimesM4);
KWCORE_GEOMETRY_BENCH(M3Inverse);
KWCORE_GEOMETRY_BENCH(M4Inverse);
KWCORE_GEOMETRY_BENCH(QuaternionToMatrix);
KWCORE_GEOMETRY_BENCH(Slerp);
KWCORE_GEOMETRY_BENCH(V3Normalize);
KWCORE_GEOMETRY_BENCH(V3Cross);
