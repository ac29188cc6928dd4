"""Runs a unit's tests against small changes of its source and lists the changes that survive."""
import argparse
import collections
import concurrent.futures
import json
import os
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

import mutants

EPILOG = """\
The build directory is brought up to date for the test program, then copied as far as needed, sources
included; all else happens in the copies, which are removed at the end, also after an interrupt. A change
costs the compilation of the objects that it reaches, one link, and the tests up to the first failure.

A survivor is printed as FILE:LINE: KIND: OLD -> NEW. Either a test is missing, or the change makes no
difference that anybody could see; the tool cannot tell. Changes whose objects come out the same are not
run. The last line has the sum.

Kinds: constant, comparison, arithmetic, logic (&&, ||, !, their operands), condition (always true, always
false), statement (dropped), argument (two of a call swapped), return (an empty value), string.

The time-out is in seconds of processor time; without one it follows from what the tests take unchanged.
A test that hangs without using the processor is stopped after ten times as long.

Exit status: 0 no survivor, 1 survivors, 2 wrong usage, 3 the unchanged unit does not build or pass,
130 interrupted.
"""
MEMORY_KIB = 4 << 20       # address space of a test program; a sanitized one has no limit
OUTPUT_BYTES = 4 << 20     # a test program that prints without end is killed for it
REMEMBERED_KILLERS = 6


class Trouble(Exception):
    """What keeps the tool from working; its text is for the user."""


class Usage(Trouble):
    pass


class Interrupted(Exception):
    """Nothing may be run any more."""


# ---- the build ----

class Build:
    """A configured build directory (Ninja) and what it says about itself."""

    def __init__(self, path):
        self.path = Path(path).resolve()
        cache = self.path / "CMakeCache.txt"
        if not (self.path / "build.ninja").is_file() or not cache.is_file():
            raise Usage(f"{path} is no build directory of Ninja; cmake --preset linux64 makes one")
        self.source = Path(re.search("^CMAKE_HOME_DIRECTORY:.*?=(.*)$", cache.read_text(), re.M)[1]).resolve()
        self.commands = {}  # by object, relative to the build
        for entry in json.loads((self.path / "compile_commands.json").read_text()):
            self.commands[re.search(r" -o (\S+)", entry["command"])[1]] = entry
        self.rules = {}  # by target
        for line in self.ninja("-t", "targets", "all").splitlines():
            target, _, rule = line.rpartition(": ")
            self.rules[target] = rule

    def ninja(self, *arguments):
        done = subprocess.run(["ninja", "-C", self.path, *arguments], capture_output=True, text=True)
        if done.returncode != 0:
            raise Trouble(f"ninja {' '.join(arguments)} failed:\n{done.stdout[-4000:]}{done.stderr}")
        return done.stdout

    def bring_up_to_date(self, target):
        self.ninja(target)

    def find_program(self, name):
        """The executable of that name, relative to the build; None without one."""
        for target, rule in self.rules.items():
            if "_EXECUTABLE_LINKER__" in rule and Path(target).name == name:
                return target
        return None

    def inputs(self, target):
        """What a target is made of, and of what that is made."""
        return self.ninja("-t", "inputs", target).split("\n")

    def libraries(self, program):
        """The shared libraries that a program needs, and those that it opens, each with its objects."""
        needed = [name for name in self.inputs(program)
                  if re.search("_(SHARED|MODULE)_LIBRARY_LINKER__", self.rules.get(name, ""))]
        found = {}
        for library in dict.fromkeys(needed):
            links = self.ninja("-t", "commands", "-s", library).strip().splitlines()[-1]
            objects = [word for word in links.split() if word in self.commands]
            found[library] = (links, objects)
        return found

    def including(self, source):
        """The objects that are made from a source or header."""
        found, output, seen = set(), None, {}
        for line in self.ninja("-t", "deps").splitlines():
            if not line.startswith(" "):
                output = line.partition(": #deps")[0]
                continue
            name = line.strip()
            if name not in seen:
                seen[name] = (self.path / name).resolve() == source
            if seen[name]:
                found.add(output)
        return found


def find_unit(source_dir, name):
    """The source that a path or a unit's name stands for."""
    for path in (Path(name), source_dir / name):
        if path.is_file():
            path = path.resolve()
            if not path.is_relative_to(source_dir):
                raise Usage(f"{name} is not among the sources of that build ({source_dir})")
            return path
    found = [path for path in source_dir.rglob("*")
             if path.stem == name and path.suffix in (".c", ".cpp", ".h")
             and not {"build", "tests", "bench", "fuzz"} & set(path.relative_to(source_dir).parts)]
    found = [path for path in found if path.suffix != ".h"] or found
    if len(found) != 1:
        which = ", ".join(str(path.relative_to(source_dir)) for path in found)
        raise Usage(f"several units are called {name}: {which}" if found else f"no unit is called {name}")
    return found[0]


def find_test(build, unit):
    """The test program of a unit's subsystem: the name of a folder above it, and _test."""
    for folder in reversed(unit.relative_to(build.source).parts[:-1]):
        program = build.find_program(folder + "_test")
        if program:
            return program
    raise Usage(f"which program tests {unit.name}? Name it with --test")


# ---- running things ----

class Processes:
    """The processes that run now, so that an interrupt can end them."""

    def __init__(self):
        self.lock = threading.RLock()  # the signal that stops all may come in the thread that holds it
        self.running = set()
        self.stopped = False

    def run(self, command, timeout=None, **options):
        """The exit status, negative for a signal; None after the time-out. Raises Interrupted once all
        is stopped, for no result counts then."""
        with self.lock:
            if self.stopped:
                raise Interrupted
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, start_new_session=True, **options)
            self.running.add(process)
            if self.stopped:
                kill_group(process)
        try:
            status = process.wait(timeout)
        except subprocess.TimeoutExpired:
            status = None
        self.end(process)
        with self.lock:
            self.running.discard(process)
            if self.stopped:
                raise Interrupted
        return status

    @staticmethod
    def end(process):
        """Ends a process and those that it started, which may still be writing files."""
        deadline = time.monotonic() + 5
        while kill_group(process) and time.monotonic() < deadline:
            process.poll()
            time.sleep(0.01)

    def stop(self):
        with self.lock:
            self.stopped = True
            for process in self.running:
                kill_group(process)


def kill_group(process):
    """False when nothing is left to kill."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except (ProcessLookupError, PermissionError):
        return False
    return True


class Workshop:
    """A copy of the sources and of the part of the build that a test program needs, in a folder of its
    own: source/ and build/, where every relative path of the original holds."""

    def __init__(self, folder, build, unit, programs, processes):
        self.source = folder / "source"
        self.build = folder / "build"
        self.original = build
        self.processes = processes
        self.log = folder / "log"
        self.temporary = folder / "tmp"  # for files of a compiler or a test that is killed
        self.temporary.mkdir(parents=True)
        self.unit = self.moved(unit)
        self.programs = programs
        libraries = {}
        for program in programs:
            libraries.update(build.libraries(program))
        reached = build.including(unit)
        self.objects = [name for _, objects in libraries.values() for name in objects if name in reached]
        if not self.objects:
            raise Usage(f"no library under {', '.join(programs)} is built from {unit.name}")
        self.links = [self.rewrite(link) for link, objects in libraries.values()
                      if set(objects) & reached]
        self.library_path = ":".join(dict.fromkeys(str((self.build / name).parent) for name in libraries))
        self.is_sanitized = "-fsanitize=" in self.original.commands[self.objects[0]]["command"]
        self.copy_sources()
        self.copy_build(libraries)

    def moved(self, path):
        """Where the copy of a path of the project or of the build stands."""
        if path.is_relative_to(self.original.path):
            return self.build / path.relative_to(self.original.path)
        return self.source / path.relative_to(self.original.source)

    def rewrite(self, command):
        command = command.replace(str(self.original.path), str(self.build))
        return re.sub(re.escape(str(self.original.source)) + r"(?=[/\s\"=:]|$)", str(self.source), command)

    def copy_sources(self):
        left_out = {self.original.path, self.original.source / "build", self.original.source / ".git"}

        def ignore(folder, names):
            return [name for name in names if Path(folder) / name in left_out]

        shutil.copytree(self.original.source, self.source, symlinks=True, ignore=ignore)

    def copy_build(self, libraries):
        """Libraries, their objects, the programs and the folders of generated headers; what else is at the
        top of the build is reached through links."""
        wanted = set()
        for library, (_, objects) in libraries.items():
            wanted.update(objects)
            wanted.update(self.neighbours(library))
        for program in self.programs:
            wanted.add(program)
        for name in wanted:
            target = self.build / name
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(self.original.path / name, target, follow_symlinks=False)
        for folder in self.include_folders():
            self.copy_links(folder)
        self.link_the_rest(self.original.path, self.build)

    def neighbours(self, library):
        """A library and the names by which it is found."""
        folder = (self.original.path / library).parent
        stem = Path(library).name.split(".so")[0] + ".so"
        return [str(path.relative_to(self.original.path)) for path in folder.glob(stem + "*")]

    def include_folders(self):
        found = set()
        for name in self.objects:
            for word in shlex.split(self.original.commands[name]["command"]):
                path = Path(word.removeprefix("-I"))
                if path.is_absolute() and path.is_dir() and path.is_relative_to(self.original.path) \
                        and path != self.original.path:
                    found.add(path)
        return found

    def copy_links(self, folder):
        """Headers in the build are often links to those of the project."""
        for path in folder.rglob("*"):
            target = self.moved(path)
            target.parent.mkdir(parents=True, exist_ok=True)
            if path.is_dir():
                continue
            real = path.resolve()
            if not target.exists():
                ours = real.is_relative_to(self.original.source) or real.is_relative_to(self.original.path)
                target.symlink_to(self.moved(real) if path.is_symlink() and ours else real)

    @staticmethod
    def link_the_rest(original, copy):
        for path in original.iterdir():
            if not (copy / path.name).exists():
                (copy / path.name).symlink_to(path)

    def environment(self, **more):
        return {**os.environ, "TMPDIR": str(self.temporary), **more}

    def shell(self, command):
        with open(self.log, "wb") as log:
            return self.processes.run(["/bin/sh", "-c", command], cwd=self.build, stdout=log, stderr=log,
                                      env=self.environment(CCACHE_DISABLE="1")) == 0

    def compile(self):
        """The bytes of the objects that the unit reaches, or None when one does not compile."""
        found = []
        for name in self.objects:
            # Without notes for a debugger, so that equal code makes equal objects.
            command = self.rewrite(self.original.commands[name]["command"]) + " -g0"
            (self.build / name).unlink(missing_ok=True)
            if not self.shell(command):
                return None
            found.append((self.build / name).read_bytes())
        return b"".join(found)

    def link(self):
        return all(self.shell(link) for link in self.links)

    def test(self, program, test_filter, cpu_seconds):
        """The exit status of a test program, None when it took too long; what it printed is in the log."""
        limits = "ulimit -c 0; "
        if cpu_seconds:
            limits += f"ulimit -t {cpu_seconds}; "
        if not self.is_sanitized:
            limits += f"ulimit -v {MEMORY_KIB}; "
        command = ["/bin/sh", "-c", limits + 'exec "$@"', "sh", f"./{program}", "--gtest_fail_fast",
                   f"--gtest_filter={test_filter}"]
        head_command = ["head", "-c", str(OUTPUT_BYTES)]
        with open(self.log, "wb") as log, \
                subprocess.Popen(head_command, stdin=subprocess.PIPE, stdout=log) as head:
            status = self.processes.run(command, cwd=self.build, stdout=head.stdin, stderr=head.stdin,
                                        timeout=10 * cpu_seconds if cpu_seconds else None,
                                        env=self.environment(LD_LIBRARY_PATH=self.library_path))
        return None if status in (-signal.SIGXCPU, -signal.SIGKILL) else status

    def output(self):
        return self.log.read_text(errors="replace")


# ---- trying one change after the other ----

Verdict = collections.namedtuple("Verdict", "what by")


class Trial:
    """The mutants of a unit against its tests, with one workshop for each job."""

    def __init__(self, options, build, unit, text, programs, folder):
        self.options = options
        self.programs = programs
        self.text = text
        self.processes = Processes()
        self.lock = threading.Lock()
        self.killers = {program: collections.deque(maxlen=REMEMBERED_KILLERS) for program in programs}
        self.known = {}  # verdicts by the bytes of the objects
        self.idle = []
        for job in range(options.jobs):
            self.idle.append(Workshop(folder / str(job), build, unit, programs, self.processes))
        self.originals = {}
        self.cpu_seconds = options.timeout

    def prepare(self):
        """Builds and tests the unchanged unit; learns how long its tests take."""
        for workshop in self.idle:
            workshop.unit.write_text(self.text)
            self.originals[workshop] = workshop.compile()
            if self.originals[workshop] is None or not workshop.link():
                raise Trouble("the unchanged unit does not build:\n" + workshop.output()[-4000:])
        slowest = 0
        for program in self.programs:
            before = cpu_time_of_children()
            status = self.idle[0].test(program, self.options.filter, None)
            if status != 0:
                raise Trouble(f"{program} fails without a change (exit status {status}):\n" +
                              self.idle[0].output()[-2000:])
            slowest = max(slowest, cpu_time_of_children() - before)
        if not self.cpu_seconds:
            self.cpu_seconds = int(3 * slowest) + 3
        return slowest

    def try_mutant(self, mutant):
        with self.lock:
            workshop = self.idle.pop()
        try:
            return self.judge(workshop, mutant)
        finally:
            with self.lock:
                self.idle.append(workshop)

    def judge(self, workshop, mutant):
        workshop.unit.write_text(mutant.apply(self.text))
        objects = workshop.compile()
        if objects is None:
            return Verdict("did not compile", "")
        if objects == self.originals[workshop]:
            return Verdict("same code", "")
        # Two changes may come to the same.
        key = hash(objects)
        if key not in self.known:
            self.known[key] = self.run_tests(workshop) if workshop.link() else Verdict("did not compile", "")
        return self.known[key]

    def run_tests(self, workshop):
        """Those tests first that noticed other changes."""
        for program in self.programs:
            killers = ":".join(self.killers[program])
            if killers:
                verdict = self.run_program(workshop, program, killers)
                if verdict:
                    return verdict
            test_filter = self.options.filter
            if killers:
                test_filter += (":" if "-" in test_filter else "-") + killers
            verdict = self.run_program(workshop, program, test_filter)
            if verdict:
                return verdict
        return Verdict("survived", "")

    def run_program(self, workshop, program, test_filter):
        status = workshop.test(program, test_filter, self.cpu_seconds)
        if status == 0:
            return None
        killer = failed_test(workshop.output())
        if killer:
            with self.lock:
                killers = self.killers[program]
                if killer in killers:
                    killers.remove(killer)
                killers.appendleft(killer)
        return Verdict("timed out" if status is None else "killed", killer or program)


def failed_test(output):
    """The test that failed first, or else the one that did not return; None when nothing tells."""
    failed = re.search(r"^\[  FAILED  \] (\w[^\s,]*)", output, re.M)
    begun = re.findall(r"^\[ RUN      \] (\S+)", output, re.M)
    return failed[1] if failed else begun[-1] if begun else None


def cpu_time_of_children():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


# ---- the command ----

def line_range(text):
    match = re.fullmatch(r"(\d+)(?:-(\d+))?", text)
    if not match:
        raise argparse.ArgumentTypeError(f"'{text}' is no line and no range of lines")
    return range(int(match[1]), int(match[2] or match[1]) + 1)


def kind_list(text):
    kinds = text.split(",")
    for kind in kinds:
        if kind not in mutants.KINDS:
            raise argparse.ArgumentTypeError(f"unknown kind '{kind}'; there are {', '.join(mutants.KINDS)}")
    return kinds


def positive(text):
    if not text.isdigit() or int(text) == 0:
        raise argparse.ArgumentTypeError(f"'{text}' is no positive number")
    return int(text)


def parse_options(arguments):
    parser = argparse.ArgumentParser(
        prog="mutate", description="Makes one-line changes of a unit's source, one at a time, runs the "
        "unit's tests against each and lists the changes that no test notices.", epilog=EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("unit", metavar="UNIT", help="a source or header, or its name, such as numemath")
    parser.add_argument("--build", metavar="DIR", help="the build directory (build/linux64)")
    parser.add_argument("--test", metavar="PROGRAM", action="append",
                        help="a test program to run, instead of SUBSYSTEM_test; may be repeated")
    parser.add_argument("--filter", metavar="FILTER", default="*", help="the tests to run (--gtest_filter)")
    parser.add_argument("--line", metavar="A-B", type=line_range, action="append",
                        help="only changes of these lines; may be repeated")
    parser.add_argument("--kind", metavar="K,...", type=kind_list, help="only changes of these kinds")
    parser.add_argument("--strings", action="store_true", help="also change string literals")
    parser.add_argument("--limit", metavar="N", type=positive, help="a random sample of N changes")
    parser.add_argument("--seed", metavar="N", type=int, help="the sample of an earlier run")
    parser.add_argument("--jobs", metavar="N", type=positive, default=1, help="changes tried at a time (1)")
    parser.add_argument("--timeout", metavar="S", type=positive, help="seconds that a test program may take")
    parser.add_argument("--list", action="store_true", help="print the changes and run nothing")
    parser.add_argument("--verbose", action="store_true", help="print every change with what became of it")
    return parser.parse_args(arguments)


def choose(options, text):
    strings = options.strings or "string" in (options.kind or ())
    chosen = mutants.find_mutants(text, strings)
    if options.line:
        chosen = [mutant for mutant in chosen if any(mutant.line in lines for lines in options.line)]
    if options.kind:
        chosen = [mutant for mutant in chosen if mutant.kind in options.kind]
    if options.limit and options.limit < len(chosen):
        seed = options.seed if options.seed is not None else random.SystemRandom().randrange(1 << 31)
        say(f"mutate: {options.limit} of {len(chosen)} changes, --seed {seed}")
        picked = set(random.Random(seed).sample(range(len(chosen)), options.limit))
        chosen = [mutant for i, mutant in enumerate(chosen) if i in picked]
    return chosen


def say(text):
    print(text, file=sys.stderr, flush=True)


def run(options):
    build = Build(options.build or Path(__file__).resolve().parents[2] / "build/linux64")
    unit = find_unit(build.source, options.unit)
    name = unit.relative_to(build.source)
    text = unit.read_text()
    chosen = choose(options, text)
    if options.list:
        for mutant in chosen:
            print(f"{name}:{mutant.line}: {mutant.kind}: {mutant.note}")
        return 0
    programs = [build.find_program(test) for test in options.test or ()] or [find_test(build, unit)]
    if None in programs:
        raise Usage("no such test program: " + options.test[programs.index(None)])
    for program in programs:
        build.bring_up_to_date(program)
    build = Build(build.path)  # it may have been configured anew
    with tempfile.TemporaryDirectory(prefix="mutate-", ignore_cleanup_errors=True) as folder:
        trial = Trial(options, build, unit, text, programs, Path(folder))
        # From here on nothing is torn away; what runs comes to its end soon.
        on_interrupt(trial.processes.stop)
        slowest = trial.prepare()
        say(f"mutate: {name}, {len(chosen)} changes, {', '.join(programs)} takes {slowest:.1f} s")
        return report(options, trial, name, chosen)


def report(options, trial, name, chosen):
    """Tries the changes, in order, and prints the survivors as they are found."""
    count = collections.Counter()
    started = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        tries = [pool.submit(trial.try_mutant, mutant) for mutant in chosen]
        for mutant, result in zip(chosen, tries):
            try:
                verdict = result.result()
            except Interrupted:
                continue
            count[verdict.what] += 1
            if verdict.what == "survived" or options.verbose:
                fate = f" [{' by '.join(filter(None, verdict))}]" if options.verbose else ""
                print(f"{name}:{mutant.line}: {mutant.kind}: {mutant.note}{fate}", flush=True)
    rest = len(chosen) - sum(count.values())
    parts = [f"{count[what]} {what}" for what in
             ("killed", "survived", "timed out", "did not compile", "same code")]
    if rest:
        parts.append(f"{rest} not tried")
    print(f"{name}: {', '.join(parts)} ({time.monotonic() - started:.0f} s)", flush=True)
    return 130 if trial.processes.stopped else int(count["survived"] > 0)


def on_interrupt(react):
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, lambda *_: react())


def give_up():
    raise Interrupted


def main(arguments):
    on_interrupt(give_up)
    try:
        return run(parse_options(arguments))
    except Usage as trouble:
        say(f"mutate: {trouble}")
        return 2
    except Trouble as trouble:
        say(f"mutate: {trouble}")
        return 3
    except Interrupted:
        return 130


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
