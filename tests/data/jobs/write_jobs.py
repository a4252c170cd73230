#!/usr/bin/env python3
"""Writes the job files of this folder, field by field, by docs/job-file.md alone.

It knows nothing of the program, and no test runs it: the files are frozen. It stays beside them to tell what
their bytes mean, and for the next version, which gets files of its own; those that stand here are never
written again (an existing file is left alone). `saved/NAME.cvn` is what NAME.cvn is saved as by version 2.0.64
after a fresh start.
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def i16(*v): return struct.pack("<%dh" % len(v), *v)
def i32(*v): return struct.pack("<%di" % len(v), *v)
def u16(*v): return struct.pack("<%dH" % len(v), *v)
def f32(*v): return struct.pack("<%df" % len(v), *v)
def f64(*v): return struct.pack("<%dd" % len(v), *v)
def flag(*v): return i16(*[-1 if x else 0 for x in v])
def text(s): return i32(len(s.encode("cp1252"))) + s.encode("cp1252")
def short(s): return u16(len(s.encode("cp1252"))) + s.encode("cp1252")
def value(v): return u16(0) if v is None else v if isinstance(v, bytes) else u16(5) + f64(v)


def array(items, put):  # T[]: the highest index, then element 0, which means nothing, and the others
    return i32(len(items) - 1) + b"".join(put(x) for x in items)


def shape(*ranges):  # of T{}: (how many, lowest index) for each dimension
    return u16(len(ranges)) + b"".join(struct.pack("<Ii", n, low) for n, low in ranges)


# Values as older writers put them: kind 2 a short, 3 a long, 4 a single, 8 a text.
def as_i16(n): return u16(2) + i16(n)
def as_i32(n): return u16(3) + i32(n)
def as_f32(x): return u16(4) + f32(x)
def as_text(s): return u16(8) + short(s)


# Eight marks of a cell and a ninth that only the tracker has seen: name, then x, y, z.
START = [("M1", 1200.0, 340.0, 50.0), ("M2", -800.0, 2250.5, 51.25), ("M3", 40000.0, -7.0, 0.125),
         ("M4", 12.5, 0.5, -3.75), ("M5", 1e-9, -1e9, 6.5), ("Säule", 77.0, 88.0, 99.0),
         ("M7", 7.25, 7.5, 7.75), ("M8", -8.5, -16.5, -32.5), ("only tracker", 9.0, 18.0, 27.0)]
TARGET = [("M1", 2201.0, -660.0, 1550.0), ("M2", 201.0, 1250.5, 1551.25), ("M3", 41001.0, -1007.0, 1500.125),
          ("M4", 1013.5, -999.5, 1496.25), ("M5", 1001.0, -1e9, 1506.5), ("Säule", 1078.0, -912.0, 1599.0),
          ("M7", 1008.25, -992.5, 1507.75), ("M8", 992.5, -1016.5, 1467.5), ("only CAD", 5.0, 6.0, 7.0),
          ("only CAD 2", 15.0, 16.0, 17.0)]
MOVED = [(n, x + 1001, y - 1000, z + 1500) for n, x, y, z in START]
USE = [1, 1, 1, 1, 0, 1, 0, 0, 0] + [1] * 15
PARAMS = ["", "float", "float", "1500", "float", "-0,25", "float", "not used", "not used", "not used", "1.0005",
          "not used", "not used", "not used", "12.5", "not used", "float", "not used"]
TWO_SHAPE = [(0, 0, 0), (0, 0, 0), (0, 125.5, 3.25), (0, 250.0, 13.0)]
POSES = [(0, 0, 0, 0)] + [(0, 0.01 * i, -0.02 * i, 0.03 * i) for i in range(1, 9)]
R_VECTORS = [(None, None, 0)] + [(None if i == 3 else 10.5 + i, 20.25 - i, 30.0 * i) for i in range(1, 9)]


def points(rows, odd=None):
    """Names, x, y, z; `odd` replaces x values by bytes of their own."""
    xs = [None] + [r[1] for r in rows]
    for place, put in (odd or {}).items():
        xs[place] = put
    return (array([""] + [r[0] for r in rows], short) + array(xs, value) +
            array([None] + [r[2] for r in rows], value) + array([0.0] + [r[3] for r in rows], lambda z: f64(z)))


def up_to_result(params, auto, odd=None):
    return (points(START, odd) + points(TARGET) + points(MOVED) + i32(8, 9, 10) +
            array([0] + USE, i16) + b"".join(short(p) for p in params) + flag(False, auto) +
            f64(1001.0, -1000.0, 1500.0, 0.125, -0.25, 1.5, 1.001, 1.002, 1.003, 1.0005, 0.011, 0.022, 0.033))


def units_to_paths():
    return (text("inch") + text("grad (gon)") + i16(4, 6, 1) +
            b"".join(short(s) for s in ("", "M1", "M4", "Säule")) + i16(0, 1, 4, 6) +
            text("Tracker") + text("Cell") + text("C:\\Halle\\Tracker.txt") + text("C:\\Halle\\Cell.txt"))


def shape_table(rows):
    return i32(len(rows) - 1) + b"".join(f64(*[r[c] for r in rows]) for c in range(len(rows[0])))


def unused_view():
    return view(flags=[], rows=0, lines=[], angles=None, full=False)


def view(flags, rows, lines, angles, full=True):
    k = 1 if full else 0
    out = flag(full) + i16(5 * k) + flag(False)
    out += f32(0.25 * k, 320.5 * k, -240.5 * k, 150.0 * k) + i16(40 * k)
    out += shape((2, 1), (3, 1)) + f64(*angles) if angles else shape()
    out += i16(len(flags))
    out += shape((rows, 1)) + i16(*[1 if r == 1 else 0 for r in range(rows)]) if rows else shape()
    out += (shape((len(flags), 0)) + b"".join(flags)) if flags else shape()
    out += i16(1 * k, 1024 * k, 768 * k, 7 * k, 5 * k) + flag(full) + f64(-1.5 * k, 2.5 * k)
    out += flag(full, False, full) + short("3D" if full else "") + flag(full) + i32(0x0080ff * k)
    out += short("Cartesian" if full else "") + flag(False, full, False, full)
    out += f32(11.5 * k, -12.5 * k) + f64(0.75 * k, 33.25 * k)
    inverse = {(r, c): 10.0 * r + c if full and r and c else 0.0 for r in range(4) for c in range(4)}
    out += f64(*[inverse[r, c] for c in range(4) for r in range(4)])
    out += f32(-64.5 * k) + flag(False, full, False) + i32(100 * k, 200 * k, 70000 * k) + flag(full)
    out += (shape((2, 1), (len(lines), 0)) + i16(*[e for line in lines for e in line])) if lines else shape()
    return out + i32(3 * k) + flag(False) + i32(1 * k)


def a_flag():
    sides = [k % 3 == 0 for k in range(21)]  # ShowPointNumber to WithinScreen
    return (flag(*sides) + i16(-120, 300) + flag(True) + i16(1) + flag(False) + short("Arial") + f32(9.75) +
            flag(False, True) + f32(700.0) + i32(0x102030))


ANGLES = (0.5, 0.0, -0.25, 0.0, 0.125, 0.0)  # the first index runs fastest: row 1 holds the three angles


def views():
    front = view([a_flag()], 9, [(0, 0), (1, 2), (2, 6)], ANGLES)
    return (i16(2) + array(["Front", "Übersicht"], short) +
            b"".join([unused_view(), front, view([], 0, [], ANGLES)] + [unused_view()] * 48))


def robots(kuka, quaternion):
    return (flag(kuka, quaternion) + shape_table(POSES) + array([r[0] for r in R_VECTORS], value) +
            array([r[1] for r in R_VECTORS], value) + array([r[2] for r in R_VECTORS], lambda z: f64(z)))


VIEW_FLAGS = flag(True, False, False, True)
ALL_VIEWS = flag(True, True, True, True)
NO_SHAPE, NO_VIEWS, NO_ROBOTS = flag(False), i16(0), flag(False, False)
SHAPE = flag(True) + shape_table(TWO_SHAPE)
R_DIST = f64(12.5)
BLOCK_TEXT = b'{"converged":false,"cell":"R12"}'
BLOCK = (b"CORVINADE-BLOCK\x1a" + struct.pack("<Q", len(BLOCK_TEXT)) + BLOCK_TEXT +
         struct.pack("<Q", len(BLOCK_TEXT)))


def head(version, params, auto, rest):
    return text(version) + up_to_result(params, auto) + R_DIST + units_to_paths() + rest


def headless(version, auto, rest):  # the version stands behind the paths; values of every older kind
    odd = {1: as_i16(1200), 2: as_text("-800"), 3: as_i32(40000), 4: as_f32(12.5)}
    return up_to_result(PARAMS[:14], auto, odd) + units_to_paths() + text(version) + rest


# What a fresh start has in the entries that a file of 14 or 15 parameters lacks, and as distance.
FRESH = {i: "" for i in range(18)}


def saved(params, rest, distance=R_DIST):
    return text("2.0.64") + up_to_result(params, False) + distance + units_to_paths() + rest


def of_14():
    return PARAMS[:14] + ["not used"] + [FRESH[i] for i in (15, 16, 17)]


def of_15():
    return PARAMS[:15] + ["not used", FRESH[16], "not used"]


FILES = {
    "1.2.40": headless("1.2.40", True, b""),
    "1.3.68": headless("1.3.68", False, VIEW_FLAGS),
    "1.3.71": head("1.3.71", PARAMS, True, VIEW_FLAGS),
    "1.3.72": head("1.3.72", PARAMS, False, VIEW_FLAGS + SHAPE + views()),
    "2.0.46": head("2.0.46", PARAMS[:15], False, VIEW_FLAGS + NO_SHAPE + views()),
    "2.0.57": head("2.0.57", PARAMS[:15], True, VIEW_FLAGS + SHAPE + NO_VIEWS + NO_ROBOTS),
    "2.0.58": head("2.0.58", PARAMS, False, VIEW_FLAGS + NO_SHAPE + NO_VIEWS + robots(False, True)),
    "2.0.64": head("2.0.64", PARAMS, True, VIEW_FLAGS + NO_SHAPE + views() + robots(True, False)),
    "2.0.64-block": head("2.0.64", PARAMS, False, VIEW_FLAGS + NO_SHAPE + NO_VIEWS + NO_ROBOTS + BLOCK),
}
SAVED = {
    "1.2.40": saved(of_14(), ALL_VIEWS + NO_SHAPE + NO_VIEWS + NO_ROBOTS, f64(0.0)),
    "1.3.68": saved(of_14(), VIEW_FLAGS + NO_SHAPE + NO_VIEWS + NO_ROBOTS, f64(0.0)),
    "1.3.71": saved(PARAMS, VIEW_FLAGS + NO_SHAPE + NO_VIEWS + NO_ROBOTS),
    "1.3.72": saved(PARAMS, VIEW_FLAGS + SHAPE + views() + NO_ROBOTS),
    "2.0.46": saved(of_15(), VIEW_FLAGS + NO_SHAPE + views() + NO_ROBOTS),
    "2.0.57": saved(of_15(), VIEW_FLAGS + SHAPE + NO_VIEWS + NO_ROBOTS),
    "2.0.58": saved(PARAMS, VIEW_FLAGS + NO_SHAPE + NO_VIEWS + robots(False, True)),
    "2.0.64": saved(PARAMS, VIEW_FLAGS + NO_SHAPE + views() + robots(True, False)),
    "2.0.64-block": saved(PARAMS, VIEW_FLAGS + NO_SHAPE + NO_VIEWS + NO_ROBOTS + BLOCK),
}

if __name__ == "__main__":
    os.makedirs(os.path.join(HERE, "saved"), exist_ok=True)
    for folder, files in ((HERE, FILES), (os.path.join(HERE, "saved"), SAVED)):
        for name, data in files.items():
            path = os.path.join(folder, name + ".cvn")
            if not os.path.exists(path):
                with open(path, "wb") as out:
                    out.write(data)
