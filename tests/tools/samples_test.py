"""The sample data is what its description says."""
import csv
import datetime
import unicodedata
import unittest
from decimal import Decimal

import project

path = project.source_dir / "samples" / "countries.csv"


class Samples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = path.read_bytes().decode("utf-8", "strict")
        cls.rows = list(csv.DictReader(cls.text.splitlines(), strict=True))

    def column(self, name):
        return [row[name] for row in self.rows]

    def test_shape(self):
        self.assertEqual(len(self.rows), 195)
        self.assertEqual(list(self.rows[0]), ["code", "name", "native_name", "capital", "population",
                                              "area_km2", "gdp_usd", "founded"])
        self.assertFalse([row for row in self.rows if None in row or None in row.values()])
        self.assertTrue(self.text.endswith("\n"))
        self.assertNotIn("\r", self.text)

    def test_names(self):
        for name in ("code", "name", "native_name"):
            values = self.column(name)
            self.assertEqual(len(set(values)), len(values), name)
        self.assertEqual(self.column("name"), sorted(self.column("name")))
        for row in self.rows:
            self.assertRegex(row["code"], r"\A[A-Z]{3}\Z")
            for name in ("name", "native_name", "capital"):
                self.assertTrue(row[name])
                self.assertEqual(row[name], row[name].strip())
                self.assertEqual(row[name], unicodedata.normalize("NFC", row[name]))
                self.assertTrue(all(c.isprintable() or c == "\u200d" for c in row[name]), row)
        scripts = {unicodedata.name(row["native_name"][0]).split()[0] for row in self.rows}
        self.assertGreaterEqual(scripts, {"LATIN", "GREEK", "CYRILLIC", "ARABIC", "HEBREW", "ARMENIAN",
                                          "GEORGIAN", "DEVANAGARI", "BENGALI", "SINHALA", "THAI", "LAO",
                                          "KHMER", "MYANMAR", "TIBETAN", "ETHIOPIC", "THAANA", "HANGUL",
                                          "CJK"})

    def test_population(self):
        values = [int(value) for value in self.column("population")]
        self.assertGreater(sum(values), 7_900_000_000)
        self.assertLess(sum(values), 8_100_000_000)
        self.assertEqual((min(values), max(values)), (764, 1_428_627_663))

    def test_area(self):
        values = [Decimal(value) for value in self.column("area_km2")]
        # The land of the Earth without Antarctica and Greenland, inland waters included.
        self.assertGreater(sum(values), 130_000_000)
        self.assertLess(sum(values), 137_000_000)
        self.assertEqual((min(values), max(values)), (Decimal("0.49"), Decimal("17098246.0")))

    def test_product(self):
        values = [Decimal(value) for value in self.column("gdp_usd") if value]
        self.assertEqual(len(values), 194)
        for value in values:
            self.assertEqual(value.as_tuple().exponent, -2)
        self.assertGreater(sum(values), 95 * 10**12)
        self.assertLess(sum(values), 105 * 10**12)
        # Plausible for each head of the population, too: a slipped digit shows.
        for row in self.rows:
            if row["gdp_usd"]:
                per_head = Decimal(row["gdp_usd"]) / int(row["population"])
                self.assertTrue(200 < per_head < 250_000, row)

    def test_dates(self):
        dates = {row["code"]: datetime.date.fromisoformat(row["founded"]) for row in self.rows}
        self.assertEqual(dates["SMR"], datetime.date(301, 9, 3))
        self.assertLessEqual(max(dates.values()), datetime.date(2011, 7, 9))
        self.assertGreaterEqual(sum(date.year < 1753 for date in dates.values()), 10)


if __name__ == "__main__":
    project.main()
