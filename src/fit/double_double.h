// Sums and products with twice the digits, for the few places where hall coordinates would cost those
// that the deviations need. Classic error-free transformations (Dekker 1971, Knuth): no fused operation,
// so the same on every machine.
#pragma once

namespace corvinade::fit {

struct DoubleDouble {
    double High = 0, Low = 0;

    void Add(double x) {
        const double sum = High + x;
        const double part = sum - High;
        Low += (High - (sum - part)) + (x - part);
        High = sum;
    }
    void AddProduct(double a, double b) {
        const double product = a * b;
        double aHigh = 0, aLow = 0, bHigh = 0, bLow = 0;
        Split(a, aHigh, aLow);
        Split(b, bHigh, bLow);
        Add(product);
        Low += ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow;
    }
    double Value() const { return High + Low; }

private:
    // Two halves of 26 bits each. Overflows for values near the end of the range, as the sums do.
    static void Split(double x, double& high, double& low) {
        const double scaled = 134217729.0 * x;  // 2^27 + 1
        high = scaled - (scaled - x);
        low = x - high;
    }
};

}  // namespace corvinade::fit
