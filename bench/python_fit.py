#!/usr/bin/python3
"""Measures fits from Python, beside a fit by numpy's SVD and scipy's least_squares on the same points.

    ninja -C build corvinade_python && PYTHONPATH=build/python bench/python_fit.py

Tells the median of many runs in microseconds, and how far the shifts of the three are apart, in mm.
"""

import statistics
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


def microseconds(work, runs):
    times = []
    for _ in range(runs):
        begin = time.perf_counter()
        work()
        times.append(1e6 * (time.perf_counter() - begin))
    return statistics.median(times)


print(f"{'points':>8} {'corvinade':>12} {'numpy svd':>12} {'scipy':>12}   mm apart")
random = np.random.default_rng(1)
for count, runs in ((14, 2000), (1000, 500), (100_000, 20)):
    measured = random.uniform(-2000, 2000, (count, 3))
    turn = Rotation.from_euler("xyz", [0.1, -0.2, 0.3]).as_matrix()
    nominal = 1.002 * measured @ turn.T + [1500, -300, 720] + random.normal(0, 0.05, (count, 3))
    roads = (lambda: corvinade.fit(measured, nominal, "7").translation, lambda: by_svd(measured, nominal),
             lambda: by_scipy(measured, nominal))
    shifts = [road() for road in roads]
    apart = [np.abs(shift - shifts[0]).max() for shift in shifts[1:]]
    times = [microseconds(road, max(3, runs // (20 if road is roads[2] else 1))) for road in roads]
    print(f"{count:8} " + " ".join(f"{t:12.1f}" for t in times) + f"   {apart[0]:.1e} {apart[1]:.1e}")
