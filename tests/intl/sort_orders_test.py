"""The shipped sort orders: what their generator makes, and how the library puts the characters of each
set beside ICU's collator. Both need the Python module icu; without it, or with another version of ICU
than the files name, the tests say so and pass over."""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import build, run, source_dir

home = source_dir / "home"
committed = {path.relative_to(home / "charsets"): path.read_bytes()
             for path in (home / "charsets").glob("*/*.srt")}


def python_with_icu():
    """This Python or the system's, whichever has the module; and the version of ICU."""
    for python in dict.fromkeys((sys.executable, "/usr/bin/python3")):
        found = subprocess.run([python, "-c", "import icu; print(icu.ICU_VERSION)"],
                               capture_output=True, text=True)
        if found.returncode == 0:
            return python, found.stdout.strip()
    raise unittest.SkipTest("no Python here has the module icu")


class SortOrders(unittest.TestCase):
    def setUp(self):
        self.python, version = python_with_icu()
        named = re.search(rb"collation of ICU (\S+)\.\n", committed[Path("iso_1/dictionary.srt")])[1].decode()
        if version != named:
            self.skipTest(f"the files are from ICU {named}, and here is ICU {version}")

    def test_committed_files_are_generated(self):
        with tempfile.TemporaryDirectory() as directory:
            run(self.python, source_dir / "data/generate_sort_orders.py", directory)
            generated = {path.relative_to(directory): path.read_bytes()
                         for path in Path(directory).glob("*/*.srt")}
        self.assertEqual(sorted(generated), sorted(committed))
        for path, text in generated.items():
            self.assertEqual(text, committed[path], path)

    def test_orders_agree_with_icu(self):
        ranks = run(self.python, source_dir / "tests/intl/sort_order_ranks.py")
        checked = run(Path(build.binary_dir) / "bin/sort_order_ranks", input=ranks,
                      env={**os.environ, "ZARVEK": str(home)})
        self.assertEqual(checked, f"{len(committed)} orders\n")

    # That a wrong rank is noticed at all.
    def test_differences_are_told(self):
        checker = Path(build.binary_dir) / "bin/sort_order_ranks"
        for ranks, told in (("61 2\n62 1\n", "iso_1 nocase: 61 to 62 is -1"), ("61 1\n41 2\n", "61 to 41 is 0"),
                            ("", "0 orders")):
            text = f"order iso_1 nocase\n{ranks}" if ranks else ""
            done = subprocess.run([checker], input=text, capture_output=True, text=True,
                                  env={**os.environ, "ZARVEK": str(home)})
            self.assertIn(told, done.stdout)
            self.assertEqual(done.returncode, 1 if ranks else 0)


if __name__ == "__main__":
    project.main()
