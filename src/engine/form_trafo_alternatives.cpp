// Other triples of angles for the same solution.
#include "engine/calculation_window.h"

void Logic_BtnShowAlternativ() {}
void FormTrafoBerechnung::TextRotY_Change() {}
void FormTrafoBerechnung::BtnSecSolution_Click() {}
void FormTrafoBerechnung::BtnSecAffSol_Click() {}
void FormTrafoBerechnung::BtnShowAlternativeRottAff_Click() {}
