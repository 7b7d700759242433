// The kernel's special functions in double precision, shared by both pairs
// of CKWMathT. Conventions as documented on CKWMathT.
#pragma once

namespace kwSpecialFunctions {

double Gamma(double x);
double LogGamma(double x);
// Regularized lower incomplete gamma P(a, x), choosing the series or the
// continued fraction by x < a + 1; the two halves are exposed as well.
double IncompleteGamma(double a, double x);
double IncompleteGammaSeries(double a, double x);
double IncompleteGammaFraction(double a, double x);
double Erf(double x);
double Erfc(double x);
// The modified Bessel function of the first kind I_order, order 0 or 1.
double BesselI(int order, double x);

}  // namespace kwSpecialFunctions
