// Heights of a triangle from its sides.
#pragma once

#include <string>

namespace corvinade::fit {

// Height h of a triangle over its base c and the two parts p and q into which its foot divides the
// base; side a stands over p, side b over q. Lengths in any one unit. Where no triangle has these sides
// the message says so and the numbers are delivered all the same; otherwise the message is left alone.
void HoeheHoehenfusspunkt(double a, double b, double c, double& h, double& p, double& q,
                          std::string& message);

}  // namespace corvinade::fit
