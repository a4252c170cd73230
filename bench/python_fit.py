#!/usr/bin/python3
"""Measures fits from Python, beside the library called from C, a fit by numpy's SVD and scipy's least_squares.

    ninja -C build corvinade_python corvinade-library && PYTHONPATH=build/python bench/python_fit.py

Tells the median of many runs in microseconds, those of the roads in turn, and how far the shifts of the three in Python are
apart, in mm. "over C" is what Python adds, "of C" its share of the whole.
"""

import ctypes
import pathlib
import statistics
import subprocess
import tempfile
import time

import numpy as np
from scipy.optimize import least_squares
from scipy.spatial.transform import Rotation

import corvinade


def by_svd(measured, nominal):
    a, b = measured.mean(0), nominal.mean(0)
    u, d, vt = np.linalg.svd((nominal - b).T @ (measured - a))
    sign = np.array([1, 1, np.sign(np.linalg.det(u @ vt))])
    turn = (u * sign) @ vt
    scale = (d * sign).sum() / ((measured - a) ** 2).sum()
    return b - scale * turn @ a


def by_scipy(measured, nominal):
    def rest(p):
        return (p[6] * measured @ Rotation.from_rotvec(p[3:6]).as_matrix().T + p[:3] - nominal).ravel()

    return least_squares(rest, np.r_[nominal.mean(0) - measured.mean(0), 0.1, 0.1, 0.1, 1], x_scale="jac").x[:3]


def by_library():
    """The library's own fit: a procedure that gives microseconds of some runs."""
    top = pathlib.Path(__file__).resolve().parents[1]
    folder = top / "build" / "packaging" / "library"
    with tempfile.TemporaryDirectory() as made:
        subprocess.run(["cc", "-O2", "-shared", "-fPIC", f"-I{top / 'include'}", top / "bench" / "library_fit.c", "-o",
                        f"{made}/fit.so", f"-L{folder}", "-lcorvinade", f"-Wl,-rpath,{folder}"], check=True)
        library = ctypes.CDLL(f"{made}/fit.so")
    numbers = np.ctypeslib.ndpointer(np.float64, flags="C")
    library.fit_times.argtypes = [numbers, numbers, ctypes.c_size_t, ctypes.c_int, numbers]

    def times(measured, nominal, runs):
        told = np.empty(runs)
        if library.fit_times(measured, nominal, len(measured), runs, told) != 0:
            raise RuntimeError("the library's fit has failed")
        return told.tolist()

    return times


def microseconds(work, runs):
    times = []
    for _ in range(runs):
        begin = time.perf_counter()
        work()
        times.append(1e6 * (time.perf_counter() - begin))
    return times


library = by_library()
print(f"{'points':>8} {'C':>10} {'corvinade':>10} {'over C':>8} {'of C':>6} {'numpy svd':>10} {'scipy':>10}   mm apart")
random = np.random.default_rng(1)
for count, runs in ((14, 2000), (1000, 500), (100_000, 20)):
    measured = random.uniform(-2000, 2000, (count, 3))
    turn = Rotation.from_euler("xyz", [0.1, -0.2, 0.3]).as_matrix()
    nominal = 1.002 * measured @ turn.T + [1500, -300, 720] + random.normal(0, 0.05, (count, 3))
    roads = (lambda: corvinade.fit(measured, nominal, "7").translation, lambda: by_svd(measured, nominal),
             lambda: by_scipy(measured, nominal))
    shifts = [road() for road in roads]
    apart = [np.abs(shift - shifts[0]).max() for shift in shifts[1:]]
    # In turn, so that what else the machine does falls on all of them.
    times = [[], [], [], []]
    for _ in range(10):
        times[0] += library(measured, nominal, runs // 10)
        for road, told in zip(roads, times[1:]):
            told += microseconds(road, max(1, runs // (200 if road is roads[2] else 10)))
    c, ours, svd, scipy = map(statistics.median, times)
    print(f"{count:8} {c:10.1f} {ours:10.1f} {ours - c:8.1f} {ours / c:6.2f} {svd:10.1f} {scipy:10.1f}   "
          f"{apart[0]:.1e} {apart[1]:.1e}")
