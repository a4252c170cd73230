"""Fits held against a closed form, scipy's optimiser, and the command line."""

import json
import os
import signal
import subprocess
import threading
import time
import tracemalloc

import numpy as np
import pytest
from scipy.optimize import least_squares
from scipy.spatial.transform import Rotation as Scipy

import corvinade

CLI = os.environ["CORVINADE_CLI"]


def cell(count=14, noise=0.05, seed=1, scale=1.002):
    random = np.random.default_rng(seed)
    measured = random.uniform(-2000, 2000, (count, 3))
    turn = Scipy.from_euler("xyz", [0.3, -0.7, 2.1]).as_matrix()
    nominal = scale * measured @ turn.T + [1500, -300, 720] + noise * random.standard_normal((count, 3))
    return measured, nominal


def umeyama(measured, nominal, scaled):
    """Least squares in closed form: S. Umeyama, IEEE Trans. Pattern Analysis 13 (1991) 376."""
    a, b = measured - measured.mean(0), nominal - nominal.mean(0)
    u, d, vt = np.linalg.svd(b.T @ a)
    sign = np.array([1, 1, np.sign(np.linalg.det(u @ vt))])
    turn = u @ np.diag(sign) @ vt
    scale = (d * sign).sum() / (a**2).sum() if scaled else 1.0
    return scale * turn, nominal.mean(0) - scale * turn @ measured.mean(0)


@pytest.mark.parametrize("parameters, scaled", [("6", False), ("7", True)])
def test_finds_the_closed_form(parameters, scaled):
    measured, nominal = cell()
    linear, shift = umeyama(measured, nominal, scaled)
    result = corvinade.fit(measured, nominal, parameters)
    assert np.allclose(result.matrix[:3, :3], linear, rtol=0, atol=1e-11)
    assert np.allclose(result.translation, shift, rtol=0, atol=1e-8)
    rest = measured @ linear.T + shift - nominal
    assert np.allclose(result.residuals, rest, rtol=0, atol=1e-8)
    assert result.statistics.s0 == pytest.approx(np.sqrt((rest**2).sum() / (rest.size - 1)), rel=1e-9)
    assert result.converged and result.statistics.unknowns == int(parameters)


def test_finds_the_affine_solution_and_its_sigmas():
    measured, nominal = cell(30)
    design = np.hstack([measured, np.ones((30, 1))])
    solution, _, _, _ = np.linalg.lstsq(design, nominal, rcond=None)
    result = corvinade.fit(measured, nominal, "12")
    assert np.allclose(result.matrix[:3].T, solution, rtol=0, atol=1e-8)
    # The shift is linear in this model: its cofactors are those of one axis.
    cofactor = np.linalg.inv(design.T @ design)[3, 3]
    for name in ("trax", "tray", "traz"):
        assert result.parameters[name].sigma == pytest.approx(result.statistics.s0 * np.sqrt(cofactor), rel=1e-6)


def test_finds_what_scipy_finds_with_weights_and_a_scale_an_axis():
    measured, nominal = cell(20, noise=0.5)
    sigma = np.array([0.1, 0.4, 0.2])

    def rest(p):
        moved = (measured * p[6:]) @ Scipy.from_rotvec(p[3:6]).as_matrix().T + p[:3]
        return ((moved - nominal) / sigma).ravel()

    start = np.hstack([[1500, -300, 720], Scipy.from_euler("xyz", [0.3, -0.7, 2.1]).as_rotvec(), [1, 1, 1]])
    other = least_squares(rest, start, x_scale=[1, 1, 1, 1e-3, 1e-3, 1e-3, 1e-3, 1e-3, 1e-3], xtol=1e-15,
                          ftol=1e-15, gtol=1e-15).x
    result = corvinade.fit(measured, nominal, "9", nominal_sigma=sigma)
    assert np.allclose(result.translation, other[:3], rtol=0, atol=1e-5)
    assert np.allclose(result.rotation.as_rotvec(), other[3:6], rtol=0, atol=1e-8)
    assert np.allclose(result.scale, other[6:], rtol=0, atol=1e-8)


def test_minimax_is_no_worse_than_any_movement_nearby():
    measured, nominal = cell(10, noise=1)
    result = corvinade.fit(measured, nominal, "6", norm="minimax")
    least = np.abs(result.residuals).max()
    assert least < np.abs(corvinade.fit(measured, nominal, "6").residuals).max()
    random = np.random.default_rng(3)
    for size in (1e-3, 1e-5):
        for _ in range(200):
            turn = Scipy.from_rotvec(size * random.standard_normal(3) / 1000)
            moved = turn.apply(result.transform(measured)) + size * random.standard_normal(3)
            assert np.abs(moved - nominal).max() > least - 1e-9


def by_command_line(tmp_path, measured, nominal, *options):
    names = [f"P{i:03}" for i in range(len(measured))]
    for file, rows in (("start", measured), ("target", nominal)):
        lines = [f"{name};{x!r};{y!r};{z!r}" for name, (x, y, z) in zip(names, rows.tolist())]
        (tmp_path / file).write_text("name;x;y;z\n" + "\n".join(lines) + "\n")
    said = subprocess.run([CLI, "fit", tmp_path / "start", tmp_path / "target", "--json", *options],
                          check=True, capture_output=True)
    return json.loads(said.stdout)


@pytest.mark.parametrize("parameters", ["level", "6", "7", "9", "12"])
@pytest.mark.parametrize("norm", ["l2", "l1", "loo", "l1-exact", "minimax"])
def test_has_the_bits_of_the_command_line(tmp_path, parameters, norm):
    measured, nominal = cell()
    result = corvinade.fit(measured, nominal, parameters, norm=norm)
    other = by_command_line(tmp_path, measured, nominal, "--parameters", parameters, "--norm", norm)
    for row in other["parameters"]:
        mine = result.parameters[row["name"]]
        assert mine.value == row["value"]
        if mine.state == "floats" and row["sigma"] is not None and not np.isnan(mine.sigma):
            assert mine.sigma == row["sigma"]
    assert result.matrix.tolist() == other["transformation"]["matrix"]
    assert result.statistics.s0 == other["quality"]["s0_mm"]
    assert [row["residual_mm"] for row in other["points"]] == result.residuals.tolist()
    assert result.statistics.iterations == other["iterations"]


def test_holds_what_is_held_and_leaves_out_what_takes_no_part(tmp_path):
    measured, nominal = cell(20)
    use = np.ones((20, 3), bool)
    use[3] = False
    use[5, 2] = False
    result = corvinade.fit(measured, nominal, "7", hold={"trax": 1500, "rotx": 0.25}, use=use)
    other = by_command_line(tmp_path, measured, nominal, "--parameters", "7", "--hold", "trax=1500", "--hold",
                            f"rotx={np.degrees(0.25)!r}", "--leave-out", "P003", "--leave-out", "P005:z")
    assert result.parameters["trax"] == (1500, 0, "held", "mm")
    assert result.parameters["rotx"].value == 0.25
    assert result.statistics.observations == 56 == other["counts"]["observations"]
    assert result.translation == pytest.approx(other["transformation"]["translation_mm"], abs=1e-6)


def test_reads_arrays_however_they_lie():
    measured, nominal = cell(50)
    expected = corvinade.fit(measured, nominal).matrix
    wide = np.zeros((50, 7))
    wide[:, 1:7:2] = measured
    unaligned = np.frombuffer(b"x" + nominal.tobytes(), dtype=np.float64, count=150, offset=1).reshape(50, 3)
    read_only = measured.copy()
    read_only.flags.writeable = False
    for other in (np.asfortranarray(measured), wide[:, 1:7:2], measured[::-1][::-1], measured.tolist(), read_only,
                  measured.astype(">f8")):
        assert np.array_equal(corvinade.fit(other, nominal).matrix, expected)
    assert np.array_equal(corvinade.fit(measured, unaligned).matrix, expected)
    whole = np.round(measured).astype(np.int32)
    assert np.array_equal(corvinade.fit(whole, nominal).matrix, corvinade.fit(np.round(measured), nominal).matrix)


def test_copies_no_array_of_doubles():
    measured, nominal = cell(200_000)
    tracemalloc.start()
    try:
        result = corvinade.fit(measured, nominal)
        result.residuals.sum()
        assert tracemalloc.get_traced_memory()[1] < measured.nbytes / 10
    finally:
        tracemalloc.stop()
    with pytest.raises(ValueError):
        result.residuals[0, 0] = 1


def test_other_threads_run_while_a_fit_does():
    measured, nominal = cell(300_000, noise=1)
    turns, running = [0], True

    def count():
        while running:
            turns[0] += 1
            time.sleep(0)

    thread = threading.Thread(target=count)
    thread.start()
    try:
        seen = []
        for _ in range(3):
            before = turns[0]
            corvinade.fit(measured, nominal, norm="l1")
            seen.append(turns[0] - before)
    finally:
        running = False
        thread.join()
    assert min(seen) > 100


def test_ctrl_c_ends_a_fit():
    measured, nominal = cell(400_000, noise=1)
    before = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        with pytest.raises(KeyboardInterrupt):
            signal.setitimer(signal.ITIMER_REAL, 0.05)
            while True:
                corvinade.fit(measured, nominal, norm="l1")
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    assert corvinade.fit(measured[:20], nominal[:20]).converged


def test_keeps_what_it_shows_alive():
    measured, nominal = cell()
    residuals = corvinade.fit(measured, nominal).residuals
    again = corvinade.fit(measured, nominal)
    for seed in range(50):
        corvinade.fit(*cell(seed=seed))
    assert np.array_equal(residuals, again.residuals)


def test_many_fits_leave_no_memory_behind():
    measured, nominal = cell()

    def resident():
        with open("/proc/self/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def fits(count):
        for _ in range(count):
            result = corvinade.fit(measured, nominal)
            result.residuals, result.notes, result.rotation.as_quat()
            with pytest.raises(ValueError):
                corvinade.fit(measured, nominal[:3])

    fits(500)
    before = resident()
    fits(10_000)
    # A result lost each time would be ten times this.
    assert resident() - before < 1_000_000
