// Quantiles of the distributions that tests of an adjustment stand on, and how large a bias has to be for
// such a test to find it. Formulas by Abramowitz and Stegun, Handbook of Mathematical Functions, chapter 26.
// Probabilities lie between 0 and 1, degrees of freedom are 1 and more; anything else gives NaN.
#pragma once

namespace corvinade::fit {

// Probabilities that a value is exceeded, from 0 to 1.
double NormalAbove(double x);
double StudentAbove(double t, double freedom);     // A&S 26.7.1, for any sign of t
double ChiSquareAbove(double x, double freedom);   // A&S 26.4.19
double FisherAbove(double f, double m, double n);  // A&S 26.6.2, m over n degrees of freedom

// The value that is exceeded with probability `above`.
double NormalQuantile(double above);
double StudentQuantile(double above, double freedom);
double ChiSquareQuantile(double above, double freedom);
double FisherQuantile(double above, double m, double n);

// The value that is not reached with probability `below`: with all digits where that is small.
double ChiSquareLowQuantile(double below, double freedom);

// The limit of Pope's tau: sqrt(r) t / sqrt(r - 1 + t^2), t of Student's distribution with r - 1 (Pope 1976,
// The statistics of residuals and the detection of outliers, NOAA TR NOS 65). NaN below a redundancy of 2.
double TauQuantile(double above, double redundancy);

// Which shift of its mean a two-sided test at this critical value finds with the probability `power`: of a
// normal variable with variance 1, and of Student's (the non-central t). Baarda's delta_0 (A testing
// procedure for use in geodetic networks, 1968), with the tail of the other sign counted too. 0 where the
// test says as much without any shift.
double NormalShift(double critical, double power);
double StudentShift(double critical, double freedom, double power);

}  // namespace corvinade::fit
