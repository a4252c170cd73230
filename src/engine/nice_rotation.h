// The neater of the two triples of angles that describe the rotation of a result.
#pragma once

// Replaces the rotation of the job by the triple of EulerFromMatrixXYZ whose absolute angles have the
// smaller sum; of equal sums the second. The digits are those of the present angles, moved
// by half turns. Writes Job.RotX, RotY, RotZ and their copies. Where the second
// angle stands at plus or minus 90 degrees, or an angle is no number, the decomposition may give no
// triple of this rotation; the rotation then stays as it is.
void NiceRotSol();
