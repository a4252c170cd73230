// One transformation has many sets of parameters: signs of scales, half turns of the frame's angles and of
// the rotation make up for each other, and the matrix R K S is the same in all of them.
#pragma once

#include <array>
#include <vector>

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// Parameter k of the other form is Sign[k] times that of this one, plus HalfTurns[k] times pi.
struct EqualForm {
    std::array<int, kParameterEnd> Sign{}, HalfTurns{};
    double Of(int parameter, double value) const;
    bool IsSame() const;  // no sign and no half turn; whole turns do not count
};

// All forms that leave every held parameter at its value, the present one among them. They follow from
// R Rx(pi) and R Rz(pi) with the frame's axes turned alike, from an axis of the frame turned round together
// with the sign of its scale, from the azimuth on the other side with z to xy negative, and from the second
// triple of the rotation's angles.
//   model   which parameters float
//   values  of the held parameters
std::vector<EqualForm> EqualForms(const FitModel& model, const Parameters& values);

// Changes `values` to the form nearest to `reference`, its angles to where they are less than half a turn
// away from there. Held parameters are not looked at. True when another form was nearer; whole turns are
// none.
//   forms  EqualForms of the model and of the reference
bool TakeNearestForm(const FitModel& model, const std::vector<EqualForm>& forms, const Parameters& reference,
                     Parameters& values);

// The neater rotation (nice_rotation.h) of the result of a fit. In the other triple of angles Rot y runs the
// other way, and so do the row and the column of it in Q (unknowns by unknowns, by the numbers of the model):
// Q stays the inverse of the normal matrix. False, and nothing is changed, where there is none.
bool TakeNicerRotation(const FitModel& model, Parameters& parameters, Matrix& Q);

// Takes whole turns off the frame's floating angles, where an iteration has left a turn or more in them.
// False, and nothing is changed, where it has not.
bool TakeWholeTurnsOff(const FitModel& model, Parameters& parameters);

// Takes parameters from a form with a negative scale to the equal one without, if there is one; of several
// that whose frame is the least turned round. Q follows as above. False, and nothing is changed, where no
// scale is negative, and where the result is mirrored: that has no such form.
bool TakePositiveForm(const FitModel& model, Parameters& parameters, Matrix& Q);

}  // namespace corvinade::fit
