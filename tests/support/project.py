"""What the tests in Python share: the build under test, running commands, and picking single tests.

CMake writes the description of the build (tests/CMakeLists.txt) and names it in ZRV_BUILD.
"""
import json
import os
import re
import shlex
import subprocess
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from types import SimpleNamespace

build = SimpleNamespace(**json.loads(Path(os.environ["ZRV_BUILD"]).read_text()))
source_dir = Path(build.source_dir)
c_flags = shlex.split(build.c_flags)
cxx_flags = shlex.split(build.cxx_flags)


def run(*command, **options):
    """Standard output of a command; its standard error is part of the failure."""
    command = [str(word) for word in command]
    done = subprocess.run(command, capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(
            f"{shlex.join(command)[:1000]}\nexit status {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def in_parallel(function, items):
    """The results of a function for each item, on all processors."""
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        return list(pool.map(function, items))


def exported_data():
    """The objects that libzrvcomn exports: name, address, size, is_constant (read-only once loaded)."""
    sections = dict(re.findall(r"^ *\[ *(\d+)\] (\S+) ",
                               run(build.readelf, "--sections", "--wide", build.zrvcomn), flags=re.M))
    objects = re.findall(r"^ *\d+: ([0-9a-f]+) +(\S+) +OBJECT +\w+ +DEFAULT +(\d+) ([\w.]+)@",
                         run(build.readelf, "--dyn-syms", "--wide", build.zrvcomn), flags=re.M)
    return [SimpleNamespace(name=name, address=int(address, 16), size=int(size, 0),
                            is_constant=sections[section].startswith((".rodata", ".data.rel.ro")))
            for address, size, section, name in objects]


def relocations(library):
    """The references that the loader resolves by a name: name, and the address where it stands."""
    found = re.findall(r"^([0-9a-f]+) +[0-9a-f]+ R_\w+ +[0-9a-f]+ +(\w+)",
                       run(build.readelf, "--relocs", "--wide", library), flags=re.M)
    return [SimpleNamespace(name=name, address=int(address, 16)) for address, name in found]


def tracked_files(*patterns):
    """The files of the project that match: what git tracks, or without git all but the builds."""
    git = subprocess.run(["git", "-C", source_dir, "ls-files", "-z", "--", *patterns],
                         capture_output=True, text=True)
    if git.returncode == 0:
        names = [source_dir / name for name in git.stdout.split("\0") if name]
    else:
        names = [path for pattern in patterns for path in source_dir.rglob(pattern)
                 if path.relative_to(source_dir).parts[0] != "build"]
    return sorted(path for path in names if path.is_file())


def main():
    """Runs the tests of the main module that are named on the command line, else all of them."""
    wanted = set(sys.argv[1:])
    chosen = unittest.TestSuite()

    def pick(tests):
        for test in tests:
            if isinstance(test, unittest.TestSuite):
                pick(test)
            elif not wanted or test._testMethodName in wanted:
                chosen.addTest(test)

    pick(unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"]))
    if chosen.countTestCases() == 0:
        sys.exit("no such test: " + " ".join(wanted))
    sys.exit(not unittest.TextTestRunner(verbosity=2).run(chosen).wasSuccessful())
