"""The shipped tables are what their generator makes of the mappings, and the mappings are what the sources of
this system say, where they are installed in the version that the import names."""
import ctypes
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import run, source_dir

folder = source_dir / "data"
sys.path.insert(0, str(folder))
import charset_mappings  # noqa: E402
import import_mappings  # noqa: E402


class Mappings(unittest.TestCase):
    def test_committed_tables_are_generated(self):
        shipped = source_dir / "home/charsets/unicode"
        with tempfile.TemporaryDirectory() as scratch:
            run(sys.executable, folder / "generate_unicode_tables.py", scratch)
            made = {path.name: path.read_bytes() for path in Path(scratch).iterdir()}
        self.assertEqual(sorted(made), sorted(path.name for path in shipped.iterdir()))
        for name, table in made.items():
            self.assertTrue((shipped / name).read_bytes() == table, name)

    def test_a_mapping_is_read_as_it_is_written(self):
        for name in ("sjis", "big5hk", "cp850", "gb18030"):
            mapping = charset_mappings.load(name)
            text = charset_mappings.dump(mapping).partition("\n")[2]
            committed = (charset_mappings.DIRECTORY / f"{name}.txt").read_text().partition("\n")[2]
            self.assertTrue(text == committed, name)

    def test_committed_mappings_are_imported(self):
        try:
            ctypes.CDLL(f"libicuuc.so.{import_mappings.ICU_VERSION}")
        except OSError:
            self.skipTest("the version of ICU that the mappings come from is not installed")
        if not import_mappings.CHARMAPS.is_dir():
            self.skipTest("no charmaps of the C library")
        made = {name: import_mappings.make(cid, name, form, source)
                for cid, name, form, source in import_mappings.sources()}
        self.assertEqual(sorted(made), charset_mappings.names())
        for name, mapping in made.items():
            text = charset_mappings.dump(mapping, made.get(import_mappings.BASES.get(name)))
            self.assertTrue((charset_mappings.DIRECTORY / f"{name}.txt").read_text() == text, name)


if __name__ == "__main__":
    project.main()
