// Files of points and jobs for the module, by the readers of the program.
#pragma once

#include <pybind11/pybind11.h>

// Adds the procedures that read files, and those that pair points, to the module.
void AddReading(pybind11::module_& module);
