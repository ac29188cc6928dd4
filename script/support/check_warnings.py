"""Compiles the units of a build directory for their warnings alone, as errors.

usage: check_warnings.py [--quick] BUILD_DIR gcc|clang [FOLDER...]
Units are those of the project, or of the folders that are named (relative to the project). --quick
leaves out the warnings that gcc gives only while it optimises. Exit status 1 when a unit does not
compile cleanly.
"""
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

project = Path(__file__).resolve().parents[2]
# What gcc alone understands, and has no bearing on warnings.
gcc_only = {"-Winvalid-pch", "-fno-reorder-blocks-and-partition"}
compilers = {"gcc": {".c": "gcc", ".cpp": "g++"}, "clang": {".c": "clang", ".cpp": "clang++"}}


def check(entry, compiler, quick):
    """What a compiler says about a unit; the empty string when it says nothing."""
    _, *flags = shlex.split(entry["command"])
    for option in ("-o", "-MF", "-MT", "-include"):  # the last is a precompiled header: gcc's own
        if option in flags:
            place = flags.index(option)
            del flags[place:place + 2]
    flags = [flag for flag in flags
             if flag != "-MD" and not (compiler == "clang" and flag in gcc_only)]
    output = ["-fsyntax-only"] if quick or compiler == "clang" else ["-o", "/dev/null"]
    command = [compilers[compiler][Path(entry["file"]).suffix], *flags, "-Werror", *output]
    done = subprocess.run(command, cwd=entry["directory"], capture_output=True, text=True)
    return done.stderr or ("" if done.returncode == 0 else shlex.join(command) + " failed\n")


def main(*arguments):
    quick = arguments[:1] == ("--quick",)
    build_dir, compiler, *folders = arguments[1:] if quick else arguments
    roots = [project / folder for folder in folders] or [project]
    commands = json.loads((Path(build_dir) / "compile_commands.json").read_text())
    units = [entry for entry in commands
             if any(Path(entry["file"]).is_relative_to(root) for root in roots)]
    if not units:
        sys.exit("no unit to check")
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        found = "".join(pool.map(lambda entry: check(entry, compiler, quick), units))
    sys.stderr.write(found)
    sys.exit(found != "")


main(*sys.argv[1:])
