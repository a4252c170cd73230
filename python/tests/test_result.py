"""What a result tells, in scipy's conventions and in JSON."""

import itertools
import json
import os
import subprocess
import warnings

import numpy as np
import pytest
from scipy.spatial.transform import Rotation as Scipy

import corvinade

CLI = os.environ["CORVINADE_CLI"]
POINTS = np.random.default_rng(5).uniform(-800, 800, (12, 3))


def turned(rotation, scale=1.0):
    return corvinade.fit(POINTS, scale * rotation.apply(POINTS) + [10, -20, 30], "6" if scale == 1 else "7")


SEQUENCES = ["".join(s) for s in itertools.product("xyz", repeat=3) if s[0] != s[1] and s[1] != s[2]]


@pytest.mark.parametrize("seq", SEQUENCES + [s.upper() for s in SEQUENCES])
def test_euler_angles_are_those_of_scipy(seq):
    for seed in range(10):
        other = Scipy.random(random_state=seed)
        mine = turned(other).rotation.as_euler(seq)
        assert np.allclose(mine, other.as_euler(seq), rtol=0, atol=1e-9)
        assert np.allclose(np.degrees(mine), turned(other).rotation.as_euler(seq, degrees=True))


@pytest.mark.parametrize("seq", SEQUENCES + [s.upper() for s in SEQUENCES])
@pytest.mark.parametrize("off", [0.0, 1e-14, 1e-8, 1e-5])
def test_euler_angles_make_the_same_rotation_at_and_near_gimbal_lock(seq, off):
    middle = (0 if seq[0].lower() == seq[2].lower() else np.pi / 2) + off
    matrix = np.eye(4)
    matrix[:3, :3] = Scipy.from_euler(seq, [0.3, middle, -1.2]).as_matrix()
    rotation = corvinade.Transformation(matrix).rotation
    with warnings.catch_warnings(record=True) as told:
        warnings.simplefilter("always")
        angles = rotation.as_euler(seq)
    assert np.allclose(Scipy.from_euler(seq, angles).as_matrix(), matrix[:3, :3], rtol=0, atol=1e-12)
    if told:
        assert "gimbal lock" in str(told[0].message) and angles[2] == 0
    if off == 0 and seq[0] != seq[2] or off >= 1e-8:
        assert bool(told) == (off == 0)


def test_a_sequence_that_is_none_is_refused():
    rotation = turned(Scipy.identity()).rotation
    for seq in ("xy", "xxy", "xYz", "abc", ""):
        with pytest.raises(ValueError, match="three axes"):
            rotation.as_euler(seq)


def test_quaternion_matrix_and_vector_are_those_of_scipy():
    for seed in range(20):
        other = Scipy.random(random_state=seed)
        mine = turned(other).rotation
        quaternion = other.as_quat()
        assert np.allclose(mine.as_quat(), quaternion * np.sign(quaternion[3]), rtol=0, atol=1e-11)
        assert np.allclose(mine.as_matrix(), other.as_matrix(), rtol=0, atol=1e-11)
        assert np.allclose(mine.as_rotvec(), other.as_rotvec(), rtol=0, atol=1e-10)
        assert np.allclose(mine.as_scipy().as_matrix(), other.as_matrix(), rtol=0, atol=1e-11)


def test_scale_is_a_number_where_it_is_one():
    rotation = Scipy.from_rotvec([0.1, 0.2, 0.3])
    assert turned(rotation).scale == 1
    assert turned(rotation, 1.5).scale == pytest.approx(1.5, abs=1e-12)
    stretched = corvinade.fit(POINTS, POINTS * [1, 2, 3], "9")
    assert np.allclose(stretched.scale, [1, 2, 3]) and stretched.scale.shape == (3,)


def test_the_way_back_comes_back():
    result = turned(Scipy.from_rotvec([1, -2, 0.5]), 1.2)
    assert np.allclose(result.inverse().transform(result.transform(POINTS)), POINTS, rtol=0, atol=1e-10)
    assert np.allclose((result.inverse() @ result).matrix, np.eye(4), rtol=0, atol=1e-12)
    assert np.allclose(result.inverse().matrix, np.linalg.inv(result.matrix), rtol=0, atol=1e-10)
    homogeneous = np.hstack([POINTS, np.ones((12, 1))]) @ result.matrix.T
    assert np.allclose(result.transform(POINTS), homogeneous[:, :3], rtol=0, atol=1e-10)
    flat = np.diag([1.0, 1, 0, 1])
    with pytest.raises(ValueError, match="no inverse"):
        corvinade.Transformation(flat).inverse()
    with pytest.raises(ValueError, match="last row"):
        corvinade.Transformation(2 * np.eye(4))
    with pytest.raises(ValueError, match=r"shape \(3, 4\)"):
        corvinade.Transformation(np.eye(4)[:3])
    with pytest.raises(ValueError, match=r"shape \(3, 12\)"):
        result.transform(POINTS.T)


def test_json_holds_the_result_and_the_command_line_takes_it(tmp_path):
    result = turned(Scipy.from_rotvec([1, -2, 0.5]), 1.2)
    told = json.loads(result.to_json())
    assert np.array_equal(told["transformation"]["matrix"], result.matrix)
    assert told["quality"]["s0_mm"] == result.statistics.s0
    assert [row["residual_mm"] for row in told["points"]] == result.residuals.tolist()
    (tmp_path / "result.json").write_text(result.to_json())
    (tmp_path / "points.txt").write_text("P1 100 200 300\n")
    said = subprocess.run([CLI, "transform", "points.txt", "--with", "result.json", "--out", "moved.txt"],
                          cwd=tmp_path, capture_output=True, text=True)
    assert said.returncode == 0, said.stderr
    moved = [float(n) for n in (tmp_path / "moved.txt").read_text().split()[-3:]]
    assert np.allclose(moved, result.transform([[100, 200, 300]])[0], rtol=0, atol=1e-3)


def test_json_has_null_for_what_the_points_leave_open():
    line = np.zeros((6, 3))
    line[:, 0] = 100 * np.arange(6)
    result = corvinade.fit(line, line + [1, 2, 3], "6")
    assert "open-parameters" in [note.code for note in result.notes]
    assert np.isnan(result.parameters["rotx"].sigma)
    rows = {row["name"]: row for row in json.loads(result.to_json())["parameters"]}
    assert rows["rotx"]["sigma"] is None
    assert "&ndash;" in result._repr_html_()


def test_tables_of_notebooks_tell_what_there_is():
    text = turned(Scipy.identity())._repr_html_()
    assert "<td>trax</td><td>10</td>" in text and "scalex" not in text and "12 pairs" in text
    measured = __import__("pandas").DataFrame(POINTS, index=[f"<b>{i}" for i in range(12)], columns=list("xyz"))
    nominal = measured.iloc[:10]
    assert "&lt;b&gt;10" in corvinade.fit(measured, nominal)._repr_html_()


def test_a_result_that_did_not_converge_says_so_and_is_not_taken(tmp_path):
    noisy = POINTS + np.random.default_rng(1).normal(0, 50, POINTS.shape)
    result = corvinade.fit(POINTS, Scipy.from_rotvec([2, 1, 0]).apply(noisy), "12", norm="l1", max_iterations=1)
    assert not result.converged and "NOT CONVERGED" in repr(result)
    assert "not-converged" in [note.code for note in result.notes]
    assert "not converged" in result._repr_html_()
    (tmp_path / "result.json").write_text(result.to_json())
    (tmp_path / "points.txt").write_text("P1 100 200 300\n")
    said = subprocess.run([CLI, "transform", "points.txt", "--with", "result.json", "--out", "moved.txt"],
                          cwd=tmp_path, capture_output=True, text=True)
    assert said.returncode == 4 and "did not converge" in said.stderr
    assert not (tmp_path / "moved.txt").exists()


def test_exports_are_those_of_the_command_line(tmp_path):
    measured = POINTS
    nominal = Scipy.from_rotvec([1, -2, 0.5]).apply(POINTS) + [10, -20, 30]
    for file, rows in (("start", measured), ("target", nominal)):
        lines = [f"P{i:02};{x!r};{y!r};{z!r}" for i, (x, y, z) in enumerate(rows.tolist())]
        (tmp_path / file).write_text("name;x;y;z\n" + "\n".join(lines) + "\n")
    result = corvinade.fit(measured, nominal, "6")
    assert len(corvinade.EXPORT_FORMS) == 13
    for form in corvinade.EXPORT_FORMS:
        said = subprocess.run([CLI, "fit", "start", "target", "--export", f"{form}=-", "--quiet"], cwd=tmp_path,
                              capture_output=True, text=True)
        assert said.returncode == 0 and result.export(form, "start") == said.stdout, form


def test_exports_hold_the_transformation():
    rotation = Scipy.from_rotvec([1, -2, 0.5])
    result = turned(rotation)
    numbers = [float(n) for n in result.export("quaternion").split()]
    assert np.allclose(numbers[:3], [10, -20, 30], rtol=0, atol=1e-9)
    assert np.allclose(Scipy.from_quat(numbers[3:]).as_matrix(), rotation.as_matrix(), rtol=0, atol=1e-11)
    words = result.export("ros").split()
    assert float(words[words.index("--x") + 1]) == pytest.approx(0.01, abs=1e-12)
    way_back = [float(n) for n in result.inverse().export("matrix").split()]
    assert np.allclose(np.reshape(way_back, (4, 4)), np.linalg.inv(result.matrix), rtol=0, atol=1e-9)
    with pytest.raises(ValueError, match="scales x, y, z by 1.5"):
        turned(rotation, 1.5).export("ros")
    with pytest.raises(ValueError, match="kuka-base"):
        result.export("lisp")


def test_texts_of_export_come_back():
    measured = np.random.default_rng(4).uniform(-500, 500, (6, 3))
    result = corvinade.fit(measured, measured[:, [1, 2, 0]] + [10, 20, 30], "6")
    for form in corvinade.EXPORT_FORMS:
        back = corvinade.Transformation.from_text(result.export(form), form)
        assert np.allclose(back.matrix, result.matrix, rtol=0, atol=1e-12), form
    with pytest.raises(ValueError, match="line 1"):
        corvinade.Transformation.from_text("$BASE={X 1}", "kuka-base")
    with pytest.raises(ValueError, match="a form is one of"):
        corvinade.Transformation.from_text("1", "picture")
