// Procedures of rooms that are still to be built: what they refresh is not there yet.
#include "core/refresh.h"

void Alle_Fahnen_neu_zeichnen() {}
