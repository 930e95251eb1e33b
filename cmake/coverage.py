#!/usr/bin/env python3
"""coverage.py SOURCE BUILD: which lines and branches the suite has run in BUILD, one row for each folder.

BUILD/uncovered.txt gets every line that nothing ran. Ends with 1 when a folder has fewer lines than its floor: what
stands without a window can be tested to the last turn; a window's painting and boxes less so. A branch that only an
exception takes doesn't count. A process that is killed by a signal leaves no counts.
"""

import json
import subprocess
import sys
from pathlib import Path

FLOORS = {  # of the lines, in percent
    "platform": 97, "session": 97, "model": 97, "links": 97, "calibration": 97, "guard": 97, "testbench": 97,
    "widgets": 92, "procedures": 92, "records": 92, "shell": 92, "main": 92,
}


def main():
    source, build = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    folders = {name: Counts() for name in FLOORS}
    uncovered = []
    for file in sorted(counted_files(source, build), key=lambda file: file["file"]):
        name = file["file"]
        lines = [line for line in file["lines"] if not line["gcovr/noncode"]]
        folders[folder_of(name)].add(lines)
        missed = [line["line_number"] for line in lines if line["count"] == 0]
        if missed:
            text = (source / name).read_text(encoding="utf-8").splitlines()
            uncovered += [f"{name}:{number}: {text[number - 1].strip()}" for number in missed]
    report = build / "uncovered.txt"
    report.write_text("".join(line + "\n" for line in uncovered), encoding="utf-8")

    print(f"{'folder':<12}{'lines':>15}{'':>10}{'floor':>8}{'branches':>17}")
    low = [name for name, floor in FLOORS.items() if folders[name].show(name, floor)]
    print(f"{len(uncovered)} lines that nothing ran: {report}", flush=True)
    if low:
        sys.exit("Below the floor: " + ", ".join(low))


class Counts:
    """Of one folder: how many there are and how many were run."""

    def __init__(self):
        self.lines = self.run_lines = self.branches = self.run_branches = 0

    def add(self, lines):
        self.lines += len(lines)
        self.run_lines += sum(line["count"] > 0 for line in lines)
        branches = [branch for line in lines for branch in line["branches"]]
        self.branches += len(branches)
        self.run_branches += sum(branch["count"] > 0 for branch in branches)

    def show(self, name, floor):
        """True when there is too little of it; a folder of which nothing was counted has too little."""
        line, branch = percent(self.run_lines, self.lines), percent(self.run_branches, self.branches)
        low = line < floor
        print(f"{name:<12}{self.run_lines:>7} of{self.lines:>6}{line:>8.1f} %{floor:>6} %{self.run_branches:>7} of"
              f"{self.branches:>6}{branch:>7.1f} %{'  LOW' if low else ''}")
        return low


def percent(part, whole):
    return 100 * part / whole if whole else 0


def folder_of(name):
    """src/model/images.cpp belongs to model, testbench/program/main.cpp to testbench, src/main.cpp to main."""
    parts = Path(name).parts
    if parts[0] != "src":
        return parts[0]
    return parts[1] if len(parts) > 2 else "main"


def counted_files(source, build):
    words = subprocess.run(
        ["gcovr", "--root", source, "--object-directory", build, "-j", "2", "--exclude-throw-branches",
         "--exclude-unreachable-branches", "--filter", "src/", "--filter", "guard/", "--filter", "testbench/",
         "--json", "-", build],
        cwd=source, stdout=subprocess.PIPE, text=True, check=True).stdout
    return json.loads(words)["files"]


if __name__ == "__main__":
    main()
