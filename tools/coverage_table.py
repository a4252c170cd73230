"""Coverage by room out of what llvm-cov shows, and the files that are below what is wanted.

    coverage_table.py SHOWN.txt REASONS.txt [PATTERN]

SHOWN.txt is the text of `llvm-cov show -show-branches=count -show-instantiations=false`: each line with how often it was
reached, and behind it its conditions with how often they were true and false. A condition whose value the compiler knows is
none. A line of REASONS.txt is "room: reason" or "path: reason"; `#` begins a remark. The status is 1 where a room that is
below, or a reader with lines that no test reaches, has no reason. With a PATTERN the conditions that were never true or
never false in the files that match are printed instead.
"""
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


def shown(path):
    """For each file its lines as {number: (was reached, text)} and its conditions as {place: [was true, was false]}."""
    files, lines, branches = {}, {}, {}
    with open(path, encoding="utf-8") as file:
        for text in file:
            begin = re.match(r"(/.*/)?((src|tests)/\S+):$", text)
            if begin:
                lines, branches = files.setdefault(begin[2], ({}, {}))
                continue
            line = re.match(r" *(\d+)\| *([^ |]*)\|(.*)", text)
            if line and line[2]:
                lines[int(line[1])] = (line[2] != "0", line[3])
            branch = re.match(r"[ |]*Branch \((\d+):(\d+)\): \[True: ([^,]*), False: ([^]]*)\]", text)
            if branch:
                # A condition of a template stands once for each of its forms.
                taken = branches.setdefault((int(branch[1]), int(branch[2])), [False, False])
                taken[0] |= branch[3] != "0"
                taken[1] |= branch[4] != "0"
    return files


def counts_of(lines, branches):
    counts = Counts()
    counts.lines = len(lines)
    counts.hit = sum(1 for reached, _ in lines.values() if reached)
    counts.branches = 2 * len(branches)
    counts.taken = sum(sum(taken) for taken in branches.values())
    return counts, sorted(number for number, (reached, _) in lines.items() if not reached)


def ranges(numbers):
    found = []
    for number in numbers:
        if found and number <= found[-1][1] + 2:
            found[-1][1] = number
        else:
            found.append([number, number])
    return ", ".join(f"{a}" if a == b else f"{a}-{b}" for a, b in found)


def print_conditions(files, pattern):
    for path, (lines, branches) in sorted(files.items()):
        if not re.search(pattern, path):
            continue
        for (line, column), (true, false) in sorted(branches.items()):
            if true and false:
                continue
            says = "not reached" if not true and not false else "never true" if not true else "never false"
            print(f"{path}:{line}:{column}: {says}: {lines.get(line, (False, ''))[1].strip()}")


def main():
    files = {path: of for path, of in shown(sys.argv[1]).items() if path.startswith("src/")}
    if len(sys.argv) > 3:
        print_conditions(files, sys.argv[3])
        return 0
    reasons = {}
    if os.path.exists(sys.argv[2]):
        with open(sys.argv[2], encoding="utf-8") as file:
            for line in file:
                if line.strip() and not line.startswith("#"):
                    path, _, reason = line.strip().partition(": ")
                    reasons[path] = reason
    rooms, below = defaultdict(Counts), []
    for path, (lines, branches) in files.items():
        room = path.split("/")[1] if path.count("/") > 1 else "src"
        counts, missed = counts_of(lines, branches)
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
