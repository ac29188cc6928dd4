"""The stored key table is what its generator prints, and the generator takes another table."""
import re
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import run, source_dir

folder = source_dir / "generic/src/security"
generator = folder / "generate_ennkeys.py"


def octets(text):
    return bytes(int(octet, 16) for octet in re.findall(r"0x([0-9a-f]{2})", text))


class Ennkeys(unittest.TestCase):
    def test_committed_table_is_generated(self):
        self.assertEqual((folder / "ennkeys_table.h").read_text(), run(sys.executable, generator))

    def test_another_table(self):
        table = bytes((7 * i + i // 256) % 256 for i in range(8192))
        with tempfile.NamedTemporaryFile() as file:
            file.write(table)
            file.flush()
            text = run(sys.executable, generator, "--table", file.name)
        self.assertEqual(octets(text), table)
        committed = (folder / "ennkeys_table.h").read_text()
        self.assertEqual(re.sub("0x..", "0x", text), re.sub("0x..", "0x", committed))

    def test_wrong_size_is_refused(self):
        for size in (0, 8191, 8193):
            with self.subTest(size), tempfile.NamedTemporaryFile() as file:
                file.write(bytes(size))
                file.flush()
                with self.assertRaisesRegex(AssertionError, f"8192 bytes, this file has {size}"):
                    run(sys.executable, generator, "--table", file.name)


if __name__ == "__main__":
    project.main()
