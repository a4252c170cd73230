"""Least-squares 3D transformation between two sets of points, with the bits of ``corvinade-cli fit``.

Lengths in mm, angles in rad, arrays of shape (n, 3) with rows x y z.

>>> import numpy as np
>>> import corvinade
>>> measured = np.array([[0, 0, 0], [1000, 0, 0], [0, 800, 0], [0, 0, 600.0]])
>>> nominal = measured + [100, 200, 50]
>>> result = corvinade.fit(measured, nominal)
>>> np.round(result.translation, 6) + 0.0
array([100., 200.,  50.])
>>> result.transform([[1, 2, 3.0]]).round(6)
array([[101., 202.,  53.]])
"""

from __future__ import annotations

import os
import sys
from typing import Any, Mapping, Optional, Sequence

import numpy as np

try:
    from ._corvinade import EXPORT_FORMS, InvalidInput, PARAMETERS, __version__
    from ._corvinade import fit as _fit
except ImportError as error:
    raise ImportError(f"corvinade has a part that is made for one version of Python; for this one, {sys.version.split()[0]}, "
                      f"it is missing or damaged: {error}") from error
from ._moments import Moments
from ._points import Points, doubles, paired, points_of
from ._reading import Job, Match, Program, match, read_job, read_points, read_program
from ._result import Note, Parameter, Result, Statistics, Transformation
from ._rotation import Rotation

__all__ = ["fit", "match", "read_job", "read_points", "read_program", "EXPORT_FORMS", "InvalidInput", "Job", "Match", "Moments", "Note",
           "PARAMETERS", "Parameter", "Points", "Program", "Result", "Rotation", "Statistics", "Transformation", "__version__"]

_NO_DOUBLES = np.empty(0)
_NO_FLAGS = np.empty(0, dtype=np.uint8)


def fit(measured: Any, nominal: Any = None, parameters: str = "7", names: Optional[Sequence[str]] = None,
        sigma: Any = None, norm: str = "l2", hold: Optional[Mapping[str, float]] = None, *,
        use: Any = None, nominal_sigma: Any = None, seed: Sequence[int] = (0, 1, 2),
        max_iterations: int = 100) -> Result:
    """The transformation that carries `measured` onto `nominal`, pair by pair.

    measured, nominal: arrays of shape (n, 3), mm; float64 is read where it lies. Frames of pandas with columns
        x, y, z (or three) have the names of their points in the index, and so have `Points` and the files that paths
        lead to (`read_points`): two of them are paired by name, in the order of the measured ones, and what has no
        partner is told in `notes` and `unpaired`. What a file says of standard deviations counts where no sigma is given.
        `Moments` stand in the place of both, and so does a `Job`, whose fit it is then: its pairs, parameters, norm, seeds
        and standard deviations, with the bits of ``corvinade-cli fit --job``.
    parameters: "level" (shifts, turn about z), "6" (rigid), "7" (one scale), "9" (a scale an axis), "12" (affine).
    names: of the pairs, n of them.
    sigma, nominal_sigma: a-priori standard deviations, mm: of all, of shape (3,) or of shape (n, 3). With the norms
        l2, l1 and loo.
    norm: "l2", "l1", "loo", "l1-exact", "minimax".
    hold: values of parameters that do not float: {"rotz": 0}; mm, rad, factors.
    use: of shape (n,) or (n, 3): False takes no part.
    seed: the three pairs, from 0, that start values come from.

    Other threads run meanwhile, and Ctrl-C ends it. TypeError for what is no array of numbers; ValueError
    (InvalidInput) for wrong shapes and lengths, NaN, no points, fewer observations than unknowns, other names.
    """
    if isinstance(measured, Job):
        given = [name for name, value in {"nominal": nominal, "names": names, "sigma": sigma, "hold": hold, "use": use,
                                          "nominal_sigma": nominal_sigma}.items() if value is not None]
        given += [name for name, is_other in (("parameters", parameters != "7"), ("norm", norm != "l2"),
                                              ("seed", tuple(seed) != (0, 1, 2))) if is_other]
        if given:
            raise ValueError(f"a job says itself how it is fitted: {', '.join(given)} does not go with it; "
                             "fit(*job.paired(), use=job.use, ...) takes its pairs alone")
        return _fit_of_job(measured, max_iterations)
    if isinstance(measured, Moments):
        others = {"nominal": nominal, "names": names, "sigma": sigma, "use": use, "nominal_sigma": nominal_sigma}
        given = [name for name, value in others.items() if value is not None]
        given += ["norm"] * (norm != "l2") + ["seed"] * (tuple(seed) != (0, 1, 2))
        if given:
            raise ValueError(f"Moments are sums over all pairs: {', '.join(given)} does not go with them")
        return measured.fit(parameters, hold, max_iterations=max_iterations)
    if isinstance(measured, (str, os.PathLike)):
        measured = read_points(measured)
    if isinstance(nominal, (str, os.PathLike)):
        nominal = read_points(nominal)
    notes = [note for side in (measured, nominal) if isinstance(side, Points) for note in side.notes]
    start, of_measured = points_of(measured, "measured")
    target, of_nominal = points_of(nominal, "nominal")
    unpaired: tuple[list[str], list[str]] = ([], [])
    own_sigma, own_nominal_sigma = (side.sigma if isinstance(side, Points) and told is None else None
                                    for side, told in ((measured, sigma), (nominal, nominal_sigma)))
    # Points of a job, say, that are pairs already.
    as_they_stand = isinstance(measured, Points) and isinstance(nominal, Points) and of_measured == of_nominal
    if of_measured is not None and of_nominal is not None and not as_they_stand:
        if names is not None or use is not None or np.ndim(sigma) == 2 or np.ndim(nominal_sigma) == 2:
            raise ValueError("two sets of named points are paired by their names: names, use and standard deviations a "
                             "point do not go with that; pair them first (match), and hand over arrays")
        here, there = paired(of_measured, of_nominal)
        kept, others = set(here), set(there)
        unpaired = ([name for i, name in enumerate(of_measured) if i not in kept],
                    [name for i, name in enumerate(of_nominal) if i not in others])
        start, target = start[here], target[there]
        own_sigma = None if own_sigma is None else own_sigma[here]
        own_nominal_sigma = None if own_nominal_sigma is None else own_nominal_sigma[there]
        pair_names: Optional[list[str]] = [of_measured[i] for i in here]
    elif names is not None:
        pair_names = [str(name) for name in names]
        if len(pair_names) != len(start):
            raise ValueError(f"names: as many as pairs were expected, {len(start)}, and {len(pair_names)} came")
    else:
        pair_names = of_measured if of_measured is not None else of_nominal
    count = len(start)
    sigma = sigma if own_sigma is None else own_sigma
    nominal_sigma = nominal_sigma if own_nominal_sigma is None else own_nominal_sigma
    fitted = _fit(start, target, parameters, dict(hold) if hold else {}, norm,
                  _NO_FLAGS if use is None else _flags(use, count),
                  _NO_DOUBLES if sigma is None else _sigmas(sigma, count, "sigma"),
                  _NO_DOUBLES if nominal_sigma is None else _sigmas(nominal_sigma, count, "nominal_sigma"),
                  seed, max_iterations)
    return Result(fitted, pair_names, norm, unpaired, notes)


def _fit_of_job(job: Job, max_iterations: int) -> Result:
    if job.refusal:
        raise InvalidInput(f"this job has a fit that the library has not: {job.refusal}")
    if job.pairs == 0:
        raise InvalidInput("this job has no pairs")
    start, target = job.paired()
    # One for all points stands in every row of the job's points.
    sigmas = [_NO_DOUBLES if side.sigma is None else side.sigma[0].copy() if (side.sigma == side.sigma[0]).all()
              else np.ascontiguousarray(pairs.sigma)
              for side, pairs in ((job.measured, start), (job.nominal, target))]
    states = dict(zip(PARAMETERS, job._states))
    fitted = _fit(start.coordinates, target.coordinates, states, job.hold, job.norm, _flags(job.use, job.pairs),
                  *sigmas, job.seed, max_iterations)
    return Result(fitted, start.names, job.norm, ([], []), job.notes)


def _flags(use: Any, count: int) -> np.ndarray:
    flags = np.asarray(use)
    if flags.dtype != np.bool_:
        raise TypeError(f"use: an array of bool was expected, and one of {flags.dtype} came")
    if flags.shape == (count,):
        flags = np.repeat(flags, 3).reshape(count, 3)
    if flags.shape != (count, 3):
        raise ValueError(f"use: an array of shape ({count},) or ({count}, 3) was expected, and one of shape "
                         f"{flags.shape} came")
    return np.ascontiguousarray(flags).view(np.uint8)


def _sigmas(sigma: Any, count: int, what: str) -> np.ndarray:
    sigmas = doubles(sigma, what)
    if sigmas.shape == ():
        sigmas = np.full(3, float(sigmas))
    if sigmas.shape not in ((3,), (count, 3)):
        raise ValueError(f"{what}: a number, or an array of shape (3,) or ({count}, 3) was expected, and one of shape "
                         f"{sigmas.shape} came")
    return sigmas
