// Fits by sums, for Python.
#include "moments.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <string>

#include "corvinade/moments.h"

namespace py = pybind11;
using namespace corvinade;

namespace {

using Doubles = py::array_t<double, py::array::c_style | py::array::forcecast>;

Points PointsOf(const Doubles& array, const char* what) {
    if (array.ndim() != 2 || array.shape(1) != 3)
        throw py::value_error(
            std::string(what) + ": an array of shape (n, 3) was expected, and one of shape " +
            std::string(py::str(
                py::tuple(py::cast(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()))))) +
            " came");
    return {array.data(), static_cast<std::size_t>(array.shape(0))};
}

// In pieces, between which Python hears Ctrl-C; all of them are taken or none.
void Add(Moments& moments, const Doubles& measured, const Doubles& nominal) {
    constexpr std::size_t kPiece = 100000;
    const Points start = PointsOf(measured, "measured"), target = PointsOf(nominal, "nominal");
    if (start.Count != target.Count)
        throw py::value_error("both sets have as many points, and " + std::to_string(start.Count) + " and " +
                              std::to_string(target.Count) + " came");
    Moments with = moments;
    for (std::size_t first = 0; first < start.Count; first += kPiece) {
        const std::size_t count = std::min(kPiece, start.Count - first);
        {
            const py::gil_scoped_release others;
            with.Add({start.Data + 3 * first, count}, {target.Data + 3 * first, count});
        }
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    }
    moments = std::move(with);
}

FitResult FitOf(const Moments& moments, const std::string& parameters, const py::dict& hold, int iterations) {
    FitOptions options;
    options.Parameters = ChoiceByName(parameters);
    for (const auto& [name, value] : hold)
        options.Parameters.Hold(ParameterByName(name.cast<std::string>()), value.cast<double>());
    options.MaxIterations = iterations;
    return Fit(moments, options);
}

py::bytes BytesOf(const Moments& moments) {
    const std::vector<unsigned char> bytes = moments.Bytes();
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

Moments FromBytes(const py::bytes& bytes) {
    const std::string_view text = bytes;
    return Moments::FromBytes({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

}  // namespace

void AddMoments(py::module_& module) {
    py::class_<Moments>(module, "Sums")
        .def(py::init<>())
        .def("add", &Add)
        .def("merge", &Moments::Merge)
        .def("count", &Moments::Count)
        .def("fit", &FitOf)
        .def("to_bytes", &BytesOf)
        .def_static("from_bytes", &FromBytes);
}
