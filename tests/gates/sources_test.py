"""The sources as a compiler sees them: traced exits, no warnings."""
import json
import re
import shlex
import sys
import unittest
from pathlib import Path

import project
from project import build, in_parallel, run, source_dir


class Warnings(unittest.TestCase):
    """Every unit of the libraries without a warning from clang too, with the flags of this build; those
    of gcc are errors where script/test builds."""

    def test_no_warning_with_clang(self):
        folders = [name for name in ("generic", "linux", "platform") if (source_dir / name).is_dir()]
        run(sys.executable, source_dir / "script/support/check_warnings.py", "--quick",
            build.binary_dir, "clang", *folders)


class Trace(unittest.TestCase):
    """Every exit of a function of the contract that returns a code passes through COMN_TRACE."""

    # The conversions from integers report by their result alone, and the trace cannot trace itself.
    exempt = re.compile(r"comn_u?i[1248]to\w+|com_errtrace")

    # The refusals of the provider, which a trace is not to tell apart from one another.
    untraced_failures = {"comn_keypair_privkey_decrypt"}

    # The quick allocation of a pool that only allocates.
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

    def test_exits(self):
        """One test, since all of its parts read the same expansion of every unit."""
        functions = (self.exported & self.declared) | self.untraced_successes
        with self.subTest("every function is looked at"):
            self.assertGreater(len(functions), 200)
            self.assertEqual(functions - self.exits.keys(), set())
        with self.subTest("exits are traced"):
            trouble = [f"{name}: return {expression}" for name in sorted(functions)
                       if not self.exempt.fullmatch(name)
                       for expression in self.untraced.get(name, [])
                       if not (name in self.untraced_successes and expression == "1")
                       and not (name in self.untraced_failures and expression == "0")]
            self.assertEqual(trouble, [], "\n" + "\n".join(trouble))
        with self.subTest("exempt exits are not traced"):
            self.assertEqual([name for name in functions if self.exempt.fullmatch(name)
                              and any("trace(" in expression for expression in self.exits[name])], [])
        with self.subTest("what is no code is not traced"):
            self.assertEqual(self.traced_others, set())
        with self.subTest("refusals are not traced"):
            for name in self.untraced_failures:
                self.assertEqual(self.untraced[name], ["0"])
        with self.subTest("the quick allocation succeeds without the trace"):
            for name in self.untraced_successes:
                self.assertIn("1", self.untraced[name])


if __name__ == "__main__":
    project.main()
