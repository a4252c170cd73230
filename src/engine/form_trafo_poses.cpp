// Poses.
#include "engine/calculation_window.h"

void FormTrafoBerechnung::BtnLoadRData_Click() {}
void FormTrafoBerechnung::CheckMonteCarlo_Click() {}
