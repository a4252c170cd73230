"""The wheel in an environment of its own, without network."""

import pathlib
import re
import shutil
import subprocess
import sys

import pytest

TOP = pathlib.Path(__file__).parents[2]


@pytest.fixture(scope="module")
def wheel():
    made = subprocess.run([TOP / "tools" / "wheel"], check=True, capture_output=True, text=True)
    return pathlib.Path(made.stdout.strip())


@pytest.fixture(scope="module")
def python(tmp_path_factory):
    """The Python of a new environment, which sees Debian's numpy."""
    folder = tmp_path_factory.mktemp("environment")
    subprocess.run([sys.executable, "-m", "venv", "--system-site-packages", folder], check=True)
    return folder / "bin" / "python3"


def install(python, wheel):
    return subprocess.run([python, "-I", "-m", "pip", "install", "--no-index", "--no-cache-dir", "--force-reinstall",
                           "--no-deps", wheel], capture_output=True, text=True)


def run(python, code):
    return subprocess.run([python, "-I", "-c", code], cwd=TOP, capture_output=True, text=True)


def test_pip_installs_it_and_the_lines_of_the_readme_run(wheel, python):
    done = subprocess.run([python, "-I", "-m", "pip", "install", "--no-index", "--no-cache-dir", wheel],
                          capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    code = re.search(r"```python\n(.*?)```", (TOP / "README.md").read_text(encoding="utf-8"), re.DOTALL).group(1)
    ran = run(python, code + "\nprint(corvinade.__file__)")
    assert ran.returncode == 0, ran.stderr
    told, place = ran.stdout.splitlines()
    assert told == re.search(r"# (\[.*\])", code).group(1)
    assert pathlib.Path(place).is_relative_to(python.parents[1])
    checked = subprocess.run([python, "-I", "-m", "pip", "check"], capture_output=True, text=True)
    assert "corvinade" not in checked.stdout


def test_every_file_of_it_has_its_sum_in_the_record(wheel, tmp_path):
    # Unpacking holds every file against its sum.
    subprocess.run(["/usr/bin/python3", "-m", "wheel", "unpack", "--dest", tmp_path, wheel], check=True,
                   capture_output=True)
    names = {path.name for path in tmp_path.glob("*/corvinade/*")}
    assert {"__init__.py", "_corvinade.pyi", "py.typed"} <= names


def test_a_damaged_one_is_not_installed(wheel, python, tmp_path):
    whole = wheel.read_bytes()
    middle = len(whole) // 2
    damaged = {"cut": whole[:middle], "changed": whole[:middle] + bytes([whole[middle] ^ 0x55]) + whole[middle + 1:]}
    for name, content in damaged.items():
        folder = tmp_path / name
        folder.mkdir()
        (folder / wheel.name).write_bytes(content)
        done = install(python, folder / wheel.name)
        assert done.returncode != 0 and re.search("invalid|Bad CRC|not a zip", done.stderr), done.stderr


def test_another_python_is_told_that_it_is_not_for_it(wheel, python, tmp_path):
    other = tmp_path / wheel.name.replace(f"cp{sys.version_info[0]}{sys.version_info[1]}", "cp36")
    shutil.copy(wheel, other)
    done = install(python, other)
    assert done.returncode != 0 and "is not a supported wheel on this platform" in done.stderr


def test_a_part_that_is_missing_or_damaged_is_named(wheel, python, tmp_path):
    subprocess.run(["/usr/bin/python3", "-m", "wheel", "unpack", "--dest", tmp_path, wheel], check=True,
                   capture_output=True)
    folder = next(tmp_path.glob("corvinade-*"))
    module = next((folder / "corvinade").glob("*.so"))
    for damage in (lambda: module.write_bytes(bytes(64) + module.read_bytes()[64:]), module.unlink):
        damage()
        ran = run(python, f"import sys; sys.path.insert(0, {str(folder)!r}); import corvinade")
        assert ran.returncode != 0
        assert f"for this one, {sys.version.split()[0]}, it is missing or damaged: " in ran.stderr
