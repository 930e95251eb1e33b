#!/usr/bin/env python3
"""tidy.py SOURCE BUILD FOLDER...: clang-tidy over the sources in these folders, as many at a time as there are cores.

A source that was found clean is left out until something changes that the finding rests on: the source or any header it
includes, its compile command, a .clang-tidy, the tool. BUILD/tidy/ remembers what that was, one stamp for each source.
"""

import hashlib
import json
import os
import shlex
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor, as_completed
from functools import lru_cache
from pathlib import Path


def main():
    source, build = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    folders = sys.argv[3:]
    files = sources(source, folders)
    if not files:
        sys.exit(f"lint: no sources in {' '.join(folders)}")
    commands = compile_commands(build)
    missing = [name for name in files if str(source / name) not in commands]
    if missing:
        sys.exit(f"lint: {build} doesn't know how to compile {' '.join(missing)}; configure it again")
    tool = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        keys = dict(zip(files, pool.map(lambda name: key_of(source, name, commands[str(source / name)], tool), files)))
        changed = [name for name in files if remembered(build, name) != keys[name]]
        say(f"clang-tidy over {len(changed)} of {len(files)} sources in {', '.join(folders)}; the others were clean")
        runs = {pool.submit(tidy, source, build, name): name for name in changed}
        unclean = []
        for count, run in enumerate(as_completed(runs), 1):
            name = runs[run]
            words, seconds = run.result()
            say(f"{count} of {len(changed)}, {name}, {seconds:.0f} s{'' if words is None else ': findings'}")
            if words is None:
                remember(build, name, keys[name])
            else:
                unclean.append(name)
                print(words, flush=True)
    if unclean:
        sys.exit("lint: clang-tidy found something in\n  " + "\n  ".join(sorted(unclean)))


def say(text):
    print(f"lint: {text}", flush=True)


def sources(source, folders):
    """What git has or would take."""
    names = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--",
         *(f"{folder}/*.{kind}" for folder in folders for kind in ("c", "cpp"))],
        cwd=source, capture_output=True, text=True, check=True).stdout
    return [name for name in sorted(set(names.split("\0"))) if name and (source / name).exists()]


def compile_commands(build):
    try:
        entries = json.loads((build / "compile_commands.json").read_text())
    except OSError as trouble:
        sys.exit(f"lint: {trouble}; configure first")
    return {entry["file"]: entry for entry in entries}


@lru_cache(maxsize=None)
def hash_of(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def key_of(source, name, entry, tool):
    """Hash of all that a finding in this source rests on, "" when the compiler can't tell it."""
    command = shlex.split(entry["command"])
    at = command.index("-o")
    asks = [word for word in command[:at] + command[at + 2:] if word != "-c"] + ["-M", "-MT", "x"]
    told = subprocess.run(asks, cwd=entry["directory"], capture_output=True, text=True)
    if told.returncode != 0:
        return ""
    inputs = shlex.split(told.stdout.replace("\\\n", " "))[1:]
    rules = [folder / ".clang-tidy" for folder in (source / name).parents if folder.is_relative_to(source)]
    key = hashlib.sha256(f"{tool}\0{entry['command']}".encode())
    for path in [*inputs, *(str(rule) for rule in rules if rule.exists())]:
        key.update(f"\0{path}\0{hash_of(os.path.join(entry['directory'], path))}".encode())
    return key.hexdigest()


def stamp(build, name):
    return build / "tidy" / (name + ".clean")


def remembered(build, name):
    try:
        return stamp(build, name).read_text() or None
    except OSError:
        return None


def remember(build, name, key):
    stamp(build, name).parent.mkdir(parents=True, exist_ok=True)
    stamp(build, name).write_text(key)


def tidy(source, build, name):
    """What was found, None when nothing, and the seconds it took."""
    begin = time.monotonic()
    run = subprocess.run(["clang-tidy", "-p", str(build), "--quiet", name], cwd=source, capture_output=True, text=True)
    words = None if run.returncode == 0 else run.stdout.strip() or run.stderr.strip()
    return words, time.monotonic() - begin


main()
