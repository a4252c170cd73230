"""Coverage by room out of gcovr's JSON, and the files that are below what is wanted.

    coverage_table.py COVERAGE.json REASONS.txt

A line of REASONS.txt is "room: reason" or "path: reason"; `#` begins a remark. The status is 1 where a room that is below,
or a reader with lines that no test reaches, has no reason.
"""
import json
import os
import re
import sys
from collections import defaultdict

# Percent of lines and of branches.
WANTED = {"readers": (100, 95), "core": (95, 90), "fit": (95, 90), "import": (95, 90), "bundle": (95, 90),
          "paraboloid": (95, 90)}
READERS = re.compile(
    r"src/(import/(abb_|fanuc_|kuka_|robot_|named_poses|pose_|cloud|landxml_|pcd_|ply_|text_cloud|lzf|point_file|point_text|"
    r"row_notes|table_)|core/(job_file_(read|bytes|fields)|settings)|paraboloid/shape_file|bundle/.*file)")


class Counts:
    def __init__(self):
        self.lines = self.hit = self.branches = self.taken = 0

    def add(self, other):
        self.lines += other.lines
        self.hit += other.hit
        self.branches += other.branches
        self.taken += other.taken

    def percent(self):
        return (100 * self.hit / self.lines if self.lines else 100, 100 * self.taken / self.branches if self.branches else 100)


def counts_of(file):
    counts, missed = Counts(), []
    # A line of a template or of an inline procedure stands once for each unit that has it.
    hits, branches = defaultdict(int), defaultdict(dict)
    for line in file["lines"]:
        if line.get("gcovr/noncode"):
            continue
        number = line["line_number"]
        hits[number] += line["count"]
        for i, branch in enumerate(line["branches"]):
            if not branch.get("throw"):
                branches[number][i] = branches[number].get(i, 0) + branch["count"]
    for number, count in sorted(hits.items()):
        counts.lines += 1
        counts.hit += count > 0
        if not count:
            missed.append(number)
    for of_line in branches.values():
        counts.branches += len(of_line)
        counts.taken += sum(1 for count in of_line.values() if count > 0)
    return counts, missed


def ranges(numbers):
    found = []
    for number in numbers:
        if found and number <= found[-1][1] + 2:
            found[-1][1] = number
        else:
            found.append([number, number])
    return ", ".join(f"{a}" if a == b else f"{a}-{b}" for a, b in found)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["files"]
    reasons = {}
    if os.path.exists(sys.argv[2]):
        with open(sys.argv[2], encoding="utf-8") as file:
            for line in file:
                if line.strip() and not line.startswith("#"):
                    path, _, reason = line.strip().partition(": ")
                    reasons[path] = reason
    rooms, below = defaultdict(Counts), []
    for file in files:
        path = file["file"]
        room = path.split("/")[1] if path.count("/") > 1 else "src"
        counts, missed = counts_of(file)
        rooms[room].add(counts)
        if READERS.match(path):
            rooms["readers"].add(counts)
        lines, branches = counts.percent()
        wanted = WANTED["readers"] if READERS.match(path) else WANTED.get(room)
        if wanted and (lines < wanted[0] or branches < wanted[1]):
            below.append((path, lines, branches, missed, bool(READERS.match(path)) and lines < wanted[0]))
    nameless = 0
    print(f"{'room':12}{'lines':>9}{'branches':>10}   wanted")
    for room in sorted(rooms, key=lambda name: (name not in WANTED, name)):
        lines, branches = rooms[room].percent()
        wanted, says = WANTED.get(room), ""
        if wanted:
            says = f"   {wanted[0]} / {wanted[1]}"
            if lines < wanted[0] or branches < wanted[1]:
                reason = reasons.pop(room, "")
                nameless += not reason
                says += f"  below: {reason or 'NO REASON IS NAMED'}"
        print(f"{room:12}{lines:8.1f} %{branches:8.1f} %{says}")
    print("\nFiles below what is wanted, with the lines that no test reaches:")
    for path, lines, branches, missed, has_to_be_named in sorted(below):
        reason = reasons.pop(path, "")
        nameless += has_to_be_named and not reason
        print(f"  {path}  {lines:.1f} % / {branches:.1f} %  {ranges(missed)}")
        if reason or has_to_be_named:
            print(f"      {reason or 'NO REASON IS NAMED'}")
    for path in reasons:
        print(f"tests/uncovered.txt names {path}, which is not below", file=sys.stderr)
    return 1 if nameless else 0


sys.exit(main())
