"""The maps between the single-byte sets are what their generator makes of the character maps."""
import gzip
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import run, source_dir

generator = source_dir / "data/generate_comfou.py"
charmaps = Path("/usr/share/i18n/charmaps")


class Comfou(unittest.TestCase):
    maxDiff = None

    @unittest.skipUnless((charmaps / "IBM437.gz").exists(), "the package locales is not installed")
    def test_committed_maps_are_generated(self):
        self.assertEqual((source_dir / "generic/src/intl/comfou_maps.h").read_text(),
                         run(sys.executable, generator))

    def test_maps_follow_from_the_characters(self):
        """Three letters, one of them nowhere but in the first set, and one that a set has twice."""
        sets = {"ISO-8859-1": {0xE1: 0xE1, 0xE2: 0xE2, 0xE3: 0x100}, "IBM850": {0xA0: 0xE1, 0x83: 0xE2},
                "IBM437": {0xA0: 0xE1, 0xA1: 0xE2}, "HP-ROMAN8": {0xC4: 0xE1},
                "MACINTOSH": {0x87: 0xE1, 0x88: 0xE1}}
        with tempfile.TemporaryDirectory() as folder:
            for name, characters in sets.items():
                with gzip.open(Path(folder) / f"{name}.gz", "wt") as file:
                    file.write("CHARMAP\n% a comment\n")
                    for byte, character in characters.items():
                        file.write(f"<U{character:04X}>     /x{byte:02x}         LETTER\n")
                    file.write("END CHARMAP\n")
            text = run(sys.executable, generator, "--charmaps", folder)
        maps = {}
        for line in text.splitlines():
            if line.startswith("inline constexpr"):
                name = line.split()[3]
                maps[name] = {}
            elif line.startswith("    /* "):
                _, first, _, *cells = line.replace(",", "").split()
                maps[name].update(enumerate((int(cell, 16) for cell in cells), int(first, 16)))
        found = {name: {byte: entry for byte, entry in entries.items() if entry != 0}
                 for name, entries in maps.items()}
        self.assertEqual(found["iso1_to_cp850"], {0xE1: 0xA0, 0xE2: 0x83})
        self.assertEqual(found["iso1_to_mac"], {0xE1: 0x87})
        self.assertEqual(found["mac_to_iso1"], {0x87: 0xE1, 0x88: 0xE1})
        self.assertEqual(found["cp850_to_cp437"], {0xA0: 0xA0})  # 0x83 lies before the map
        self.assertEqual(len(maps), 20)


if __name__ == "__main__":
    project.main()
