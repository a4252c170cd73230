// The window of the calculation, as the tests of its controls call it.
#pragma once

#include "engine/form_trafo_berechnung.h"

inline corvinade::engine::FormTrafoBerechnung& trafoWindow = corvinade::engine::TrafoWindow;
