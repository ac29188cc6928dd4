"""The shipped locales are what their generator makes of the list, and each of their rows can be loaded."""
import importlib.util
import sys
import unittest

import project
from project import source_dir

sys.path.insert(0, str(source_dir / "data"))
spec = importlib.util.spec_from_file_location("generate_locales", source_dir / "data/generate_locales.py")
generator = importlib.util.module_from_spec(spec)
spec.loader.exec_module(generator)

home = source_dir / "home"


class Locales(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.locales = generator.load(home / "charsets")
        cls.rows = list(cls.locales.rows())

    def test_committed_files_are_generated(self):
        files = self.locales.files()
        for path, text in files.items():
            self.assertEqual((home / "locales" / path).read_text(encoding="utf-8"), text, path)
        for folder in ("numeric", "money"):
            shipped = {f"{folder}/{path.name}" for path in (home / "locales" / folder).iterdir()}
            self.assertEqual(shipped, {path for path in files if path.startswith(folder)})

    def test_names_are_told_once(self):
        names = [row[0] for row in self.rows]
        self.assertEqual(sorted(names), sorted(set(names)))

    def test_files_of_every_row_are_there(self):
        for name, language, charset, order, *_ in self.rows:
            for path in (f"locales/message/{language}/common.loc", f"charsets/{charset}/charset.loc",
                         f"charsets/{charset}/{order}.srt"):
                self.assertTrue((home / path).is_file(), f"{name}: {path}")

    def test_every_language_has_a_name(self):
        self.assertEqual({row[1] for row in self.rows},
                         {path.name for path in (home / "locales/message").iterdir()})

    def test_rows(self):
        rows = {row[0]: row[1:] for row in self.rows}
        self.assertEqual(rows["default"], ("us_english", "utf8", "binary"))
        self.assertEqual(rows["de_DE"], ("german", "iso_1", "german_phonebook"))
        self.assertEqual(rows["de_DE@euro"], ("german", "iso15", "german_phonebook"))
        self.assertEqual(rows["de"], rows["de_DE"])
        self.assertEqual(rows["es_MX"], ("spanish", "iso_1", "spanish", "", "es_MX", "es_MX"))
        self.assertEqual(rows["ru_RU.CP1251"], ("russian", "cp1251", "russian"))
        self.assertEqual(rows["th_TH"], ("thai", "tis620", "thai"))
        self.assertEqual(rows["de_DE.UTF-8"], ("german", "utf8", "binary"))
        self.assertEqual(rows["ja_JP.eucJP"], ("japanese", "eucjis", "binary"))
        self.assertEqual(rows["fr_CA"], ("french", "iso_1", "dictionary", "", "fr_CA", "fr_CA"))
        self.assertNotIn("fr_CA@euro", rows)


if __name__ == "__main__":
    project.main()
