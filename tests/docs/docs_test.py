"""What the documents show is what the command prints and what the examples say."""
import json
import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

import project
from project import build, source_dir

command = Path(build.binary_dir) / "bin" / "zrvcomn"
conversions = (source_dir / "docs" / "conversions.md").read_text()


def zrvcomn(*words):
    return subprocess.run([command, *words], capture_output=True, text=True, check=True).stdout


def table(text, heading):
    """The rows of the first table under a heading, without its head."""
    rows = re.findall(r"^\| (.*) \|$", text.split(f"## {heading}\n")[1].split("\n## ")[0], re.M)
    return [[cell.strip("`") for cell in row.split(" | ")] for row in rows[1:]]


def shown_commands():
    """Each line of the documents that begins with a prompt, with what stands under it."""
    for path in project.tracked_files("docs/*.md", "README.md"):
        for block in re.findall(r"(?:^    .*\n(?:\n(?=    ))?)+", path.read_text(), re.M):
            for piece in re.split(r"^    \$ ", block, flags=re.M)[1:]:
                line, _, printed = piece.partition("\n")
                yield path.name, line, re.sub(r"^    ", "", printed, flags=re.M)


class Docs(unittest.TestCase):
    maxDiff = None

    def test_types(self):
        told = [(int(code), name, width) for code, name, _, width, *_ in table(conversions, "The types")]
        types = [json.loads(line) for line in zrvcomn("types", "--json").splitlines()]
        self.assertEqual(told, [(each["code"], each["name"],
                                 "-" if each["width"] is None else str(each["width"]))
                                for each in types])

    def test_styles(self):
        printed = zrvcomn("date", "format", "--all-styles", "2001-01-05T13:30:15.123456")
        told = re.findall(r"^\| (\d+) \| `(.*)` \|$",
                          conversions.split("## The styles of dates\n")[1], re.M)
        self.assertEqual(told, [tuple(line.split("\t", 1)) for line in printed.splitlines()])

    # docs/names.md is what its generator makes of the headers.
    def test_names(self):
        made = subprocess.run(["python3", source_dir / "script" / "support" / "name_index.py",
                               build.c_compiler], capture_output=True, text=True, check=True).stdout
        self.assertEqual((source_dir / "docs" / "names.md").read_text(), made)

    # So is the manual page of the library.
    def test_library_manual(self):
        made = subprocess.run(["python3", source_dir / "script" / "support" / "library_manual.py"],
                              capture_output=True, text=True, check=True).stdout
        self.assertEqual((source_dir / "docs" / "libzrvcomn.3").read_text(), made)

    def test_manuals_have_no_warning(self):
        groff = shutil.which("groff")
        if not groff:
            self.skipTest("groff is not installed")
        for name, page in (("zrvcomn.1", zrvcomn("manual")),
                           ("libzrvcomn.3", (source_dir / "docs" / "libzrvcomn.3").read_text())):
            with self.subTest(name):
                done = subprocess.run([groff, "-man", "-ww", "-z", "-Tutf8"], input=page, text=True,
                                      capture_output=True)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    # What the help shows stands in the manual page, each chapter with its own.
    def test_manual_of_the_command(self):
        page = (zrvcomn("manual").replace("\\e", "\\").replace("\\-", "-").replace("\\(aq", "'")
                .replace("\\(dq", '"').replace("\\(ga", "`").replace("\\(ha", "^").replace("\\(ti", "~"))
        chapters = dict(re.findall(r"^\.SS (\S+)\n(.*?)(?=^\.S[SH])", page, re.M | re.S))
        commands = re.findall(r"^  (\w+) {2,}\S", zrvcomn("--help").split("Subcommands:")[1], re.M)
        self.assertEqual(list(chapters), commands)
        for name in commands:
            # What is typed in a place of its own, and what the options mean, word by word.
            told = zrvcomn("help", name).split("Print this help message and exit\n")[1]
            chapter = " ".join(re.sub(r"^\.\w+ ?|\\&", "", chapters[name], flags=re.M)
                               .replace('"', " ").split())
            for word in told.replace('"', " ").replace(",", " ").split():
                self.assertIn(word, chapter.replace(",", " "), name)

    # The page of quirks names tests that there are.
    def test_quirks(self):
        tests = {".".join(found) for path in project.tracked_files("tests/*.cpp")
                 for found in re.findall(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", path.read_text(), re.M)}
        rows = re.findall(r"^\| (.*) \| (.*) \| (.*) \|$",
                          (source_dir / "docs" / "quirks.md").read_text(), re.M)
        rows = [row for row in rows if row[0] != "What"]
        self.assertGreater(len(rows), 100)
        for what, why, names in rows:
            with self.subTest(what):
                self.assertRegex(why, r"^[SVWFMP](: .+)?$")
                self.assertRegex(names, r"^`\w+\.\w+`(, `\w+\.\w+`)*$")
                self.assertEqual(set(re.findall(r"\w+\.\w+", names)) - tests, set())

    # A program that is shown is one of the examples, as it stands, and what it prints stands below.
    def test_programs(self):
        programs = [path.read_text().split("/* prints:\n")
                    for path in project.tracked_files("examples/*.c")]
        count = 0
        for path in project.tracked_files("docs/*.md", "README.md"):
            text = path.read_text()
            for program in re.findall(r"^```c\n(.*?)^```\n", text, re.M | re.S):
                printed = [told for source, told in programs if source.rstrip() == program.rstrip()]
                self.assertEqual(len(printed), 1, path.name)
                told = printed[0].removesuffix("*/\n")
                self.assertTrue(f"```\n{told}```" in text or f"`{told.rstrip()}`" in text, path.name)
                count += 1
        self.assertGreaterEqual(count, 3)

    # Commands that are shown print what is shown, their messages behind it; "..." stands for any number
    # of lines.
    def test_commands(self):
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith(("LC_", "ZRVNCL_")) and name not in ("LANG", "ZARVEK")}
        environment |= {"PATH": f"{command.parent}:{os.environ['PATH']}", "LC_ALL": "C"}
        count = 0
        for name, line, printed in shown_commands():
            if "mine." in line:  # a file of the reader's own
                continue
            with self.subTest(f"{name}: {line}"):
                done = subprocess.run(["bash", "-c", line], cwd=source_dir, env=environment,
                                      capture_output=True)
                told = [each for each in printed.splitlines() if each]
                lines = [each for each in (done.stdout + done.stderr).decode().splitlines() if each]
                if "..." in told:
                    rest = iter(lines)
                    for each in told:
                        self.assertTrue(each == "..." or each in rest, each)  # in that order
                else:
                    self.assertEqual(lines, told)
            count += 1
        self.assertGreater(count, 10)


if __name__ == "__main__":
    project.main()
