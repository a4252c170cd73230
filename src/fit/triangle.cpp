// Heights of a triangle from its sides.
#include "fit/triangle.h"

#include <cmath>

namespace corvinade::fit {

void HoeheHoehenfusspunkt(double a, double b, double c, double& h, double& p, double& q,
                          std::string& message) {
    if (a > b + c || b > a + c || c > a + b) message = "Error in Höhe-Höhenfußpunkt; no possible triangle";
    // The part under the longer side is computed, the other one is what remains. The absolute value
    // under the root keeps the height real for a degenerate triangle.
    if (a > b) {
        p = (a * a + c * c - b * b) / 2 / (c + 2e-10);
        q = c - p;
        h = std::sqrt(std::fabs(b * b - q * q));
    } else {
        q = (b * b + c * c - a * a) / 2 / (c + 2e-10);
        p = c - q;
        h = std::sqrt(std::fabs(a * a - p * p));
    }
}

}  // namespace corvinade::fit
