"""The sources: headers that stand alone, layers that hold, traced exits, no warnings, one format."""
import json
import os
import re
import shlex
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import project
from project import build, run, source_dir, tracked_files

public_headers = tracked_files("include/*.h", "platform/zrvintl/zrvintl.h",
                               "platform/zrvunic/zrvunic.h", "platform/velcrypto/velcrypto.h",
                               "platform/velssfs/velssfs.h")


def in_parallel(function, items):
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        return list(pool.map(function, items))


class Headers(unittest.TestCase):
    """Each public header alone, and twice, as a client would include it."""

    def compile_each(self, compiler, suffix, *flags):
        def compile_one(header):
            with tempfile.NamedTemporaryFile("w", suffix=suffix) as unit:
                unit.write(f"#include <zrvcomn/{header.name}>\n" * 2 + "int unit_is_not_empty;\n")
                unit.flush()
                run(compiler, *flags, "-pedantic", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                    "-I" + str(Path(build.binary_dir) / "include"), unit.name)

        self.assertGreater(len(public_headers), 0)
        in_parallel(compile_one, public_headers)

    def test_headers_as_c99(self):
        self.compile_each(build.c_compiler, ".c", *project.c_flags, "-std=c99")

    def test_headers_as_cxx20(self):
        self.compile_each(build.cxx_compiler, ".cpp", *project.cxx_flags, "-std=c++20")

    def test_headers_as_c99_with_clang(self):
        self.compile_each(build.clang, ".c", *project.c_flags, "-std=c99")

    def test_headers_as_cxx20_with_clang(self):
        self.compile_each(build.clang, ".cpp", *project.cxx_flags, "-std=c++20")


class Warnings(unittest.TestCase):
    """Every unit of the libraries without a warning from clang too, with the flags of this build; those
    of gcc are errors where script/test builds."""

    def test_no_warning_with_clang(self):
        folders = [name for name in ("generic", "linux", "platform") if (source_dir / name).is_dir()]
        run(sys.executable, source_dir / "script/support/check_warnings.py", "--quick",
            build.binary_dir, "clang", *folders)


class Trace(unittest.TestCase):
    """Every exit of an exported function that returns a code passes through COMN_TRACE."""

    # The conversions from integers report by their result alone, and the trace cannot trace itself.
    exempt = re.compile(r"comn_u?i[1248]to\w+|com_errtrace")

    # The refusals of the provider, which a trace is not to tell apart from one another.
    untraced_failures = {"comn_keypair_privkey_decrypt"}

    # The one exit of any other kind: the quick allocation of a pool that only allocates.
    untraced_successes = {"com___alloconly_malloc"}

    @classmethod
    def setUpClass(cls):
        entries = json.loads((Path(build.binary_dir) / "compile_commands.json").read_text())
        roots = [source_dir / "generic", source_dir / "linux"]
        units = [entry for entry in entries
                 if any(root in Path(entry["file"]).parents for root in roots)]
        map_text = (source_dir / "generic/src/libzrvcomn.map").read_text()
        cls.exported = set(re.findall(r"\w+(?=;)", map_text.partition("ZRVCOMN_16")[2].partition("}")[0]))
        cls.declared, cls.exits, cls.untraced, cls.traced_others = set(), {}, {}, set()
        for text in in_parallel(cls.expand, units):
            cls.declared.update(re.findall(r"\bCS_RETCODE (\w+)\([^;{}()]*\) noexcept\s*;", text))
            exits = cls.find_exits(text, "CS_RETCODE")
            cls.exits.update(exits)
            cls.traced_others.update(
                name for kind in ("CS_INT", "int", "CS_BOOL") for name, others in cls.find_exits(text, kind).items()
                if any("comn::trace(" in expression for expression in others))
            cls.untraced.update({name: cls.untraced_exits(name, exits) for name in exits})

    @staticmethod
    def expand(unit):
        """A unit as the compiler sees it, with the places of checks and traces cut out of it."""
        command = shlex.split(unit["command"])
        command = command[:command.index("-o")] + ["-E", "-P", unit["file"]]
        text = run(*command, cwd=unit["directory"])
        return re.sub(r"\[\] *\{ *return comn::Place\{[^}]*\}; *\}", "here", text)

    @staticmethod
    def find_exits(text, kind):
        """What each function of a type returns: {name: [expressions]}."""
        exits = {}
        for match in re.finditer(rf"\b{kind} (\w+)\([^;{{}}]*?\) noexcept\s*\{{", text):
            depth, end = 1, match.end()
            while depth > 0:
                depth += {"{": 1, "}": -1}.get(text[end], 0)
                end += 1
            body = text[match.end():end]
            exits[match[1]] = [" ".join(found.split()) for found in re.findall(r"\breturn\b([^;]*);", body)]
        return exits

    @classmethod
    def untraced_exits(cls, name, exits):
        """The exits of a function that neither pass through the trace nor hand over, in the same unit,
        to a function all of whose exits do."""
        def hands_over(expression):
            call = re.fullmatch(r"(\w+)\(.*\)", expression)
            return (call and call[1] in exits and call[1] != name
                    and not cls.untraced_exits(call[1], exits))

        return [expression for expression in exits[name]
                if not (expression.startswith("comn::trace((") and expression.endswith("), here)"))
                and not hands_over(expression)]

    def functions(self):
        """The exported functions that return a code, those with an exception by name included."""
        return (self.exported & self.declared) | self.untraced_successes

    def test_every_function_is_looked_at(self):
        self.assertGreater(len(self.functions()), 200)
        self.assertEqual(self.functions() - self.exits.keys(), set())

    def test_exits_are_traced(self):
        trouble = [f"{name}: return {expression}" for name in sorted(self.functions())
                   if not self.exempt.fullmatch(name)
                   for expression in self.untraced.get(name, [])
                   if not (name in self.untraced_successes and expression == "1")
                   and not (name in self.untraced_failures and expression == "0")]
        self.assertEqual(trouble, [], "\n" + "\n".join(trouble))

    def test_exempt_exits_are_not_traced(self):
        trouble = [name for name in self.functions() if self.exempt.fullmatch(name)
                   and any("trace(" in expression for expression in self.exits[name])]
        self.assertEqual(trouble, [])

    def test_what_is_no_code_is_not_traced(self):
        self.assertEqual(self.traced_others, set())

    def test_refusals_are_not_traced(self):
        for name in self.untraced_failures:
            self.assertEqual(self.untraced[name], ["0"])

    def test_the_quick_allocation_succeeds_without_the_trace(self):
        for name in self.untraced_successes:
            self.assertIn("1", self.untraced[name])


class Layering(unittest.TestCase):
    """The include lines against layering.txt."""

    @classmethod
    def setUpClass(cls):
        cls.allowed = {}
        for line in (Path(__file__).parent / "layering.txt").read_text().splitlines():
            line = line.partition("#")[0].strip()
            if line:
                folder, _, below = line.partition(":")
                cls.allowed[folder] = below.split()
        sources = tracked_files("*.h", "*.c", "*.cpp")
        cls.files = [path.relative_to(source_dir).as_posix() for path in sources]
        cls.headers = [name for name in cls.files if name.endswith(".h")]

    def folder(self, name):
        """The folder of the layering file that a source belongs to, or None."""
        owners = [folder for folder in self.allowed if name.startswith(folder + "/")]
        return max(owners, key=len, default=None)

    def includes(self, name):
        """The files of ours that a file includes, as (line, file); an unknown one is None."""
        text = (source_dir / name).read_text()
        for match in re.finditer(r'^[ \t]*#[ \t]*include[ \t]*(?:"(.+?)"|<(zrvcomn/.+?)>)', text, re.M):
            target = match[1] or match[2]
            line = text.count("\n", 0, match.start()) + 1
            own = os.path.normpath(Path(name).parent / target)
            if target.startswith("zrvcomn/"):
                base = target.removeprefix("zrvcomn/")
                found = [header for header in (f"include/{base}", f"platform/zrvintl/{base}",
                                               f"platform/zrvunic/{base}",
                                               f"platform/velcrypto/{base}",
                                               f"platform/velssfs/{base}")
                         if header in self.headers]
            elif own in self.headers:
                found = [own]
            else:
                found = [header for header in self.headers if header.endswith("/" + target)]
            yield line, found[0] if len(found) == 1 else None

    def test_layers_have_no_cycle(self):
        reached = set()
        for folder, below in self.allowed.items():  # each line names only folders above it
            self.assertLessEqual(set(below), reached, folder)
            reached.add(folder)

    def test_every_source_has_a_layer(self):
        stray = [name for name in self.files
                 if name.split("/")[0] in ("generic", "linux", "platform") and not self.folder(name)]
        self.assertEqual(stray, [])

    def test_includes_follow_the_layers(self):
        trouble = []
        for name in self.files:
            folder = self.folder(name)
            if folder is None:
                continue
            for line, target in self.includes(name):
                if target is None:
                    trouble.append(f"{name}:{line}: no such header of ours, or more than one")
                elif self.folder(target) not in (folder, *self.allowed[folder]):
                    trouble.append(f"{name}:{line}: {folder} must not include {target}")
        self.assertEqual(trouble, [])

    def test_includes_have_no_cycle(self):
        graph = {name: [target for _, target in self.includes(name) if target] for name in self.headers}
        done, path = set(), []

        def visit(name):
            self.assertNotIn(name, path, "a cycle of includes")
            if name not in done:
                path.append(name)
                for target in graph[name]:
                    visit(target)
                path.pop()
                done.add(name)

        for name in graph:
            visit(name)


class Format(unittest.TestCase):
    def test_clang_format(self):
        version = run(build.clang_format, "--version")
        if " version 14." not in version:
            self.skipTest("formatting is defined by clang-format 14, not by " + version)
        files = tracked_files("*.h", "*.c", "*.cpp")
        self.assertGreater(len(files), 0)
        run(build.clang_format, "--dry-run", "-Werror", *files)


if __name__ == "__main__":
    project.main()
