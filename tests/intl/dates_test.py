"""The shipped names of months and days are what their generator makes of the locale data, where that is
installed in the version that the files name."""
import importlib.util
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import source_dir

sys.path.insert(0, str(source_dir / "data"))
spec = importlib.util.spec_from_file_location("generate_dates", source_dir / "data/generate_dates.py")
generator = importlib.util.module_from_spec(spec)
spec.loader.exec_module(generator)

shipped = source_dir / "home/locales/message"


def files(folder):
    return {path.parent.name: path.read_text(encoding="utf-8") for path in Path(folder).glob("*/common.loc")}


class DateNames(unittest.TestCase):
    maxDiff = None

    def test_committed_files_are_generated(self):
        self.assertEqual(len(files(shipped)), 43)
        if not generator.CLDR.is_dir():
            self.skipTest("unicode-cldr-core is not installed: nothing to generate from")
        dates = generator.Dates(generator.CLDR)
        named = (shipped / "us_english/common.loc").read_text().split("CLDR ")[1].split(":")[0]
        if dates.version != named:
            self.skipTest(f"unicode-cldr-core is version {dates.version}, the files are from {named}")
        with tempfile.TemporaryDirectory() as folder:
            generator.write_files(folder, "common.loc", dates.file_of)
            self.assertEqual(files(shipped), files(folder))

    def test_short_names(self):
        shorten = generator.shorten
        self.assertEqual(shorten(["jan.", "febr."], 5), ["jan.", "febr."])
        self.assertEqual(shorten(["jan.", "febr."], 4), ["jan", "febr"])
        self.assertEqual(shorten(["jan.", "febr."], 3), ["jan", "feb"])
        # Whole characters, and no half of a conjunct.
        self.assertEqual(shorten(["ééé"], 5), ["éé"])
        self.assertEqual(shorten(["अप्रैल"], 9), ["अप"])

    def test_full_names(self):
        fit = generator.fit_names
        self.assertEqual(fit(["first", "second"], ["f.", "s."], 6), ["first", "second"])
        self.assertEqual(fit(["first", "second"], ["f.", "s."], 5), ["first", "s."])
        self.assertEqual(fit(["first", "second"], ["f.", "s."], 4), ["f.", "s."])


if __name__ == "__main__":
    project.main()
