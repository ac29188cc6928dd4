"""The shipped identifiers are what their generator makes of the list, and the generator refuses what
is no list."""
import sys
import tempfile
import unittest

import project
from project import run, source_dir

folder = source_dir / "data"
generator = folder / "generate_objectid.py"


class Objectid(unittest.TestCase):
    maxDiff = None

    def generate(self, text):
        with tempfile.NamedTemporaryFile("w", encoding="ascii") as file:
            file.write(text)
            file.flush()
            return run(sys.executable, generator, "--list", file.name)

    def test_committed_file_is_generated(self):
        self.assertEqual((source_dir / "home/config/objectid.dat").read_text(), run(sys.executable, generator))

    def test_a_list(self):
        text = self.generate("# a comment\narc 1.2\n[float8 charset]\n7 first Second x  # behind it\n"
                             "[charset]\n8 UTF-8 utf-8\n")
        sections = text.split("\n\n")
        self.assertTrue(sections[0].startswith("; "))
        self.assertEqual(sections[1], "[charset]\n1.2.0.7 = first, Second, second, x\n1.2.0.8 = UTF-8, utf-8")
        self.assertEqual([section for section in sections[2:] if "=" in section],
                         ["[float8]\n1.2.10.7 = first, Second, x"])
        self.assertEqual(len(sections), 13)

    def test_wrong_lists_are_refused(self):
        for text, message in (
                ("[charset]\n1 a\n", "no arc"),
                ("arc 1.2\n[charsets]\n", "line 2: no such class"),
                ("arc 1.2\n1 a\n", "line 2: neither"),
                ("arc 1.2\n[charset]\n1\n", "line 3: neither"),
                ("arc 1.2\n[charset]\nx a\n", "line 3: neither"),
                ("arc 1.2\n[charset]\n1 a\n1 b\n", "line 4: 1 is taken"),
                ("arc 1.2\n[charset]\n1 a b\n2 c B\n", "line 4: b is taken"),
                ("arc 1.2\n[charset]\n1 a,b\n", "line 3: no name: a,b"),
                ("arc 1.2\n[charset]\n1 9a\n", "line 3: no name: 9a")):
            with self.subTest(text), self.assertRaisesRegex(AssertionError, message):
                self.generate(text)


if __name__ == "__main__":
    project.main()
