// The library for Python: arrays of doubles are read where they lie, and other threads run while a fit does.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>

#include "corvinade/fit.h"
#include "corvinade/transformation.h"
#include "interruption.h"
#include "moments.h"
#include "reading.h"

namespace py = pybind11;
using namespace corvinade;

namespace {

using Doubles = py::array_t<double, py::array::c_style>;

std::string ShapeOf(const py::array& array) {
    return py::str(
        py::tuple(py::cast(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()))));
}

// Rows x y z of doubles; one whose numbers do not stand at whole steps of a double is copied.
struct Rows {
    py::array Kept;
    Points View;

    Rows(const py::array& given, const std::string& what) : Kept(given) {
        if (!py::isinstance<py::array_t<double>>(Kept))
            throw py::type_error(what + ": an array of float64 was expected, and one of " +
                                 std::string(py::str(given.dtype())) + " came");
        if (Kept.ndim() != 2 || Kept.shape(1) != 3)
            throw py::value_error(what + ": an array of shape (n, 3) was expected, and one of shape " +
                                  ShapeOf(Kept) + " came");
        if (Kept.shape(0) == 0) throw py::value_error(what + ": points were expected, and none came");
        constexpr py::ssize_t kSize = sizeof(double);
        const bool whole = Kept.strides(0) % kSize == 0 && Kept.strides(1) % kSize == 0 &&
                           reinterpret_cast<std::uintptr_t>(Kept.data()) % kSize == 0;
        if (!whole) Kept = Doubles(given);
        View = Points(static_cast<const double*>(Kept.data()), static_cast<std::size_t>(Kept.shape(0)),
                      Kept.strides(0) / kSize, Kept.strides(1) / kSize);
    }
};

// Standard deviations and flags, already in the form that the library takes.
template <class Number>
std::span<const Number> SpanOf(const py::array_t<Number, py::array::c_style>& array) {
    return {array.data(), static_cast<std::size_t>(array.size())};
}

// A view that keeps its owner alive and that nobody writes to.
py::array View(const py::object& owner, const double* data, std::vector<py::ssize_t> shape) {
    py::array_t<double> view(std::move(shape), data, owner);
    py::detail::array_proxy(view.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return view;
}

const FitResult& Of(const py::object& self) {
    return self.cast<const FitResult&>();
}

Matrix4 MatrixFrom(const Doubles& array) {
    if (array.ndim() != 2 || array.shape(0) != 4 || array.shape(1) != 4)
        throw py::value_error("a matrix of shape (4, 4) was expected, and one of shape " + ShapeOf(array) +
                              " came");
    Matrix4 matrix;
    std::copy_n(array.data(), matrix.size(), matrix.begin());
    return matrix;
}

Doubles ArrayOf(const Matrix4& matrix) {
    Doubles array({4, 4});
    std::copy(matrix.begin(), matrix.end(), array.mutable_data());
    return array;
}

Doubles RotationOf(const Chain& chain) {
    const Matrix4 matrix = MatrixOf({.Rotation = chain.Rotation});
    Doubles array({3, 3});
    for (std::size_t i = 0; i < 9; ++i) array.mutable_data()[i] = matrix[4 * (i / 3) + i % 3];
    return array;
}

// By the name of a choice, or as the state of each parameter by its name; values of those held come by
// themselves.
ParameterChoice ChoiceOf(const py::object& parameters) {
    if (!py::isinstance<py::dict>(parameters)) return ChoiceByName(parameters.cast<std::string>());
    ParameterChoice choice;
    for (const auto& [name, state] : parameters.cast<py::dict>())
        if (state.cast<std::string>() == "floats")
            choice.State[static_cast<std::size_t>(ParameterByName(name.cast<std::string>()))] =
                ParameterState::Floats;
    return choice;
}

FitResult FitOf(const py::array& measured, const py::array& nominal, const py::object& parameters,
                const py::dict& hold, const std::string& norm,
                const py::array_t<unsigned char, py::array::c_style>& use, const Doubles& sigma,
                const Doubles& nominalSigma, const std::array<std::size_t, 3>& seed, int iterations) {
    const Rows start(measured, "measured"), target(nominal, "nominal");
    FitOptions options;
    options.Parameters = ChoiceOf(parameters);
    for (const auto& [name, value] : hold)
        options.Parameters.Hold(ParameterByName(name.cast<std::string>()), value.cast<double>());
    options.Which = NormByName(norm);
    options.InUse = SpanOf(use);
    options.StartSigma = SpanOf(sigma);
    options.TargetSigma = SpanOf(nominalSigma);
    options.SeedPairs = seed;
    options.MaxIterations = iterations;
    Interruption interruption;
    options.StopIsWanted = [&interruption] { return interruption.Wanted(); };
    try {
        const py::gil_scoped_release others;
        return Fit(start.View, target.View, options);
    } catch (const Stopped&) {
        if (!interruption.Came) throw;
    }
    throw py::error_already_set();
}

Doubles Applied(const Doubles& matrix, const Doubles& points) {
    const Matrix4 m = MatrixFrom(matrix);
    if (points.ndim() != 2 || points.shape(1) != 3)
        throw py::value_error("points: an array of shape (n, 3) was expected, and one of shape " +
                              ShapeOf(points) + " came");
    Doubles moved({points.shape(0), py::ssize_t{3}});
    const std::span<const double> from = SpanOf(points);
    const std::span<double> to(moved.mutable_data(), from.size());
    const py::gil_scoped_release others;
    Apply(m, from, to);
    return moved;
}

}  // namespace

PYBIND11_MODULE(_corvinade, module) {
    module.doc() = "What corvinade is made of; use the package.";
    module.attr("__version__") = Version();
    // ValueError is what Python has for it.
    py::register_exception<InvalidInput>(module, "InvalidInput", PyExc_ValueError).doc() =
        "What was handed over cannot be worked on: the text says what was expected and what came.";

    py::class_<FitResult>(module, "Fitted")
        .def_property_readonly("matrix",
                               [](const py::object& self) {
                                   return View(self, Of(self).Matrix.data(), {4, 4});
                               })
        .def_property_readonly("values",
                               [](const py::object& self) {
                                   return View(self, Of(self).Values.data(), {py::ssize_t{kParameters}});
                               })
        .def_property_readonly("sigmas",
                               [](const py::object& self) {
                                   return View(self, Of(self).Sigma.data(), {py::ssize_t{kParameters}});
                               })
        .def_property_readonly(
            "residuals",
            [](const py::object& self) {
                const std::vector<double>& rows = Of(self).Residuals;
                return View(self, rows.data(), {static_cast<py::ssize_t>(rows.size() / 3), 3});
            })
        .def_property_readonly("states",
                               [](const FitResult& result) {
                                   py::list states;
                                   for (const ParameterState state : result.State)
                                       states.append(state == ParameterState::Floats ? "floats"
                                                     : state == ParameterState::Held ? "held"
                                                                                     : "unused");
                                   return states;
                               })
        .def_property_readonly(
            "translation",
            [](const FitResult& r) { return py::array_t<double>(3, r.Transformation.Translation.data()); })
        .def_property_readonly(
            "scales",
            [](const FitResult& r) { return py::array_t<double>(3, r.Transformation.Scale.data()); })
        .def_property_readonly("rotation", [](const FitResult& r) { return RotationOf(r.Transformation); })
        .def_property_readonly("quaternion",
                               [](const FitResult& r) {
                                   const Quaternion q = QuaternionOf(r.Transformation);
                                   return py::make_tuple(q.X, q.Y, q.Z, q.W);
                               })
        .def_property_readonly("notes",
                               [](const FitResult& r) {
                                   py::list notes;
                                   for (const Note& note : r.Notes)
                                       notes.append(py::make_tuple(NameOf(note.Code), note.Text));
                                   return notes;
                               })
        .def_readonly("converged", &FitResult::Converged)
        .def_readonly("iterations", &FitResult::Iterations)
        .def_readonly("norm_iterations", &FitResult::NormIterations)
        .def_readonly("observations", &FitResult::Observations)
        .def_readonly("unknowns", &FitResult::Unknowns)
        .def_readonly("s0", &FitResult::S0)
        .def_readonly("sigma_of_axis", &FitResult::SigmaOfAxis);

    AddMoments(module);

    std::vector<std::string> names;
    for (std::size_t k = 0; k < kParameters; ++k) names.emplace_back(NameOf(static_cast<Parameter>(k)));
    module.attr("PARAMETERS") = py::tuple(py::cast(names));
    module.def("fit", &FitOf);
    AddReading(module);
    module.def("apply", &Applied);
    module.def("invert", [](const Doubles& matrix) { return ArrayOf(Invert(MatrixFrom(matrix))); });
    module.def("compose", [](const Doubles& then, const Doubles& first) {
        return ArrayOf(Compose(MatrixFrom(then), MatrixFrom(first)));
    });
    module.attr("EXPORT_FORMS") = py::tuple(py::cast(ExportForms()));
    module.def("export", [](const Doubles& matrix, const std::string& form, const std::string& name) {
        return Export(MatrixFrom(matrix), form, name);
    });
    module.def("import_text",
               [](const std::string& text, const std::string& form) { return ArrayOf(Import(text, form)); });
    module.def("chain_of", [](const Doubles& matrix) {
        const Chain chain = ChainOf(MatrixFrom(matrix));
        const Quaternion q = QuaternionOf(chain);
        return py::make_tuple(py::array_t<double>(3, chain.Translation.data()), RotationOf(chain),
                              py::array_t<double>(3, chain.Scale.data()),
                              py::array_t<double>(3, chain.Shear.data()), py::make_tuple(q.X, q.Y, q.Z, q.W));
    });
}
