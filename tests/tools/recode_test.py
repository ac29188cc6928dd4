"""zrvcomn recode: what comes out of the filter, what is told of losses, and how it exits."""
import random
import subprocess
import tempfile
import unittest
from pathlib import Path

import project
from project import build

command = Path(build.binary_dir) / "bin" / "zrvcomn"
database = Path("/usr/share/unicode/UnicodeData.txt")


def recode(source, destination, text, *words):
    done = subprocess.run([command, "recode", "--from", source, "--to", destination, *words], input=text,
                          capture_output=True)
    return done.returncode, done.stdout, done.stderr.decode()


class Recode(unittest.TestCase):
    maxDiff = None

    def test_texts(self):
        for source, destination, text, expected in (
                ("utf8", "iso_1", "déjà vu\n".encode(), b"d\xe9j\xe0 vu\n"),
                ("iso_1", "utf8", b"d\xe9j\xe0 vu\n", "déjà vu\n".encode()),
                ("cp1252", "utf8", b"\x80", "€".encode()),
                ("utf8", "sjis", "日本".encode(), b"\x93\xfa\x96\x7b"),
                ("UTF-8", "utf16", "a\U0001F600".encode(), b"a\0\x3d\xd8\0\xde"),
                ("utf16", "utf8", b"a\0\0\0\0\x01", b"a\0\xc4\x80"),
                ("utf8", "cp037", b"Az\0", b"\xc1\xa9\0"),
                ("cp037", "utf8", b"\xc1\xa9\0", b"Az\0"),
                ("utf8", "cp930", "A日B".encode(), b"\xc1\x0e\x45\x62\x0f\xc2"),
                ("utf8", "utf8", b"", b"")):
            with self.subTest((source, destination, text)):
                self.assertEqual(recode(source, destination, text), (0, expected, ""))

    def test_losses_are_counted(self):
        self.assertEqual(recode("utf8", "iso_1", "a€b€".encode()),
                         (1, b"a?b?", "zrvcomn recode: 2 characters were replaced\n"))
        self.assertEqual(recode("utf8", "iso_1", b"a\xffb"),
                         (1, b"a?b", "zrvcomn recode: 1 character was replaced\n"))
        self.assertEqual(recode("utf8", "iso_1", "€".encode(), "--substitute", "<é>"),
                         (1, b"<\xe9>", "zrvcomn recode: 1 character was replaced\n"))
        self.assertEqual(recode("utf8", "iso_1", "a€".encode(), "--substitute", "")[:2], (1, b"a"))

    def test_losses_are_reported(self):
        text = "é€\nab".encode() + b"\xe2\x82" + "日".encode() + b"\n\xc3"
        name = " EURO SIGN" if database.exists() else ""
        with tempfile.NamedTemporaryFile() as file:
            file.write(text)
            file.flush()
            for words, place, piped in (([file.name], file.name, b""), (["-"], "standard input", text)):
                code, out, err = recode("utf8", "iso_1", piped, "--on-loss", "report", *words)
                self.assertEqual((code, out), (1, b"\xe9?\nab??\n?"))
                self.assertEqual(err.splitlines(), [
                    f"zrvcomn recode: {place}:1:2: byte 2: 0xe282ac: U+20AC{name} is not in iso_1",
                    f"zrvcomn recode: {place}:2:3: byte 8: 0xe282: no character of utf8",
                    f"zrvcomn recode: {place}:2:4: byte 10: 0xe697a5: U+65E5 CJK UNIFIED IDEOGRAPH-65E5"
                    " is not in iso_1",
                    f"zrvcomn recode: {place}:3:1: byte 14: 0xc3: no character of utf8",
                    "zrvcomn recode: 4 characters were replaced"])

    def test_stops_at_the_first_loss(self):
        code, out, err = recode("utf8", "iso_1", "é€é€".encode(), "--on-loss", "stop")
        self.assertEqual((code, out), (1, b"\xe9"))
        self.assertEqual(len(err.splitlines()), 1)
        self.assertIn("standard input:1:2: byte 2: 0xe282ac: U+20AC", err)
        self.assertEqual(recode("utf16", "utf8", b"a\0b", "--on-loss", "stop")[:2], (1, b"a"))

    def test_invalid_bytes(self):
        """Maximal runs that could have begun a character, in sets of several kinds."""
        for source, text, expected, losses in (
                ("utf8", b"\xc3A", b"?A", 1), ("utf8", b"\xf0\x9f\x98A", b"?A", 1), ("utf8", b"\xe2\xc3\xa9", b"?\xc3\xa9", 1),
                ("utf8", b"\x80\x80", b"??", 2), ("sjis", b"\x93", b"?", 1), ("gb18030", b"\x81\x30", b"?", 1),
                ("utf16", b"\x00\xd8a\0", b"?a", 1), ("utf16", b"\x00\xdca\0", b"?a", 1), ("utf16", b"a\0\xe9", b"a?", 1),
                ("utf16", b"\x00\xd8", b"?", 1), ("cp1252", b"\x81a", b"?a", 1)):
            with self.subTest((source, text)):
                code, out, err = recode(source, "utf8", text, "--on-loss", "report")
                self.assertEqual((code, out, len(err.splitlines()) - 1), (1, expected, losses), err)

    # Characters, shifts and NUL at every place of a block's end.
    # Files come in whole blocks, and each place of the pattern falls on the end of one.
    def test_characters_are_not_split_between_blocks(self):
        for name, coding in (("utf8", "utf-8"), ("sjis", "shift_jis"), ("eucjis", "euc_jp"), ("gb18030", "gb18030"),
                             ("utf16", "utf-16-le")):
            for shift in range(7):
                text = "x" * shift + "日本\U0001F600é\0語".encode(coding, "ignore").decode(coding) * 12000
                self.assertGreater(len(text.encode(coding)), 65536)
                for source, destination, given, expected in (
                        (name, "utf8", text.encode(coding), text.encode()),
                        ("utf8", name, text.encode(), text.encode(coding))):
                    with self.subTest((source, destination, shift)), tempfile.NamedTemporaryFile() as file:
                        file.write(given)
                        file.flush()
                        code, out, err = recode(source, destination, b"", file.name)
                        self.assertEqual((code, err), (0, ""))
                        self.assertTrue(out == expected)

    def test_pieces_of_any_length(self):
        text = "日本\U0001F600é\0語" * 20000
        pieces = random.Random(1)
        for name, coding in (("utf8", "utf-8"), ("utf16", "utf-16-le")):
            filter = subprocess.Popen([command, "recode", "--from", name, "--to", "iso_1", "--substitute", ""],
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                      bufsize=0)
            rest = text.encode(coding)
            while rest:
                length = pieces.randrange(1, 50)
                filter.stdin.write(rest[:length])
                rest = rest[length:]
            self.assertTrue(filter.communicate()[0] == b"\xe9\0" * 20000, name)

    def test_shifts_reach_over_blocks(self):
        text = "A" + "日本語" * 30000 + "B\n"
        code, shifted, err = recode("utf8", "cp930", text.encode())
        self.assertEqual((code, err), (0, ""))
        self.assertEqual(recode("cp930", "utf8", shifted), (0, text.encode(), ""))
        # One run of two-byte characters, longer than a block.
        ideograph = recode("utf8", "cp930", "日".encode())[1]
        run = b"\x0e" + ideograph[1:3] * 70000 + b"\x0f"
        self.assertEqual(recode("cp930", "utf8", run), (0, "日".encode() * 70000, ""))

    def test_compressed(self):
        """The standard's own examples, and what a text without NUL cannot hold."""
        japanese = ("\u3000\u266a\u30ea\u30f3\u30b4\u53ef\u611b\u3044\u3084\u53ef\u611b\u3044\u3084\u30ea\u30f3\u30b4"
                    "\u3002\u534a\u4e16\u7d00\u3082\u524d\u306b\u6d41\u884c\u3057\u305f\u300c\u30ea\u30f3\u30b4\u306e"
                    "\u6b4c\u300d\u304c\u3074\u3063\u305f\u308a\u3059\u308b\u304b\u3082\u3057\u308c\u306a\u3044\u3002")
        features = "A\u00df\u0401\u015f\u00df\u01df\uf000\U0010ffff"
        for source, expected in (
                ("d6 6c 20 66 6c 69 65 df 74", "Öl fließt"),
                ("12 9c be c1 ba b2 b0", "Москва"),
                ("08 00 1b 4c ea 16 ca d3 94 0f 53 ef 61 1b e5 84 c4 0f 53 ef 61 1b e5 84 c4 16 ca d3 94 08 02 0f"
                 "53 4a 4e 16 7d 00 30 82 52 4d 30 6b 6d 41 88 4c e5 97 9f 08 0c 16 ca d3 94 15 ae 0e 6b 4c 08 0d"
                 "8c b4 a3 9f ca 99 cb 8b c2 97 cc aa 84 08 02", japanese),
                ("41 df 12 81 03 5f 10 df 1b 03 df 1c 88 80 0b bf ff ff 0d 0a"
                 "41 10 df 12 81 03 5f 10 df 13 df 14 80 15 ff", features + "\r\n" + features),
                # Surrogates as units, among bytes and among units; a command as a unit; NUL in characters.
                ("0e d8 3d 0e de 00 0f d8 3d de 00 f0 d8 3d f0 de 00 d8 3d f0 de 00", "\U0001F600" * 4),
                ("0f f0 e0 01 00 41 00 20 e0 41 00 42 02 00 0b 00 00 80", "\ue001A A\0B\u0080\U00010000"),
                ("0f e9 08 85 0f f1 20 01 81 01 00", "\u0405\U00010081\0")):
            with self.subTest(source):
                self.assertEqual(recode("rcsu", "utf8", bytes.fromhex(source)), (0, expected.encode(), ""))

    def test_compressed_that_is_none(self):
        for source, expected, losses in (
                ("41 0c 42", b"A?B", 1), ("18 00 41", b"?A", 1), ("1a a8 81", "?\u0401".encode(), 1),
                ("0f f2 4e 00", "?\u4e00".encode(), 1), ("0e de 00 41", b"?A", 1), ("0e d8 00 41", b"?A", 1),
                ("0e d8 00", b"?", 1), ("0e d8 00 0e de", b"?", 1), ("0e d8", b"?", 1), ("41 01", b"A?", 1),
                ("0b 00", b"?", 1), ("0f 4e", b"?", 1), ("0f d8 00 4e 00", "?\u4e00".encode(), 1),
                ("0f d8 00 e1 41", b"?A", 1)):
            with self.subTest(source):
                code, out, err = recode("rcsu", "utf8", bytes.fromhex(source), "--on-loss", "report")
                self.assertEqual((code, out, len(err.splitlines()) - 1), (1, expected, losses), err)
        self.assertIn(":1:3: byte 3: 0x0e65e5: U+65E5",
                      recode("rcsu", "cp1251", b"\x12\x81\x82\x0e\x65\xe5\n", "--on-loss", "report")[2])

    # What a command has set holds in the next block, whatever the block's end cuts.
    def test_compressed_streams(self):
        pieces = ["plain text, ", "Москва ", "日本語の", "é", "ελληνικά ", "\U0001F600\U00010081", "\0", "日", "ünï\n",
                  "\ue001\uf2ff", "עברית", "ไทย", "\u3042\u30a2", "\x01\x0f"]
        generator = random.Random(17)
        for length in (1, 2, 3, 40, 30000, 60000):
            text = "".join(generator.choice(pieces) for _ in range(length))
            with self.subTest(length):
                code, packed, err = recode("utf8", "rcsu", text.encode())
                self.assertEqual((code, err), (0, ""))
                self.assertEqual(recode("rcsu", "utf8", packed), (0, text.encode(), ""))
                self.assertEqual(recode("rcsu", "rcsu", packed)[0], 0)
        # One run for each state, longer than a block, its end at each place of a character.
        for head, one, character in ((b"\x12", b"\x9c", "М"), (b"\x0f", b"\x65\xe5", "日"),
                                     (b"\x0f", b"\xd8\x3d\xde\x00", "\U0001F600"),
                                     (b"", b"\x0e\xd8\x3d\x0e\xde\x00", "\U0001F600"), (b"", b"\x03\x9c", "М"),
                                     (b"\x0b\x60\x01", b"\x81", "\U00010081")):
            for shift in range(6):
                source = b"x" * shift + head + one * 70000
                with self.subTest((one, shift)):
                    self.assertEqual(recode("rcsu", "utf8", source),
                                     (0, ("x" * shift + character * 70000).encode(), ""))

    def test_places_behind_a_block(self):
        text = ("é" * 99 + "\n").encode() * 1000 + "ab€".encode()
        err = recode("utf8", "iso_1", text, "--on-loss", "report")[2]
        self.assertIn(f":1001:3: byte {len(text) - 3}: 0xe282ac", err)

    def test_random_bytes_through_every_set(self):
        names = sorted(path.stem for path in (project.source_dir / "home/charsets/unicode").iterdir())
        self.assertGreater(len(names), 90)
        generator = random.Random(5)
        for name in names + ["utf8", "utf16", "iso_1", "ascii_8", "rcsu"]:
            data = generator.randbytes(3000)
            with self.subTest(name):
                code, out, err = recode(name, "utf8", data)
                self.assertIn(code, (0, 1), err)
                out.decode()  # what comes out is well-formed
                self.assertEqual(err == "", code == 0)

    def test_wrong_usage(self):
        for words, fragment in (
                ((), "--from"), (("--from", "utf8"), "--to"),
                (("--from", "utf9", "--to", "utf8"), "did you mean 'utf8'?"),
                (("--from", "decmcs", "--to", "utf8"), "no converter"),
                (("--from", "utf8", "--to", "iso_1", "--substitute", "€"), "'€' is not in iso_1"),
                (("--from", "utf8", "--to", "iso_1", "--on-loss", "ignore"), "there is no way 'ignore'"),
                (("--from", "utf8", "--to", "iso_1", "/nonexistent"), "cannot open"),
                (("--from", "utf8", "--to", "iso_1", "--", "/nonexistent"), "cannot open"),
                (("--from", "utf8", "--to", "iso_1", "a", "--", "b"), "one file at a time"),
                (("--from", "utf8", "--to", "iso_1", "--", "a", "b"), "one file at a time")):
            with self.subTest(words):
                done = subprocess.run([command, "recode", *words], stdin=subprocess.DEVNULL, capture_output=True)
                self.assertEqual((done.returncode, done.stdout), (2, b""))
                self.assertIn(fragment, done.stderr.decode())

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([command, "recode", "--from", "utf8", "--to", "iso_1"], input=b"a", stdout=full,
                                  stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 1)

    def test_matrix(self):
        def matrix(*words):
            done = subprocess.run([command, "charset", "matrix", *words], capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            return done.stdout.splitlines()

        grid = [line.split() for line in matrix()]
        self.assertEqual([len(marks) for _, marks in grid], [len(grid)] * len(grid))
        names = [name for name, _ in grid]
        for source, destination, mark in (("iso_1", "cp850", "b"), ("iso_1", "utf8", "u"), ("iso_1", "decmcs", "."),
                                          ("utf8", "utf8", "="), ("decmcs", "iso_1", ".")):
            self.assertEqual(grid[names.index(source)][1][names.index(destination)], mark)
        self.assertIn("utf8       through Unicode", matrix("latin1"))
        self.assertIn('{"from":"iso_1","to":"cp850","engines":["unicode","table"]}', matrix("--json", "iso_1"))


if __name__ == "__main__":
    project.main()
