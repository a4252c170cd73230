"""Transformations, and what a fit has found."""

from __future__ import annotations

import html
import json
import math
import os
from typing import Any, NamedTuple, Optional, Sequence

import numpy as np

from . import _corvinade
from ._points import Points, doubles, is_frame, points_of
from ._rotation import Rotation

_SCALES = ("scalex", "scaley", "scalez", "scalexyz")
_SHIFTS = ("trax", "tray", "traz")


def unit_of(parameter: str) -> str:
    return "mm" if parameter in _SHIFTS else "" if parameter in _SCALES else "rad"


class Transformation:
    """X = M x + t, as a matrix of shape (4, 4) with the last row 0 0 0 1; lengths in mm."""

    __slots__ = ("_matrix", "_chain")

    def __init__(self, matrix: Any):
        given = doubles(matrix, "matrix")
        self._chain = _corvinade.chain_of(given)
        self._matrix = np.array(given)
        self._matrix.flags.writeable = False

    @classmethod
    def from_text(cls, text: str, form: str) -> Transformation:
        """From what `export` writes in one of `corvinade.EXPORT_FORMS`; ValueError, with line, where it is none.

        >>> Transformation.from_text("$BASE={X 1,Y 2,Z 3,A 90,B 0,C 0}", "kuka-base").translation
        array([1., 2., 3.])
        """
        return cls(_corvinade.import_text(text, form))

    @property
    def matrix(self) -> np.ndarray:
        """The homogeneous matrix, shape (4, 4)."""
        return self._matrix

    @property
    def translation(self) -> np.ndarray:
        """T, shape (3,), mm."""
        return self._chain[0]

    @property
    def rotation(self) -> Rotation:
        """R, without scale and shear."""
        return Rotation(self._chain[1], self._chain[4])

    @property
    def scales(self) -> np.ndarray:
        """Factors of x, y and z, shape (3,)."""
        return self._chain[2]

    def transform(self, points: Any) -> Any:
        """Points of shape (n, 3), mm, where the transformation takes them; of a frame a frame with its index, of
        `Points` or a path `Points`, without standard deviations."""
        return moved(self.matrix, points)

    def inverse(self) -> Transformation:
        """The way back. ValueError where there is none."""
        return Transformation(_corvinade.invert(self.matrix))

    def export(self, form: str, name: str = "") -> str:
        """The transformation as another machine takes it: one of `corvinade.EXPORT_FORMS`, such as "ros".

        `name` goes into declarations. ValueError where the form has no place for a scale, a shear or a mirror.
        """
        return _corvinade.export(self.matrix, form, name)

    def __matmul__(self, first: Transformation) -> Transformation:
        """First `first`, then this one."""
        if not isinstance(first, (Transformation, Result)):
            return NotImplemented
        return Transformation(_corvinade.compose(self.matrix, first.matrix))

    def __repr__(self) -> str:
        return f"Transformation({np.array2string(self.matrix, separator=', ')})"


def moved(matrix: np.ndarray, points: Any) -> Any:
    if isinstance(points, (str, os.PathLike)):
        from ._reading import read_points

        points = read_points(points)
    coordinates, _ = points_of(points, "points")
    there = _corvinade.apply(matrix, coordinates)
    # Standard deviations are of the axes that the points come from.
    if isinstance(points, Points):
        return Points(points.names, there, None, points.path, points.format, points.unit, points.notes)
    if not is_frame(points):
        return there
    return type(points)(there, index=points.index, columns=["x", "y", "z"])


class Parameter(NamedTuple):
    """One of the thirteen parameters; shifts in mm, angles in rad, scales as factors."""

    value: float
    sigma: float  # NaN where the points leave it open, 0 where it does not float
    state: str  # "floats", "held", "unused"
    unit: str


class Note(NamedTuple):
    """What a fit has decided on its own, or leaves to be said."""

    code: str
    text: str


class Statistics(NamedTuple):
    """How well the points fit; mm. s0 = sqrt(v'Pv / (sum of weights - 1)), and the same of each axis alone."""

    s0: float
    sx: float
    sy: float
    sz: float
    observations: int
    unknowns: int
    converged: bool
    iterations: int
    norm_iterations: int


class Result:
    """What `corvinade.fit` has found: X = T + R K S x carries the measured points onto the nominal ones."""

    __slots__ = ("_fitted", "names", "norm", "unpaired", "_of_files", "_notes")

    def __init__(self, fitted: _corvinade.Fitted, names: Optional[list[str]], norm: str,
                 unpaired: tuple[list[str], list[str]], of_files: Sequence[Note] = ()):
        self._fitted = fitted
        self.names = names
        self.norm = norm
        self.unpaired = unpaired
        self._of_files = of_files
        self._notes: Optional[list[Note]] = None

    @property
    def matrix(self) -> np.ndarray:
        """The homogeneous matrix, shape (4, 4); its last column in mm."""
        return self._fitted.matrix

    @property
    def transformation(self) -> Transformation:
        return Transformation(self.matrix)

    @property
    def translation(self) -> np.ndarray:
        """T, shape (3,), mm."""
        return self._fitted.translation

    @property
    def rotation(self) -> Rotation:
        """R, without scale and shear."""
        return Rotation(self._fitted.rotation, self._fitted.quaternion)

    @property
    def scale(self) -> Any:
        """The factor, where all axes have the same one; otherwise those of x, y and z, shape (3,)."""
        scales = self._fitted.scales
        return float(scales[0]) if scales[0] == scales[1] == scales[2] else scales

    @property
    def scales(self) -> np.ndarray:
        """Factors of x, y and z, shape (3,)."""
        return self._fitted.scales

    @property
    def residuals(self) -> np.ndarray:
        """Transformed measured points minus nominal ones, shape (n, 3), mm; also of those that took no part.

        Of a fit of `Moments`, which know no single pair, the shape is (0, 3)."""
        return self._fitted.residuals

    @property
    def pairs(self) -> int:
        """How many there are; of a fit of `Moments` without residuals."""
        f = self._fitted
        return len(f.residuals) or f.observations // 3

    @property
    def converged(self) -> bool:
        """False: the result is not the best fit."""
        return self._fitted.converged

    @property
    def parameters(self) -> dict[str, Parameter]:
        """The thirteen parameters by name, as the command line calls them: angles a, b, c are rotx, roty, rotz."""
        f = self._fitted
        return {
            name: Parameter(float(value), float(sigma), state, unit_of(name))
            for name, value, sigma, state in zip(_corvinade.PARAMETERS, f.values, f.sigmas, f.states)
        }

    @property
    def statistics(self) -> Statistics:
        f = self._fitted
        return Statistics(f.s0, *f.sigma_of_axis, f.observations, f.unknowns, f.converged, f.iterations,
                          f.norm_iterations)

    @property
    def notes(self) -> list[Note]:
        """What the fit has decided on its own, or leaves to be said."""
        if self._notes is None:
            self._notes = [*self._of_files, *(Note(code, text) for code, text in self._fitted.notes)]
            for names, of in zip(self.unpaired, ("measured", "nominal")):
                if names:
                    more = ", ..." if len(names) > 5 else ""
                    self._notes.append(Note("unpaired", f"{len(names)} of the {of} points have no partner of their "
                                                        f"name and take no part: {', '.join(names[:5])}{more}"))
        return self._notes

    def transform(self, points: Any) -> Any:
        """Points of shape (n, 3), mm, where the fit takes them; of a frame a frame with its index, of
        `Points` or a path `Points`, without standard deviations."""
        return moved(self.matrix, points)

    def inverse(self) -> Transformation:
        """The way back, from nominal to measured. ValueError where there is none."""
        return self.transformation.inverse()

    def export(self, form: str, name: str = "") -> str:
        """The transformation as another machine takes it: one of `corvinade.EXPORT_FORMS`, such as "ros".

        `name` goes into declarations. ValueError where the form has no place for a scale, a shear or a mirror.
        """
        return _corvinade.export(self.matrix, form, name)

    def plot(self, axes: Any = None) -> Any:
        """What is left over at each pair, mm, as bars on axes of matplotlib, or on new ones; gives the axes.

        ImportError where there is no matplotlib.
        """
        try:
            from matplotlib import pyplot
        except ImportError as error:
            raise ImportError("plot draws with matplotlib, and this Python has none: install python3-matplotlib") from error
        if axes is None:
            axes = pyplot.subplots()[1]
        lengths = np.linalg.norm(self.residuals, axis=1)
        axes.bar(np.arange(len(lengths)), lengths)
        axes.set_ylabel("deviation, mm")
        axes.set_title(f"s0 = {self._fitted.s0:.4g} mm{'' if self._fitted.converged else ', not converged'}")
        if self.names is not None and len(self.names) <= 60:
            axes.set_xticks(np.arange(len(lengths)), self.names, rotation=90)
        else:
            axes.set_xlabel("pair, from 0")
        return axes

    def to_json(self, indent: Optional[int] = 1) -> str:
        """All of it as JSON, which ``corvinade-cli transform --with`` takes; mm and rad, null for what is open."""
        f = self._fitted
        x, y, z, w = f.quaternion
        names = self.names
        return json.dumps({
            "schema": "corvinade-library-fit",
            "schemaVersion": 1,
            "program": {"name": "corvinade", "version": _corvinade.__version__},
            "counts": {"pairs": self.pairs, "observations": f.observations, "unknowns": f.unknowns},
            "converged": f.converged,
            "iterations": f.iterations,
            "norm": self.norm,
            "normIterations": f.norm_iterations,
            "parameters": [
                {"name": name, "unit": p.unit, "state": p.state, "value": _told(p.value), "sigma": _told(p.sigma)}
                for name, p in self.parameters.items()
            ],
            "transformation": {
                "equation": "X = T + R*K*S*x",
                "translation_mm": f.translation.tolist(),
                "rotationMatrix": f.rotation.tolist(),
                "scales": f.scales.tolist(),
                "matrix": f.matrix.tolist(),
                "quaternion": {"order": "w, x, y, z of R", "w": w, "x": x, "y": y, "z": z},
            },
            "quality": {"s0_mm": f.s0, "sx_mm": f.sigma_of_axis[0], "sy_mm": f.sigma_of_axis[1],
                        "sz_mm": f.sigma_of_axis[2], "note": "s0 = sqrt(vPv / (sum of weights - 1))"},
            "points": [
                {"name": names[i] if names is not None else str(i), "residual_mm": row}
                for i, row in enumerate(f.residuals.tolist())
            ],
            "notes": [{"code": note.code, "text": note.text} for note in self.notes],
        }, indent=indent, allow_nan=False)

    def _repr_html_(self) -> str:
        rows = "".join(
            f"<tr><td>{name}</td><td>{p.value:.9g}</td><td>"
            f"{'' if p.state != 'floats' else '&ndash;' if math.isnan(p.sigma) else format(p.sigma, '.3g')}</td>"
            f"<td>{p.unit}</td></tr>"
            for name, p in self.parameters.items() if p.state != "unused"
        )
        notes = "".join(f"<li>{html.escape(note.text)}</li>" for note in self.notes)
        f = self._fitted
        return (f"<table><thead><tr><th>parameter</th><th>value</th><th>sigma</th><th>unit</th></tr></thead><tbody>{rows}"
                f"</tbody></table><p>s0 = {f.s0:.6g} mm, {self.pairs} pairs"
                f"{'' if f.converged else ', <b>not converged</b>'}</p>" + (f"<ul>{notes}</ul>" if notes else ""))

    def __repr__(self) -> str:
        f = self._fitted
        return (f"Result({self.pairs} pairs, s0={f.s0:.6g} mm, "
                f"{'converged' if f.converged else 'NOT CONVERGED'}, {len(self.notes)} notes)")


def _told(number: float) -> Optional[float]:
    return number if math.isfinite(number) else None
