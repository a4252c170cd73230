#!/usr/bin/python3
"""Fits a fleet with Dask: a folder of cells, or one very large cloud. See docs/python.md.

    fleet.py cells FOLDER --out results.jsonl             FOLDER/CELL/measured.csv and nominal.csv: name,x,y,z
    fleet.py cloud MEASURED.npy NOMINAL.npy --out fit.json    two arrays of shape (n, 3), pair by pair

Processes of this machine do the work, or with --scheduler tcp://HOST:PORT the workers of any Dask cluster, which
have to see the files under the same paths. Lengths in mm. The result does not depend, to the last bit, on how many
workers there are, which of them did what, or whether one was lost on the way.
"""

import argparse
import json
import os
import pathlib
import sys
import tempfile

import distributed
import numpy as np

import corvinade


# --- What a worker does -----------------------------------------------------------------------------------


def fit_cell(folder, parameters):
    """The result of one cell; what goes wrong with it is told in its place and ends no other."""
    import pandas

    row = {"cell": os.path.basename(folder)}
    try:
        sides = []
        for name in ("measured.csv", "nominal.csv"):
            path = os.path.join(folder, name)
            frame = pandas.read_csv(path, index_col=0, dtype={0: str}, comment="#", skipinitialspace=True)
            sides.append(frame)
        result = corvinade.fit(*sides, parameters)
        return {**row, "status": "done" if result.converged else "not converged", "result": json.loads(result.to_json())}
    except (OSError, ValueError, TypeError) as error:
        return {**row, "status": "failed", "error": str(error)}


def moments_of(measured, nominal, first, last):
    """The sums of the pairs from `first` on, before `last`, of two files that are not read as a whole."""
    start, target = (np.load(path, mmap_mode="r") for path in (measured, nominal))
    return corvinade.Moments(np.array(start[first:last]), np.array(target[first:last]))


# --- What is handed to them -------------------------------------------------------------------------------


def fit_cells(client, folder, parameters="7", told=lambda done, of: None):
    """The results of all cells, in the order of their names."""
    cells = sorted(str(path.absolute()) for path in pathlib.Path(folder).iterdir() if path.is_dir())
    if not cells:
        raise ValueError(f"{folder}: a folder a cell was expected, and there is none")
    # The same cell is to be read anew in the next night, so its name is no key of what Dask remembers.
    tasks = [client.submit(fit_cell, cell, parameters, pure=False) for cell in cells]
    for done, _ in enumerate(distributed.as_completed(tasks), 1):
        told(done, len(cells))
    return client.gather(tasks)


def fit_cloud(client, measured, nominal, parameters="7", piece=1_000_000, told=lambda done, of: None):
    """The fit of two files of arrays. They are cut into pieces, whose sums are merged as they come: since they are
    exact, the order makes no difference."""
    measured, nominal = os.path.abspath(measured), os.path.abspath(nominal)
    shapes = [np.load(path, mmap_mode="r").shape for path in (measured, nominal)]
    if shapes[0] != shapes[1] or len(shapes[0]) != 2 or shapes[0][1] != 3:
        raise ValueError(f"two arrays of one shape (n, 3) were expected, and {shapes[0]} and {shapes[1]} came")
    count = shapes[0][0]
    tasks = [client.submit(moments_of, measured, nominal, first, min(first + piece, count), pure=False)
             for first in range(0, count, piece)]
    moments = corvinade.Moments()
    for done, task in enumerate(distributed.as_completed(tasks), 1):
        moments.merge(task.result())
        told(done, len(tasks))
    if len(moments) != count:
        raise RuntimeError(f"{count} pairs were to be taken, and {len(moments)} were")
    return moments.fit(parameters)


# --- The program ------------------------------------------------------------------------------------------


def write_whole(path, text):
    """The file as a whole, or what stood there before."""
    new = f"{path}.new"
    try:
        with open(new, "w", encoding="utf-8") as file:
            file.write(text)
            file.flush()
            os.fsync(file.fileno())
        os.replace(new, path)
    except BaseException:
        pathlib.Path(new).unlink(missing_ok=True)
        raise


def arguments_of(words):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=("cells", "cloud"))
    parser.add_argument("inputs", nargs="+", metavar="FOLDER or MEASURED.npy NOMINAL.npy")
    parser.add_argument("--out", required=True, help="results: JSON, of cells a line each")
    parser.add_argument("--parameters", default="7", help="level, 6, 7, 9 or 12")
    parser.add_argument("--piece", type=int, default=1_000_000, help="pairs of a cloud that are read at once")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="processes of this machine")
    parser.add_argument("--scheduler", help="address of a cluster, in place of these")
    given = parser.parse_args(words)
    if len(given.inputs) != (1 if given.what == "cells" else 2):
        parser.error("cells takes one folder, cloud two files")
    if given.piece < 1 or given.workers < 1:
        parser.error("--piece and --workers are 1 at least")
    return given


def client_of(given, folder):
    if given.scheduler:
        return distributed.Client(given.scheduler)
    return distributed.Client(n_workers=given.workers, threads_per_worker=1, dashboard_address=None,
                              local_directory=folder)


def main(words):
    given = arguments_of(words)

    def told(done, of):
        if sys.stderr.isatty():
            print(f"\r{done} of {of}", end="" if done < of else "\n", file=sys.stderr, flush=True)

    with tempfile.TemporaryDirectory() as folder, client_of(given, folder) as client:
        if given.what == "cloud":
            result = fit_cloud(client, *given.inputs, given.parameters, given.piece, told)
            write_whole(given.out, result.to_json() + "\n")
            print(repr(result))
            for note in result.notes:
                print(f"{note.code}: {note.text}", file=sys.stderr)
            return 0 if result.converged else 1
        rows = fit_cells(client, given.inputs[0], given.parameters, told)
        write_whole(given.out, "".join(json.dumps(row, allow_nan=False) + "\n" for row in rows))
    bad = [row for row in rows if row["status"] != "done"]
    for row in bad:
        print(f"{row['cell']}: {row.get('error', row['status'])}", file=sys.stderr)
    print(f"{len(rows)} cells: {len(rows) - len(bad)} done, {len(bad)} not")
    return 1 if bad else 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except (OSError, ValueError, distributed.scheduler.KilledWorker) as error:
        sys.exit(f"fleet.py: {error}")
