"""Files of points and jobs, and pairs of points, against the command line and against what stands in them."""

import json
import os
import pathlib
import signal
import subprocess
import threading

import numpy as np
import pandas
import pytest

import corvinade

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"
MEASURED, NOMINAL = EXAMPLES / "robot_cell_measured.txt", EXAMPLES / "robot_cell_nominal.txt"


def told_by_command(*arguments):
    told = subprocess.run([os.environ["CORVINADE_CLI"], *map(str, arguments), "--json"], check=True, capture_output=True)
    return json.loads(told.stdout)


def test_a_file_has_the_points_that_stand_in_it(tmp_path):
    path = tmp_path / "points.csv"
    path.write_text("Point;Y [m];X [m];Z [m]\nA;2,5;1,5;-0,25\n\"B 2\";0;1;2\n", encoding="utf-8")
    points = corvinade.read_points(path)
    assert points.names == ["A", "B 2"] and points.unit == "m" and points.format == "table"
    assert np.array_equal(points.coordinates, [[1500, 2500, -250], [1000, 0, 2000]])
    assert np.array_equal(np.asarray(points), points.coordinates) and len(points) == 2
    assert np.array_equal(points["B 2"], [1000, 0, 2000]) and points.sigma is None
    assert points.drop("A").names == ["B 2"]
    assert list(points.to_frame().index) == ["A", "B 2"]
    with pytest.raises(KeyError, match="C"):
        points.drop("C")


def test_what_the_caller_says_of_a_file_goes_before_what_is_found(tmp_path):
    path = tmp_path / "points.txt"
    path.write_bytes("first\n\xfc 1 2 3 9 9\n% off\nb 4 5 6 9 9\n".encode("cp1252"))
    points = corvinade.read_points(path, columns="name,z,y,x", unit="cm", skip=1, comment="%", delimiter="space",
                                   decimal=".", encoding="windows-1252")
    assert points.names == ["ü", "b"]
    assert np.array_equal(points.coordinates, [[30, 20, 10], [60, 50, 40]])


def test_standard_deviations_of_a_file_count_in_its_fit(tmp_path):
    random = np.random.default_rng(4)
    nominal = random.uniform(-1000, 1000, (9, 3))
    measured = nominal + random.normal(0, 0.1, (9, 3))
    sigma = random.uniform(0.05, 0.3, (9, 3))
    rows = [f"P{i} {' '.join(map(repr, [*m, *s]))}" for i, (m, s) in enumerate(zip(measured.tolist(), sigma.tolist()))]
    path = tmp_path / "measured.txt"
    path.write_text("name x y z sx sy sz\n" + "\n".join(rows) + "\n")
    points = corvinade.read_points(path)
    assert np.array_equal(points.sigma, sigma)
    by_file, by_hand = corvinade.fit(points, nominal), corvinade.fit(measured, nominal, sigma=sigma)
    assert np.array_equal(by_file.matrix, by_hand.matrix)
    assert not np.array_equal(by_file.matrix, corvinade.fit(measured, nominal).matrix)
    assert np.array_equal(corvinade.fit(points, nominal, sigma=0.1).matrix,
                          corvinade.fit(measured, nominal, sigma=0.1).matrix)


@pytest.mark.parametrize("parameters", ["6", "7", "12"])
def test_a_fit_of_paths_is_that_of_the_command(parameters):
    result = corvinade.fit(MEASURED, str(NOMINAL), parameters)
    told = told_by_command("fit", MEASURED, NOMINAL, "--parameters", parameters)
    values = [row["value"] for row in told["parameters"]][:13]
    assert np.allclose([p.value for p in result.parameters.values()], values, rtol=0, atol=1e-9)
    assert len(result.residuals) == told["counts"]["pairs"]
    assert any(note.code == "unpaired" for note in result.notes)


def test_clouds_are_read_with_the_program_s_readers(tmp_path):
    path = tmp_path / "cloud.ply"
    path.write_text("ply\nformat ascii 1.0\nelement vertex 2\nproperty double x\nproperty double y\nproperty double z\n"
                    "end_header\n1 2 3\n4 5 6.5\n")
    points = corvinade.read_points(path)
    assert points.format == "ply" and points.names == ["1", "2"]
    assert np.array_equal(points.coordinates, [[1, 2, 3], [4, 5, 6.5]])
    with pytest.raises(corvinade.InvalidInput, match="skip and comment are of tables alone"):
        corvinade.read_points(path, skip=1)
    path.write_text(path.read_text()[:-5])
    with pytest.raises(corvinade.InvalidInput, match="cloud.ply"):
        corvinade.read_points(path)


@pytest.mark.parametrize("text, told", [
    ("A 1 2 3\nB 4 x 6\n", "line 2, column 3"), ("", "bad.txt"), ("only words\nand more\n", "bad.txt"),
    ("A 1 2 3\nB 4 5\n", "line 2"), ("\0\1\2\3" * 40, "bad.txt")])
def test_what_is_no_table_is_refused_with_its_line(tmp_path, text, told):
    path = tmp_path / "bad.txt"
    path.write_text(text)
    with pytest.raises(corvinade.InvalidInput, match=told):
        corvinade.read_points(path)
    with pytest.raises(corvinade.InvalidInput, match=told):
        corvinade.fit(path, NOMINAL)


def test_bad_rows_are_passed_over_where_that_is_wanted_and_told(tmp_path):
    path = tmp_path / "bad.txt"
    path.write_text("A 1 2 3\nB 4 x 6\nC 7 8 9\n")
    points = corvinade.read_points(path, skip_bad=True)
    assert points.names == ["A", "C"]
    assert [note.code for note in points.notes] == ["lines-skipped"]


def test_what_is_not_there_is_the_system_s_own_error(tmp_path):
    with pytest.raises(FileNotFoundError):
        corvinade.read_points(tmp_path / "none.txt")
    with pytest.raises(IsADirectoryError):
        corvinade.read_points(tmp_path)
    with pytest.raises(FileNotFoundError):
        corvinade.fit("none.txt", NOMINAL)
    with pytest.raises(FileNotFoundError):
        corvinade.read_job(tmp_path / "none.cvn")


@pytest.mark.parametrize("wish, told", [
    ({"unit": "parsec"}, "parsec"), ({"encoding": "utf-9"}, "utf-9"), ({"columns": "name,x,y"}, "columns: "),
    ({"delimiter": "tabs"}, "'tabs' came"), ({"decimal": "x"}, "'x' came")])
def test_wishes_that_mean_nothing_are_refused(wish, told):
    with pytest.raises(ValueError, match=told):
        corvinade.read_points(MEASURED, **wish)


def test_a_job_holds_points_and_result_as_info_tells_them():
    job = corvinade.read_job(EXAMPLES / "robot_cell.cvn")
    told = told_by_command("info", EXAMPLES / "robot_cell.cvn")
    assert (len(job.measured), len(job.nominal), job.pairs) == tuple(
        told["counts"][name] for name in ("start", "target", "identical"))
    assert int(job.use.sum()) == told["counts"]["coordinatesInUse"]
    assert job.direction == told["direction"] and job.length_unit == told["units"]["length"]
    here, there = job.paired()
    assert here.names == there.names and len(here) == job.pairs
    result = corvinade.fit(here, there, "6", use=job.use)
    assert np.allclose(result.matrix, job.transformation.matrix, rtol=0, atol=1e-8)
    assert job.converged and job.parameters["trax"] == "float"


@pytest.mark.parametrize("options", [
    "", "--parameters 9 --norm l1 --leave-out F09", "--norm loo", "--start-sigma 0.02,0.02,0.05 --target-sigma 0.01",
    "--hold traz=0.1 --length-unit m"])
def test_a_fit_of_a_job_is_that_of_the_command(tmp_path, options):
    path = tmp_path / "cell.cvn"
    subprocess.run([os.environ["CORVINADE_CLI"], "fit", MEASURED, NOMINAL, *options.split(), "--save", path],
                   capture_output=True)
    told = told_by_command("fit", "--job", path)
    result = corvinade.fit(corvinade.read_job(path))
    assert result.matrix.tolist() == told["transformation"]["matrix"]
    assert result.statistics.s0 == told["quality"]["s0_mm"]
    assert result.names == [point["name"] for point in told["points"] if point["residual_mm"] is not None]


def test_a_job_says_itself_how_it_is_fitted_and_what_is_not_fitted_here(tmp_path):
    job = corvinade.read_job(EXAMPLES / "robot_cell.cvn")
    with pytest.raises(ValueError, match="parameters, norm does not go with it"):
        corvinade.fit(job, parameters="6", norm="l1")
    path = tmp_path / "cell.cvn"
    subprocess.run([os.environ["CORVINADE_CLI"], "fit", MEASURED, NOMINAL, "--r-dist", "--save", path], capture_output=True)
    with pytest.raises(corvinade.InvalidInput, match="fitted to distances"):
        corvinade.fit(corvinade.read_job(path))


def test_a_program_has_its_poses_and_goes_elsewhere(tmp_path):
    from scipy.spatial.transform import Rotation

    program = corvinade.read_program(EXAMPLES / "robot_tool.dat", "kuka")
    assert len(program) == 10 and program.names[1] == "XTIP2" and program.notes == []
    assert np.allclose(program.positions[1], [1394.6, 112.35, 842.15], rtol=0, atol=1e-9)
    turn = Rotation.from_euler("ZYX", [4.725, 52.08, -164.915], degrees=True)
    assert np.allclose(program.frames[1][:3, :3], turn.as_matrix(), rtol=0, atol=1e-12)
    move = np.eye(4)
    move[:3, :3] = Rotation.from_euler("xyz", [10, -20, 30], degrees=True).as_matrix()
    move[:3, 3] = [1, 2, 3]
    assert program.transform(corvinade.Transformation(move), tmp_path / "moved.dat") == []
    moved = corvinade.read_program(tmp_path / "moved.dat", "kuka")
    assert np.allclose(moved.frames, move @ program.frames, rtol=0, atol=1e-6)
    with pytest.raises(corvinade.InvalidInput, match="turns and shifts alone"):
        program.transform(np.diag([2, 2, 2, 1.0]), tmp_path / "moved.dat")
    with pytest.raises(ValueError, match=r"shape \(3,\) came"):
        program.transform([1, 2, 3], tmp_path / "moved.dat")
    with pytest.raises(corvinade.InvalidInput, match="'karel'|\"karel\" came"):
        corvinade.read_program(EXAMPLES / "robot_tool.dat", "karel")
    with pytest.raises(FileNotFoundError):
        corvinade.read_program(tmp_path / "none.dat", "kuka")


def test_standard_deviations_of_a_job_come_with_its_points(tmp_path):
    path = tmp_path / "cell.cvn"
    told_by_command("fit", MEASURED, NOMINAL, "--start-sigma", "0.1,0.2,0.3", "--save", path)
    job = corvinade.read_job(path)
    assert np.allclose(job.measured.sigma, np.tile([0.1, 0.2, 0.3], (len(job.measured), 1)), rtol=1e-15)
    assert job.nominal.sigma is None
    result = corvinade.fit(*job.paired(), "6")
    assert np.allclose(result.matrix, job.transformation.matrix, rtol=0, atol=1e-8)
    assert not np.allclose(corvinade.fit(*job.paired(), "6", sigma=1).matrix, job.transformation.matrix, rtol=0, atol=1e-6)


def test_a_damaged_job_is_refused(tmp_path):
    whole = (EXAMPLES / "robot_cell.cvn").read_bytes()
    path = tmp_path / "cut.cvn"
    for size in (0, 10, 200, len(whole) // 2):
        path.write_bytes(whole[:size])
        with pytest.raises(corvinade.InvalidInput, match="cut.cvn"):
            corvinade.read_job(path)
    path.write_text("A 1 2 3\n")
    with pytest.raises(corvinade.InvalidInput, match="cut.cvn"):
        corvinade.read_job(path)


def test_distances_say_which_points_are_the_same_as_the_command_finds_them(tmp_path):
    measured, nominal = corvinade.read_points(MEASURED), corvinade.read_points(NOMINAL)
    for tolerance in (0.05, 0.3, 1):
        found = corvinade.match(measured, nominal, by="distances", tolerance=tolerance)
        names = [measured.names[i] for i in found.here]
        assert names == [nominal.names[i] for i in found.there]
        told = told_by_command("fit", MEASURED, NOMINAL, "--match", "distance", "--tolerance", str(tolerance))
        assert {point["name"] for point in told["points"]} == {f"MCS_{name}=OCS_{name}" for name in names}
    # Of the fourteen that both files hold one has been moved by 3 mm.
    both = corvinade.match(measured, nominal)
    assert len(both.here) == 14
    assert len(corvinade.match(measured, nominal, by="distances", tolerance=0.3).here) == 13
    with pytest.raises(ValueError, match="no three distances"):
        corvinade.match(measured.coordinates, np.eye(3), by="distances", tolerance=0.1)
    with pytest.raises(ValueError, match="'angles' came"):
        corvinade.match(measured, nominal, by="angles")


def test_names_say_which_points_are_the_same():
    measured = pandas.DataFrame(np.eye(3), columns=list("xyz"), index=["a", "b", "c"])
    nominal = corvinade.Points(["c", "d", "a"], np.eye(3))
    found = corvinade.match(measured, nominal)
    assert found.here.tolist() == [0, 2] and found.there.tolist() == [2, 0]
    assert found.unpaired == (["b"], ["d"])
    with pytest.raises(ValueError, match="points with names were expected"):
        corvinade.match(np.eye(3), nominal)
    with pytest.raises(ValueError, match="'distance' came"):
        corvinade.match(measured, nominal, by="distance")


def test_coordinates_say_which_points_are_the_same():
    random = np.random.default_rng(8)
    measured = random.uniform(0, 1000, (200, 3))
    order = random.permutation(200)
    nominal = measured[order] + random.uniform(-0.01, 0.01, (200, 3))
    nominal[:20] += 500000
    found = corvinade.match(measured, nominal, by="coordinates", tolerance=0.1)
    assert np.array_equal(order[found.there], found.here)
    assert found.unpaired[1] == list(range(20)) and found.unpaired[0] == sorted(order[:20].tolist())
    with pytest.raises(ValueError, match="nearer to each other than 0.001 mm"):
        corvinade.match(measured, measured + 7, by="coordinates", tolerance=0.001)
    for tolerance in (0, -1, float("nan")):
        with pytest.raises(ValueError, match="above 0 mm"):
            corvinade.match(measured, nominal, by="coordinates", tolerance=tolerance)


def test_threads_read_at_once():
    expected = corvinade.read_points(MEASURED)
    wrong = []

    def work():
        for _ in range(50):
            points = corvinade.read_points(MEASURED)
            if points.names != expected.names or not np.array_equal(points.coordinates, expected.coordinates):
                wrong.append(points)

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_moved_points_keep_their_names():
    points = corvinade.read_points(MEASURED)
    result = corvinade.fit(points, NOMINAL, "6")
    moved = result.transform(points)
    assert moved.names == points.names
    assert np.array_equal(moved.coordinates, result.transform(points.coordinates))
    of_path = result.transform(MEASURED)
    assert of_path.names == points.names and np.array_equal(of_path.coordinates, moved.coordinates)


def test_sums_take_no_files_and_no_points_with_standard_deviations():
    points = corvinade.Points(["a", "b"], np.eye(2, 3), np.ones((2, 3)))
    with pytest.raises(ValueError, match="have standard deviations"):
        corvinade.Moments().add(points, np.eye(2, 3))
    with pytest.raises(TypeError, match="read_points reads it"):
        corvinade.Moments().add(MEASURED, NOMINAL)


@pytest.mark.parametrize("name", ["points.txt", "cloud.ply"])
def test_an_interrupt_ends_the_reading(tmp_path, name):
    path, count = tmp_path / name, 300_000
    head = ("ply\nformat ascii 1.0\nelement vertex %d\nproperty double x\nproperty double y\nproperty double z\nend_header\n"
            % count) if name.endswith("ply") else "x y z\n"
    path.write_text(head + "".join(f"{i}.5 2.25 {i}\n" for i in range(count)))
    before = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        with pytest.raises(KeyboardInterrupt):
            signal.setitimer(signal.ITIMER_REAL, 0.05)
            while True:
                corvinade.read_points(path)
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    assert len(corvinade.read_points(path)) == count
