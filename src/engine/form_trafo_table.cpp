// The point table.
#include "engine/calculation_window.h"

void TabelleFüllenNeu() {}
void SchreibeTabellenSpalteBreite_in_ini() {}
void FormTrafoBerechnung::CheckMeasurement_Click() {}
void FormTrafoBerechnung::CheckObject_Click() {}
void FormTrafoBerechnung::CheckDeviation_Click() {}
void FormTrafoBerechnung::BtnUseAllPts_Click() {}
void FormTrafoBerechnung::Tabelle_Click() {}
void FormTrafoBerechnung::Tabelle_DblClick() {}
void FormTrafoBerechnung::Tabelle_SelChange() {}
void FormTrafoBerechnung::Tabelle_RightClick() {}
void FormTrafoBerechnung::Tabelle_Key() {}
void FormTrafoBerechnung::TextMaxDevXYZPkt_DblClick() {}
void FormTrafoBerechnung::TextMaxDevXPkt_DblClick() {}
void FormTrafoBerechnung::TextMaxDevYPkt_DblClick() {}
void FormTrafoBerechnung::TextMaxDevZPkt_DblClick() {}
void FormTrafoBerechnung::TextMinDevXPkt_DblClick() {}
void FormTrafoBerechnung::TextMinDevYPkt_DblClick() {}
void FormTrafoBerechnung::TextMinDevZPkt_DblClick() {}
