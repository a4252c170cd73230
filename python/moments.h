// Fits by sums, for Python.
#pragma once

#include <pybind11/pybind11.h>

// Adds the class to the module, behind that of results.
void AddMoments(pybind11::module_& module);
