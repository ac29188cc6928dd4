"""The command as its users see it: what it prints where, and how it exits."""
import errno
import json
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import tempfile
import termios
import time
import unittest
from pathlib import Path

import project
from project import build, run

command = Path(build.binary_dir) / "bin" / "zrvcomn"


class Result:
    def __init__(self, done):
        self.code = done.returncode
        self.raw = done.stdout
        self.out = done.stdout.decode("utf-8", "surrogateescape")
        self.err = done.stderr.decode("utf-8", "surrogateescape")


def zrvcomn(*words, stdin=b"", **environment):
    env = {name: value for name, value in os.environ.items() if name not in ("TERM", "NO_COLOR")}
    return Result(subprocess.run([command, *words], input=stdin, capture_output=True,
                                 env=env | environment))


def convert(source, destination, *words, **options):
    return zrvcomn("convert", "--from", source, "--to", destination, *words, **options)


def fields(result):
    """The rows of --plain."""
    return [line.split("\t") for line in result.out.splitlines()]


class Command(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.scratch = Path(tempfile.mkdtemp(prefix="zrvcomn-command-"))
        self.addCleanup(shutil.rmtree, self.scratch)

    def check(self, result, code, out, err=""):
        self.assertEqual((result.out, result.err, result.code), (out, err, code))

    # Wrong usage: exit status 2, one line that says what was wrong, nothing on standard output.
    def check_usage(self, result, *fragments):
        self.assertEqual((result.code, result.out), (2, ""))
        self.assertRegex(result.err, r"\Azrvcomn[^\n]*: [^\n]+\n\Z")
        for fragment in fragments:
            self.assertIn(fragment, result.err)

    # ---- values from arguments ----

    def test_values_and_statuses(self):
        self.check(
            convert("smallint", "tinyint", "--", "-1", "300", "42"), 1,
            "value  result  length  status\n"
            "-1     0       1       CS_CONV_OVERFLOW\n"
            "300    255     1       CS_CONV_OVERFLOW\n"
            "42     42      1       CS_SUCCEED\n",
            "zrvcomn convert: value 1: '-1': CS_CONV_OVERFLOW\n"
            "zrvcomn convert: value 2: '300': CS_CONV_OVERFLOW\n")

    def test_all_converted(self):
        self.check(convert("int", "bigint", "--plain", "42", "0"), 0,
                   "42\t42\t8\tCS_SUCCEED\n0\t0\t8\tCS_SUCCEED\n")

    def test_hex(self):
        self.check(convert("int", "int", "--hex", "258"), 0,
                   "value  result  length  hex       status\n"
                   "258    258     4       02010000  CS_SUCCEED\n")

    # A value that is none is reported, and the others are converted.
    def test_unreadable_value(self):
        self.check(convert("int", "char", "--plain", "--hex", "1", "x1", "2147483648", "7"), 1,
                   "1\t1\t1\t31\tCS_SUCCEED\n"
                   "x1\t\t\t\tCS_CONV_SYNTAX\n"
                   "2147483648\t\t\t\tCS_CONV_OVERFLOW\n"
                   "7\t7\t1\t37\tCS_SUCCEED\n",
                   "zrvcomn convert: value 2: 'x1' is no int: CS_CONV_SYNTAX\n"
                   "zrvcomn convert: value 3: '2147483648' does not fit int: CS_CONV_OVERFLOW\n")

    # Both bounds of every integer, and one step beyond each.
    def test_integer_bounds(self):
        for name, low, high in (
                ("tinyint", 0, 255), ("smallint", -32768, 32767),
                ("int", -2147483648, 2147483647),
                ("bigint", -9223372036854775808, 9223372036854775807),
                ("usmallint", 0, 65535), ("uint", 0, 4294967295),
                ("ubigint", 0, 18446744073709551615)):
            with self.subTest(name):
                result = convert(name, "char", "--plain", "--", str(low), str(high), str(high + 1))
                self.assertEqual([row[1:] for row in fields(result)],
                                 [[str(low), str(len(str(low))), "CS_SUCCEED"],
                                  [str(high), str(len(str(high))), "CS_SUCCEED"],
                                  ["", "", "CS_CONV_OVERFLOW"]])
                below = convert(name, "char", "--plain", "--", str(low - 1))
                self.assertEqual(below.code, 1)
                self.assertRegex(fields(below)[0][3], "CS_CONV_(OVERFLOW|SYNTAX)")

    def test_integer_spelling(self):
        result = convert("int", "int", "--plain", "--", " 42 ", "+7", "- 3", "007", "4 2", "--5",
                         "1e3", "0x10", "٣")
        self.assertEqual([(row[1], row[3]) for row in fields(result)],
                         [("42", "CS_SUCCEED"), ("7", "CS_SUCCEED"), ("-3", "CS_SUCCEED"),
                          ("7", "CS_SUCCEED")] + [("", "CS_CONV_SYNTAX")] * 4 +
                         [("3", "CS_SUCCEED")])

    def test_floats(self):
        for name, length in (("real", "4"), ("float", "8")):
            row = fields(convert("int", name, "--plain", "--", "-7"))[0]
            self.assertEqual((float(row[1]), row[2:]), (-7.0, [length, "CS_SUCCEED"]))

    def test_bit(self):
        self.assertEqual([row[1] for row in fields(convert("int", "bit", "--plain", "0", "5"))],
                         ["0", "1"])

    def test_hexadecimal_text(self):
        self.check(convert("char", "binary(2)", "--plain", "0xABC", "abcdef", "xyz", ""), 1,
                   "0xABC\t0x0abc\t2\tCS_SUCCEED\n"
                   "abcdef\t0xabcd\t2\tCS_CONV_TRUNCATED\n"
                   "xyz\t\t0\tCS_CONV_SYNTAX\n"
                   "\t\t\tCS_CONV_SYNTAX\n",
                   "zrvcomn convert: value 2: 'abcdef': CS_CONV_TRUNCATED\n"
                   "zrvcomn convert: value 3: 'xyz': CS_CONV_SYNTAX\n"
                   "zrvcomn convert: value 4: '' is no char: CS_CONV_SYNTAX\n")

    # Of a record, the length field and what is in use; the record itself is 258 bytes long.
    def test_records(self):
        self.check(convert("int", "varchar", "--plain", "--hex", "12345"), 0,
                   "12345\t12345\t258\t05003132333435\tCS_SUCCEED\n")
        self.check(convert("int", "varbinary", "--plain", "--hex", "1"), 0,
                   "1\t0x01000000\t258\t040001000000\tCS_SUCCEED\n")

    def test_default_values(self):
        self.check(convert("void", "int", "--plain", "--hex", "x"), 0,
                   "x\t0\t4\t00000000\tCS_SUCCEED\n")
        self.check(convert("void", "char(5)", "--plain", "--format", "padblank", "x"), 0,
                   "x\t     \t5\tCS_SUCCEED\n")
        result = convert("void", "numeric(10,2)", "--plain", "--hex", "x")
        self.assertEqual(fields(result)[0][3][:6], "0a0200")

    def test_numerics(self):
        self.check(convert("numeric(9,2)", "decimal(20,1)", "--plain", "--hex", "--", "0.10", "-1.30"), 0,
                   "0.10\t0.1\t12\t140100000000000000000001\tCS_SUCCEED\n"
                   "-1.30\t-1.3\t12\t14010100000000000000000d\tCS_SUCCEED\n")
        self.check(convert("int", "numeric(10,2)", "--plain", "7"), 0, "7\t7.00\t35\tCS_SUCCEED\n")
        self.check(convert("numeric(5)", "varchar", "--plain", " +7 "), 0,
                   " +7 \t7\t258\tCS_SUCCEED\n")
        result = convert("numeric(5,2)", "numeric(5,1)", "--plain", "1.25", "1.234", "1000", "1e1", "")
        self.assertEqual(result.code, 1)
        self.assertEqual([row[-1] for row in fields(result)],
                         ["CS_CONV_TRUNCATED", "CS_CONV_TRUNCATED", "CS_CONV_OVERFLOW",
                          "CS_SUCCEED", "CS_SUCCEED"])
        self.assertEqual([row[1] for row in fields(result)[3:]], ["10.0", "0.0"])
        self.assertEqual(fields(result)[0][1], "1.2")

    def test_total(self):
        self.check(convert("numeric(5,2)", "numeric(5,2)", "--total", "--", "0.10", "-0.25", "7"), 0,
                   "6.85\n")
        self.check(convert("int", "numeric(77)", "--total", "1"), 0, "1\n")
        self.check(convert("numeric(77)", "numeric(77)", "--total", "9" * 77), 0, "9" * 77 + "\n")
        # It is whole or it is none, and the message blames what is to blame.
        self.check(convert("numeric(77)", "numeric(77)", "--total", "9" * 77, "1"), 1, "",
                   "zrvcomn convert: --total: the sum does not fit a numeric: CS_CONV_OVERFLOW\n")
        self.check(convert("numeric(5,2)", "numeric(5,2)", "--total", "1", "x", "2"), 1, "",
                   "zrvcomn convert: value 2: 'x' is no numeric(5,2): CS_CONV_SYNTAX\n"
                   "zrvcomn convert: --total: there is no sum: 1 value is missing in it\n")
        # That of nothing has the scale of its type.
        self.check(convert("int", "numeric(5,2)", "--total", "-"), 0, "0.00\n")
        self.check_usage(convert("int", "bigint", "--total", "1"), "--total", "bigint")

    # Words behind '--' are values, in addition to those before it; a number needs none.
    def test_values_behind_dashes(self):
        for words in (["5", "--", "-7"], ["--", "5", "-7"], ["5", "-7"]):
            self.check(convert("int", "int", "--plain", *words), 0,
                       "5\t5\t4\tCS_SUCCEED\n-7\t-7\t4\tCS_SUCCEED\n")
        result = convert("char", "binary", "--plain", "--", "--hex", "--", "-h")
        self.assertEqual([row[0] for row in fields(result)], ["--hex", "--", "-h"])

    # ---- formats and lengths ----

    def test_formats(self):
        for words, expected in (
                (["--format", "padblank"], "3432202020"),
                (["--format", "padnull"], "3432000000"),
                (["--format", "nullterm"], "343200"),
                (["--format", "nullterm,padblank"], "3432202000"),
                (["--format", "5"], "3432202000"),
                (["--format", "1|4"], "3432202000"),
                (["--format", "nullterm+4"], "3432202000"),
                ([], "3432")):
            with self.subTest(words):
                row = fields(convert("int", "char(5)", "--plain", "--hex", *words, "42"))[0]
                self.assertEqual(row[3:], [expected, "CS_SUCCEED"])
        row = fields(convert("int", "char(5)", "--plain", "--format", "6", "42"))[0]
        self.assertEqual(row[3], "CS_CONV_PADCONFLICT")

    def test_maxlength(self):
        row = fields(convert("int", "char(9)", "--plain", "--maxlength", "5", "12345"))[0]
        self.assertEqual(row[1:], ["12345", "5", "CS_SUCCEED"])
        row = fields(convert("int", "char", "--plain", "--maxlength", "4", "12345"))[0]
        self.assertEqual(row[1:], ["*", "1", "CS_CONV_OVERFLOW"])
        row = fields(convert("int", "binary", "--plain", "--maxlength", "2", "258"))[0]
        self.assertEqual(row[1:], ["0x0201", "2", "CS_CONV_TRUNCATED"])
        for destination in ("int", "varchar", "varbinary"):
            self.check_usage(convert("int", destination, "--maxlength", "0", "5"), "--maxlength",
                             destination + " has a fixed width")
            self.check_usage(convert("int", destination, "--format", "padblank", "5"), "--format",
                             destination + " has a fixed width")
        for source, destination in (("int", "char"), ("char", "binary")):
            self.check_usage(convert(source, destination, "--format", "escquote", "5"), "escquote")
        row = fields(convert("int", "char", "--plain", "--maxlength", "0", "5"))[0]
        self.assertEqual(row[1:], ["", "0", "CS_CONV_OVERFLOW"])

    # ---- the locale of the texts ----

    def test_locale(self):
        self.check(convert("char", "datetime", "--plain", "2 March 1999", "02/03/1999"), 0,
                   "2 March 1999\tMar  2 1999 12:00AM\t8\tCS_SUCCEED\n"
                   "02/03/1999\tFeb  3 1999 12:00AM\t8\tCS_SUCCEED\n")
        # Names, the order of the numbers, and the style of the result.
        self.check(convert("char", "datetime", "--plain", "--locale", "fr_FR.UTF-8",
                           "14 juillet 1989", "02/03/1999"), 0,
                   "14 juillet 1989\t14/07/89\t8\tCS_SUCCEED\n"
                   "02/03/1999\t02/03/99\t8\tCS_SUCCEED\n")
        row = fields(convert("char", "int", "--plain", "--locale", "fr_FR.UTF-8", "12"))[0]
        self.assertEqual(row[1:], ["12", "4", "CS_SUCCEED"])
        self.check(convert("int", "int", "--locale", "no_SUCH", "1", ZARVEK=str(self.scratch)), 1, "",
                   convert("int", "int", "1", ZARVEK=str(self.scratch)).err)
        missing = convert("int", "int", "--locale", "no_SUCH", "1")
        self.check_usage(missing, "there is no locale 'no_SUCH'")

    def test_charset(self):
        # A text is cut between its characters, and its wide digits are digits.
        three = "東京都".encode("shift_jis")
        row = fields(convert("char", "char(5)", "--plain", "--hex", "--charset", "Shift_JIS", three))[0]
        self.assertEqual(row[2:], ["4", three[:4].hex(), "CS_CONV_TRUNCATED"])
        row = fields(convert("char", "char(5)", "--plain", "--hex", three.decode("shift_jis")))[0]
        self.assertEqual(row[2:], ["3", "e69db1", "CS_CONV_TRUNCATED"])
        row = fields(convert("char", "int", "--plain", "--charset", "sjis",
                             "５６".encode("shift_jis")))[0]
        self.assertEqual(row[1:], ["56", "4", "CS_SUCCEED"])
        # In place of the locale's own set; the names of its dates are still those of the locale.
        march = "2 März 1999"
        for words, text in ((["--charset", "latin1"], march.encode("latin-1")), ([], march.encode())):
            row = fields(convert("char", "datetime", "--plain", "--locale", "de_DE.UTF-8", *words,
                                 text))[0]
            self.assertEqual(row[1:], ["02/03/99", "8", "CS_SUCCEED"])
        row = fields(convert("char", "datetime", "--plain", "--locale", "de_DE.UTF-8",
                             march.encode("latin-1")))[0]
        self.assertEqual(row[1:], ["", "0", "CS_CONV_SYNTAX"])
        self.check_usage(convert("int", "int", "--charset", "utf9", "1"), "'utf9'", "utf8")
        self.check_usage(convert("int", "int", "--charset", "", "1"), "--charset names no set")

    # Nothing of an earlier value shows where a failed conversion wrote nothing.
    def test_no_leftovers(self):
        rows = fields(convert("int", "char(1)", "--plain", "--hex", "7", "12"))
        self.assertEqual(rows[1][1:], ["\\x00", "1", "00", "CS_CONV_OVERFLOW"])

    # ---- type names ----

    def test_type_names(self):
        for name in ("INT", "Integer", "i4", " int "):
            self.assertEqual(convert(name, "char", "--plain", "5").out, "5\t5\t1\tCS_SUCCEED\n")
        self.assertEqual(convert("int", "Char ( 3 )", "--plain", "--format", "padblank", "5").out,
                         "5\t5  \t3\tCS_SUCCEED\n")

    def test_wrong_types(self):
        self.check_usage(convert("smalint", "int", "1"), "there is no type 'smalint'",
                         "did you mean 'smallint'?")
        self.check_usage(convert("", "int", "1"), "there is no type ''")
        self.check_usage(convert("int", "char(", "1"), "closing parenthesis")
        self.check_usage(convert("int", "char()", "1"), "length of char")
        self.check_usage(convert("int", "char(x)", "1"), "length of char")
        self.check_usage(convert("int", "char(-1)", "1"), "length of char")
        self.check_usage(convert("int", "char(99999999999)", "1"), "length of char")
        self.check_usage(convert("int", "int(4)", "1"), "int takes nothing")
        self.check_usage(convert("int", "numeric(78)", "1"), "precision", "77")
        self.check_usage(convert("int", "numeric(0,0)", "1"), "precision")
        self.check_usage(convert("int", "numeric(5,78)", "1"), "scale", "77")

    # A recognised pair without a function; this one never gets any.
    def test_no_conversion(self):
        self.check_usage(convert("int", "long", "1"),
                         "this release has no conversion from int to long")

    # A record that owns memory is nothing to show.
    def test_no_locators(self):
        for source, destination in (("char", "textlocator"), ("imagelocator", "char"),
                                    ("unitextlocator", "unitextlocator")):
            self.check_usage(convert(source, destination, "1"), "converts no locators")

    # 16-bit text shows as text, and its bytes as units; its length is in bytes.
    def test_unichar(self):
        self.check(convert("char", "unichar(20)", "--hex", "h\u00e9\u20ac", "\U0001F600",
                           "elf characters"), 1,
                   "value           result      length  hex                                       status\n"
                   "h\u00e9\u20ac             h\u00e9\u20ac         6       0068 00e9 20ac                            CS_SUCCEED\n"
                   "\U0001F600               \U0001F600           4       d83d de00                                 CS_SUCCEED\n"
                   "elf characters  elf charac  20      0065 006c 0066 0020 0063 0068 0061 0072 0061 0063  CS_CONV_TRUNCATED\n",
                   "zrvcomn convert: value 3: 'elf characters': CS_CONV_TRUNCATED\n")

    def test_unichar_back(self):
        text = "h\u00e9\u20ac\U0001F600"
        self.check(convert("unichar", "char", "--plain", "--hex", text), 0,
                   f"{text}\t{text}\t10\t{text.encode().hex()}\tCS_SUCCEED\n")
        self.check(convert("unitext", "int", "--plain", " 42 "), 0, " 42 \t42\t4\tCS_SUCCEED\n")
        self.check(convert("money", "unichar", "--plain", "--hex", "1.5"), 0,
                   "1.5\t1.50\t8\t0031 002e 0035 0030\tCS_SUCCEED\n")
        self.check(convert("unichar(4)", "char", "--plain", "ab", "abc"), 1,
                   "ab\tab\t2\tCS_SUCCEED\nabc\t\t\tCS_CONV_TRUNCATED\n",
                   "zrvcomn convert: value 2: 'abc' does not fit unichar(4): CS_CONV_TRUNCATED\n")

    # An empty text is no value.
    def test_unichar_empty(self):
        self.check(convert("unichar", "int", "--plain", "", "7"), 1,
                   "\t\t\tCS_CONV_SYNTAX\n7\t7\t4\tCS_SUCCEED\n",
                   "zrvcomn convert: value 1: '' is no unichar: CS_CONV_SYNTAX\n")
        self.check(convert("unichar", "char", "--plain", ""), 0, "\t\t0\tCS_SUCCEED\n")

    def test_unichar_json(self):
        self.check(convert("char", "unitext", "--json", "--hex", "ab"), 0,
                   '{"line":1,"value":"ab","result":"ab","length":4,"hex":"0061 0062",'
                   '"status":"CS_SUCCEED","code":1}\n')

    # Without a length there is room for every text, both ways.
    def test_unichar_of_any_length(self):
        text = "\u20ac" * 5000
        self.check(convert("char", "unichar", "--plain", text), 0,
                   f"{text}\t{text}\t10000\tCS_SUCCEED\n")
        self.check(convert("unichar", "text", "--plain", text), 0,
                   f"{text}\t{text}\t15000\tCS_SUCCEED\n")

    # ---- wrong usage ----

    def test_wrong_usage(self):
        self.check_usage(zrvcomn(), "a command is needed: charset, check, completion, config, convert")
        self.check_usage(zrvcomn("conver"), "unknown command 'conver'", "did you mean 'convert'?")
        self.check_usage(zrvcomn("--nonsense"), "--nonsense")
        self.check_usage(zrvcomn("convert", "--to", "int", "1"), "--from is required")
        self.check_usage(zrvcomn("convert", "--from", "int", "1"), "--to is required")
        # A misspelled option is named, even where a required one is missing because of it.
        self.check_usage(zrvcomn("convert", "--form", "int", "--to", "int", "1"),
                         "there is no option '--form'; did you mean '--from'?")
        self.check_usage(zrvcomn("types", "--hexx"), "there is no option '--hexx'")
        # Words of the user are cut and command no terminal.
        self.check_usage(convert("\x1b[31m" + 100 * "x", "int", "1"),
                         "there is no type '\\x1b[31m" + 55 * "x" + "...'")
        self.check_usage(convert("varchar(5)", "int", "1"), "varchar takes nothing in parentheses")
        self.check_usage(convert("int", "int"), "no values")
        self.check_usage(convert("int", "int", "--nonsense", "1"), "--nonsense")
        self.check_usage(convert("char", "binary", "1", "-f"), "-f", "behind '--'")
        self.check_usage(zrvcomn("types", "--", "-1"), "-1")
        self.check_usage(convert("int", "int", "--maxlength", "-1", "1"), "--maxlength")
        self.check_usage(convert("int", "int", "--maxlength", "x", "1"), "--maxlength")
        self.check_usage(convert("int", "int", "--maxlength", "99999999999", "1"), "--maxlength")
        self.check_usage(convert("int", "char", "--format", "padblnk", "1"), "'padblnk'",
                         "did you mean 'padblank'?")
        self.check_usage(convert("int", "char", "--format", "1,,4", "1"), "--format")
        self.check_usage(convert("int", "char", "--format", "1,", "1"), "--format")
        self.check_usage(convert("int", "int", "--json", "--plain", "1"), "--plain", "--json")
        self.check_usage(zrvcomn("types", "--from", "nonsense"), "there is no type")
        self.check_usage(zrvcomn("types", "extra"), "extra")
        # A line feed in what was typed does not make it two lines.
        self.check_usage(convert("a\nb", "int", "1"), "there is no type")

    # ---- standard input ----

    def test_stdin(self):
        self.check(convert("int", "tinyint", "--plain", "-", stdin=b"1\n300\n3\n"), 1,
                   "1\t1\t1\tCS_SUCCEED\n300\t255\t1\tCS_CONV_OVERFLOW\n3\t3\t1\tCS_SUCCEED\n",
                   "zrvcomn convert: line 2: '300': CS_CONV_OVERFLOW\n")

    def test_stdin_line_ends(self):
        for text in (b"1\n2", b"1\n2\n", b"1\r\n2\r\n"):
            self.check(convert("int", "int", "--plain", "-", stdin=text), 0,
                       "1\t1\t4\tCS_SUCCEED\n2\t2\t4\tCS_SUCCEED\n")

    def test_stdin_empty(self):
        for style in ("--plain", "--json", "--hex"):
            self.check(convert("int", "int", style, "-", stdin=b""), 0, "")

    def test_stdin_nul_bytes(self):
        self.check(convert("int", "int", "--plain", "-", stdin=b"1\0\n2\n"), 1,
                   "1\\x00\t\t\tCS_CONV_SYNTAX\n2\t2\t4\tCS_SUCCEED\n",
                   "zrvcomn convert: line 1: '1\\x00' is no int: CS_CONV_SYNTAX\n")

    def test_stdin_long_lines(self):
        digits = 3_000_000
        result = convert("char", "binary", "--json", "-", stdin=b"ab" * (digits // 2) + b"\n0c\n")
        rows = [json.loads(line) for line in result.out.splitlines()]
        self.assertEqual([row["length"] for row in rows], [digits // 2, 1])
        self.assertEqual(rows[0]["result"], "0x" + "ab" * (digits // 2))
        result = convert("int", "int", "--plain", "-", stdin=b"9" * digits + b"\n8\n")
        self.assertEqual([row[3] for row in fields(result)], ["CS_CONV_OVERFLOW", "CS_SUCCEED"])
        self.assertLess(len(result.err), 200)

    def test_stdin_million(self):
        count = 1_000_000
        text = b"".join(b"%d\n" % i for i in range(count))
        result = convert("int", "char", "--plain", "-", stdin=text)
        self.assertEqual((result.code, result.err), (0, ""))
        lines = result.out.splitlines()
        self.assertEqual(len(lines), count)
        for i in (0, 1, 65535, 99999, 999999):
            self.assertEqual(lines[i], f"{i}\t{i}\t{len(str(i))}\tCS_SUCCEED")

    # A result comes before the next line is waited for.
    def test_stdin_interactive(self):
        with subprocess.Popen([command, "convert", "--from", "int", "--to", "int", "-"],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            process.stdin.write(b"41\n")
            process.stdin.flush()
            self.assertEqual(process.stdout.readline().split()[:2], [b"value", b"result"])
            self.assertEqual(process.stdout.readline().split(), [b"41", b"41", b"4", b"CS_SUCCEED"])
            process.stdin.close()
            self.assertEqual(process.wait(), 0)

    def test_stdin_unreadable(self):
        directory = os.open(self.scratch, os.O_RDONLY)
        self.addCleanup(os.close, directory)
        result = subprocess.run([command, "convert", "--from", "int", "--to", "int", "-"],
                                stdin=directory, capture_output=True)
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"directory", result.stderr)

    # ---- CSV ----

    def csv(self, content, *words, column="n", name="data.csv"):
        path = self.scratch / name
        path.write_bytes(content)
        return convert("int", "tinyint", "--plain", "--csv", str(path), "--column", column, *words)

    def test_csv(self):
        result = self.csv(b'name,n\nx,1\n"a ""quoted"", one",300\n"two\nlines",3\n,4')
        self.check(result, 1,
                   "1\t1\t1\tCS_SUCCEED\n300\t255\t1\tCS_CONV_OVERFLOW\n"
                   "3\t3\t1\tCS_SUCCEED\n4\t4\t1\tCS_SUCCEED\n",
                   f"zrvcomn convert: {self.scratch}/data.csv:3: '300': CS_CONV_OVERFLOW\n")

    # A record is where it begins, whatever lines came before and whatever lines it has.
    def test_csv_line_numbers(self):
        result = self.csv(b'name,n\r\n\r\n"\n\n",bad\r\n"\r\n",worse\r\nx,1\r\n')
        self.assertEqual(re.findall(r"csv:(\d+): '(\w+)'", result.err),
                         [("3", "bad"), ("6", "worse")])
        self.assertEqual(fields(result)[2], ["1", "1", "1", "CS_SUCCEED"])

    def test_csv_byte_order_mark(self):
        self.check(self.csv(b"\xef\xbb\xbfn,m\n5,6\n"), 0, "5\t5\t1\tCS_SUCCEED\n")

    def test_csv_stdin(self):
        self.check(convert("int", "int", "--plain", "--csv", "-", "--column", "n",
                           stdin=b"m,n\n1,2\n"), 0, "2\t2\t4\tCS_SUCCEED\n")

    def test_csv_short_record(self):
        result = self.csv(b"m,n\n1,2\n7\n3,4\n")
        self.assertEqual((result.code, result.out),
                         (1, "2\t2\t1\tCS_SUCCEED\n4\t4\t1\tCS_SUCCEED\n"))
        self.assertEqual(result.err, f"zrvcomn convert: {self.scratch}/data.csv:3: "
                                     "the record has 1 of 2 fields, and no 'n'\n")

    # Nothing about a record is passed over: what is there is converted all the same.
    def test_csv_odd_records(self):
        result = self.csv(b"m,n\n1,2,3\n\n3,4\n")
        self.assertEqual((result.code, result.out),
                         (1, "2\t2\t1\tCS_SUCCEED\n4\t4\t1\tCS_SUCCEED\n"))
        self.assertEqual(result.err,
                         f"zrvcomn convert: {self.scratch}/data.csv:2: "
                         "the record has 3 of 2 fields\n"
                         f"zrvcomn convert: {self.scratch}/data.csv:3: the line is blank\n")
        self.check_usage(self.csv(b"n,m,n\n1,2,3\n"), "two columns", "'n'")

    def test_csv_delimiter(self):
        result = self.csv(b"m;n\n1;2\n", "--delimiter", ";")
        self.assertEqual((result.code, result.out), (0, "2\t2\t1\tCS_SUCCEED\n"))
        result = self.csv(b"m\tn\n1\t2\n", "--delimiter", "\\t")
        self.assertEqual((result.code, result.out), (0, "2\t2\t1\tCS_SUCCEED\n"))
        for wrong in ("", ";;", '"', "\n"):
            self.check_usage(self.csv(b"n\n1\n", "--delimiter", wrong), "--delimiter")
        self.check_usage(convert("int", "int", "--delimiter", ";", "1"), "--csv")

    # Broken quoting ends the file there; what came before counts.
    def test_csv_malformed(self):
        for tail in (b'x"y,2\n3,4\n', b'"open,2\n'):
            with self.subTest(tail):
                result = self.csv(b"m,n\n1,2\n" + tail)
                self.assertEqual((result.code, result.out), (1, "2\t2\t1\tCS_SUCCEED\n"))
                self.assertIn("data.csv:3: misplaced or unfinished quotes", result.err)
        result = self.csv(b"m,n\n1,2\r3,4\n")
        self.assertEqual(result.code, 1)
        self.assertIn("carriage return", result.err)

    def test_csv_nothing_but_header(self):
        self.check(self.csv(b"n\n"), 0, "")
        self.check(self.csv(b"n"), 0, "")

    def test_csv_wrong_usage(self):
        self.check_usage(self.csv(b"m,n\n1,2\n", column="q"), "no column 'q'", "'m', 'n'")
        self.check_usage(self.csv(b""), "is empty")
        self.check_usage(convert("int", "int", "--csv", "/nowhere/x.csv", "--column", "n"),
                         "cannot open '/nowhere/x.csv': No such file or directory")
        self.check_usage(convert("int", "int", "--csv", str(self.scratch), "--column", "n"),
                         "is a directory")
        self.check_usage(convert("int", "int", "--csv", "x.csv"), "--column")
        self.check_usage(convert("int", "int", "--column", "n", "1"), "--csv")
        self.check_usage(self.csv(b"n\n1\n", "5"), "--csv")
        self.check_usage(self.csv(b"n\n1\n", "--", "-5"), "--csv")
        self.check_usage(convert("int", "int", "-", "5"), "'-'")

    # In a program of 32 bits as well; what is not reached is not read.
    def test_csv_of_three_gigabytes(self):
        path = self.scratch / "large.csv"
        path.write_bytes(b"m,n\n1,2\n")
        os.truncate(path, 3 << 30)
        self.check_usage(convert("int", "int", "--csv", str(path), "--column", "q"), "no column 'q'")

    def test_csv_blanks_belong_to_fields(self):
        path = self.scratch / "blanks.csv"
        path.write_bytes(b"n\n 0a \n")
        row = json.loads(convert("char", "binary", "--json", "--csv", str(path), "--column",
                                 "n").out)
        self.assertEqual((row["value"], row["result"]), (" 0a ", "0x0a"))

    # ---- shapes of the output ----

    def test_json(self):
        result = convert("smallint", "tinyint", "--json", "--hex", "--", "-1", "x")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()], [
            {"line": 1, "value": "-1", "result": "0", "length": 1, "hex": "00",
             "status": "CS_CONV_OVERFLOW", "code": -101},
            {"line": 2, "value": "x", "result": None, "length": None, "hex": None,
             "status": "CS_CONV_SYNTAX", "code": -105}])
        self.assertNotIn("hex", json.loads(convert("int", "int", "--json", "1").out))

    # Every byte gives valid JSON in valid UTF-8.
    def test_json_any_bytes(self):
        text = b"\n".join(bytes([b]) for b in range(256) if b not in (10, 13))
        text += b'\n"\\/\n\xc3\xa9\n\xed\xa0\x80\n\xf0\x9f\x98\x80\n'
        result = convert("int", "int", "--json", "-", stdin=text)
        rows = [json.loads(line) for line in result.raw.decode("utf-8").splitlines()]
        self.assertEqual(len(rows), 254 + 4)
        values = [row["value"] for row in rows]
        self.assertEqual(values[0], "\0")
        self.assertEqual(values[-4], '"\\/')
        self.assertEqual(values[-3], "é")
        self.assertEqual(values[-1], "😀")
        self.assertEqual(values[-5], "\ufffd")

    # Nothing in a value can break a line or a column, or command a terminal.
    def test_escapes(self):
        for raw, shown in ((b"a\tb", "a\\tb"), (b"\x1b[31m", "\\x1b[31m"), (b"\\n", "\\\\n"),
                           (b"\xff", "\\xff"), (b"\xc2\x9b", "\\xc2\\x9b"), (b"\x7f", "\\x7f"),
                           (b"\xed\xa0\x80", "\\xed\\xa0\\x80"), (b"\xc0\xaf", "\\xc0\\xaf"),
                           (b"a\rb", "a\\rb"), ("é中😀".encode(), "é中😀")):
            with self.subTest(raw):
                result = convert("int", "int", "--plain", "-", stdin=raw + b"\n")
                self.assertEqual(result.out, shown + "\t\t\tCS_CONV_SYNTAX\n")
                self.assertIn(f"'{shown}'", result.err)

    # Columns are aligned by characters, not bytes.
    def test_alignment(self):
        lines = convert("int", "int", "é", "12345678").out.splitlines()
        self.assertEqual(lines, ["value     result    length  status",
                                 "é                           CS_CONV_SYNTAX",
                                 "12345678  12345678  4       CS_SUCCEED"])

    def test_help_and_version(self):
        result = zrvcomn("--version")
        self.check(result, 0, f"zrvcomn {build.version} (library 16001)\n")
        for words in (["--help"], ["-h"], ["config", "--help"], ["convert", "--help"],
                      ["types", "--help"], ["date", "--help"], ["completion", "--help"],
                      ["oid", "--help"], ["message", "--help"]):
            result = zrvcomn(*words)
            self.assertEqual((result.code, result.err), (0, ""))
            self.assertIn("Usage: zrvcomn", result.out)
            self.assertRegex(result.out, "Examples?:\n  ")

    # One look at all subcommands: the same words for the same options, two examples, the exit codes.
    def test_help_has_one_shape(self):
        commands = re.findall(r"^  (\w+) {2,}\S", zrvcomn("--help").out.split("Subcommands:")[1], re.M)
        self.assertGreater(len(commands), 10)
        told = {}
        for name in commands:
            with self.subTest(name):
                text = zrvcomn("help", name).out
                self.assertNotIn("\n\n\n", text.partition("Examples:")[2])
                self.assertGreaterEqual(len(re.findall(r"^  .*zrvcomn ", text.split("Examples:\n")[1], re.M)), 2)
                self.assertRegex(text, r"\nExit codes: 0 [^:]*[ \n]2\swrong usage\.\n\Z")
                # What an option takes is written in capitals, what it does begins with one.
                for option, takes, does in re.findall(
                        r"^  (?:-\w,)?(--[\w-]+)((?: [^ \n]+)*?)(?: {2,}|\n {20,})(\S.*)$", text, re.M):
                    takes = re.sub(r" (?:REQUIRED|\.\.\.|(?:Needs|Excludes):.*)", "", takes)
                    self.assertRegex(takes, r"^( [A-Z|]+)?$", option)
                    self.assertRegex(does, r"^([a-z]+(, [a-z]+)*: |--\w+: )?\S", option)
                    if ":" not in does:
                        self.assertRegex(does, r"^[A-Z]", option)
                    told.setdefault(option, set()).add((takes, re.sub(r"^[a-z, ]+: ", "", does)))
        self.assertEqual({does for _, does in told["--plain"]},
                         {"Print columns with tabs between, without a header"})
        self.assertEqual([does for _, does in told["--json"]
                          if not does.startswith("Print one JSON object")], [])
        for option, takes in (("--csv", " FILE"), ("--column", " NAME"), ("--delimiter", " CHARACTER"),
                              ("--charset", " SET"), ("--locale", " NAME"), ("--out", " FILE")):
            self.assertEqual({each for each, _ in told[option]}, {takes}, option)

    # What --plain prints are the fields of --json: a list by commas, "-" for what there is not.
    def test_listings(self):
        def column(value):
            if isinstance(value, dict):
                return [cell for each in value.values() for cell in column(each)]
            if isinstance(value, list):
                return [",".join(value) or "-"]
            return ["-" if value is None else str(value)]

        for words in (["charset", "list"], ["charset", "matrix", "cp850"], ["locale", "list"],
                      ["oid", "list", "natlang"], ["oid", "find", "utf-8"], ["config", "paths"],
                      ["types", "--from", "int,char"], ["types", "--wire"]):
            with self.subTest(words):
                objects = [json.loads(line) for line in zrvcomn(*words, "--json").out.splitlines()]
                rows = fields(zrvcomn(*words, "--plain"))
                self.assertGreater(len(rows), 0)
                self.assertEqual(len({len(row) for row in rows}), 1)
                for row, each in zip(rows, objects, strict=True):
                    if words[-1] == "--wire":
                        each = {name: {"a": None, "b": None, "c": None} if value is None else value
                                for name, value in each.items()}
                    self.assertEqual(row, column(each))
                self.check_usage(zrvcomn(*words, "--plain", "--json"), "excludes")
        shown = json.loads(zrvcomn("locale", "show", "fr_CA", "--json").out)
        self.assertEqual(fields(zrvcomn("locale", "show", "fr_CA", "--plain")),
                         [[name, *column(str(value).lower() if isinstance(value, bool) else value)]
                          for name, value in shown.items()])
        for words in (["charset", "show", "koi8"], ["config", "list"], ["config", "get", "payroll", "server"]):
            self.check_usage(zrvcomn(*words, "--plain"), "--plain is for")

    # A word of the command line that names nothing is wrong usage, whatever it would select; what was
    # looked for and is not there, or a file that is wrong, is a failure.
    def test_exit_codes_side_by_side(self):
        for words in (["convert", "--from", "none", "--to", "int", "1"],
                      ["convert", "--from", "int", "--to", "int", "--charset", "none", "1"],
                      ["convert", "--from", "int", "--to", "int", "--locale", "none", "1"],
                      ["convert", "--from", "int", "--to", "int", "--csv", "/none", "--column", "a"],
                      ["date", "format", "--locale", "none", "2001-01-05"], ["charset", "show", "none"],
                      ["charset", "matrix", "none"], ["check", "none"], ["completion", "none"],
                      ["locale", "show", "none"], ["message", "17040898", "--language", "none"],
                      ["oid", "list", "none"], ["recode", "--from", "none", "--to", "utf8"],
                      ["recode", "--from", "utf8", "--to", "utf8", "/none"], ["sort", "--order", "none"],
                      ["sort", "--charset", "none"], ["sort", "--csv", "/none", "--column", "a"],
                      ["key", "encrypt", "--key", "/none"], ["types", "--from", "none"]):
            with self.subTest(words):
                self.check_usage(zrvcomn(*words))
        for words in (["oid", "find", "none"], ["config", "get", "none", "none"], ["config", "check", "/none"],
                      ["config", "list", "none"], ["message", "999"], ["sort", "--check", "/none"],
                      ["store", "get", "none", "--directory", str(self.scratch)], ["date", "format", "none"],
                      ["convert", "--from", "int", "--to", "int", "none"]):
            with self.subTest(words):
                self.assertEqual(zrvcomn(*words).code, 1)

    # The examples of the help work as they stand.
    def test_help_examples(self):
        (self.scratch / "countries.csv").write_bytes(
            (project.source_dir / "samples" / "countries.csv").read_bytes())
        environment = os.environ | {"PATH": f"{command.parent}:{os.environ['PATH']}"}
        for words in ([], ["config"], ["convert"], ["date"], ["message"], ["oid"], ["types"], ["completion"],
                      ["manual"]):
            text = zrvcomn(*words, "--help").out
            lines = re.findall(r"^  ((?:seq|zrvcomn|eval) .*(?:\S))$", text.split("Example")[1], re.M)
            self.assertTrue(lines)
            for line in lines:
                done = subprocess.run(["bash", "-c", line], cwd=self.scratch, env=environment,
                                      capture_output=True)
                self.assertIn(done.returncode, (0, 1), line)

    def test_full_device(self):
        for words in (["convert", "--from", "int", "--to", "int", "1"], ["types"], ["--help"],
                      ["completion", "bash"], ["config", "paths"], ["oid", "list"], ["manual"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([command, *words], stdout=full, stderr=subprocess.PIPE)
            self.assertEqual(done.returncode, 1)
            self.assertIn(b"cannot write the output", done.stderr)

    # ---- types ----

    def test_types(self):
        result = zrvcomn("types")
        self.assertEqual((result.code, result.err), (0, ""))
        listed = re.findall(r"^ *(\d+)  (\w+) +(\d+|-)", result.out.split("\n\n")[0], re.M)
        self.assertEqual([int(row[0]) for row in listed], list(range(40)))
        self.assertEqual([row for row in listed if row[1] in ("char", "int", "numeric", "varchar")],
                         [("0", "char", "-"), ("8", "int", "4"), ("16", "numeric", "35"),
                          ("18", "varchar", "258")])
        grid = re.findall(r"^ *\d+  \w+ +([#.]{40})$", result.out, re.M)
        self.assertEqual(len(grid), 40)
        self.assertEqual(grid[23], "#" * 37 + "...")  # void converts to all but the locators
        self.assertEqual(grid[20], "." * 40)
        self.assertIn(f"{''.join(grid).count('#')} of 1600 pairs", result.out)

    # What converts into what is known without an installation; a conversion itself asks for its locale.
    def test_types_without_an_installation(self):
        self.assertEqual(zrvcomn("types", ZARVEK="/nonexistent").out, zrvcomn("types").out)
        result = zrvcomn("convert", "--from", "int", "--to", "int", "1", ZARVEK="/nonexistent")
        self.assertEqual((result.out, result.code), ("", 1))
        self.assertIn("cannot load /nonexistent/config/objectid.dat: ", result.err)

    def test_types_filters(self):
        result = zrvcomn("types", "--from", "uint,INT", "--to", "i8", "--to", "long")
        self.check(result, 0,
                   "code  name            width  also\n"
                   "   8  int                 4  integer, i4\n"
                   "  20  long                -\n"
                   "  30  bigint              8  i8\n"
                   "  32  uint                4  ui4\n"
                   "\n"
                   "                    23\n"
                   "from \\ to           00\n"
                   " 8  int             .#\n"
                   "32  uint            .#\n"
                   "\n"
                   "# converts, . does not; 2 of 4 pairs convert in this release\n")

    def test_types_json(self):
        rows = [json.loads(line) for line in zrvcomn("types", "--json").out.splitlines()]
        self.assertEqual([row["code"] for row in rows], list(range(40)))
        self.assertEqual(len({name for row in rows for name in [row["name"], *row["aliases"]]}),
                         sum(1 + len(row["aliases"]) for row in rows))
        row = json.loads(zrvcomn("types", "--json", "--from", "int", "--to", "char,long").out)
        self.assertEqual(row, {"code": 8, "name": "int", "width": 4, "aliases": ["integer", "i4"],
                               "converts_to": ["char"]})
        self.assertIsNone(json.loads(zrvcomn("types", "--json", "--from", "char").out)["width"])

    # ---- message ----

    def test_message(self):
        self.check(zrvcomn("message", "17040898"), 0,
                   "zrvcomn: common library: configuration: Memory has run out.\n")
        self.check(zrvcomn("message", "0x01040603", "comn_init_cfg", "a.cfg"), 0,
                   'comn_init_cfg: common library: configuration: The file "a.cfg" cannot be opened.\n')
        self.check(zrvcomn("message", "17039368", "--", "-f", "012", "x"), 0,
                   '-f: common library: configuration: There is a syntax error in line 012 near "x".\n')
        # A place without a parameter, and the origin that has the texts of another library.
        self.check(zrvcomn("message", "17040899", "f"), 0,
                   'f: common library: configuration: The file "%s" cannot be opened.\n')
        self.check(zrvcomn("message", "0x01050603", "f"), 0,
                   "f: common library: installation files: a line of the file is too long\n")

    def test_message_language(self):
        for name in ("german", "de"):
            self.check(zrvcomn("message", "17040898", "f", "--language", name), 0,
                       "f: gemeinsame Bibliothek: Konfiguration: Der Speicher ist erschöpft.\n")
        result = zrvcomn("message", "17040898", "--language", "klingon")
        self.check_usage(result, "there is no language 'klingon'")

    def test_message_json(self):
        result = zrvcomn("message", "17040899", "f", "a.cfg", "--language", "ja", "--json")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertEqual(json.loads(result.out), {
            "number": 17040899, "layer": 1, "origin": 4, "severity": 6, "text": 3, "sqlstate": "HY000",
            "language": "japanese", "line": 'f: 共通ライブラリ: 構成: ファイル "a.cfg" を開けません。'})

    def test_message_without_a_text(self):
        self.check(zrvcomn("message", "0x010406ff"), 1, "",
                   "zrvcomn message: the language us_english has no text for 255 (0x010406ff)\n")
        config = self.scratch / "config"
        config.mkdir()
        shutil.copy(project.source_dir / "home/config/objectid.dat", config)
        result = zrvcomn("message", "17040898", ZARVEK=str(self.scratch))
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertRegex(result.err, r"\Azrvcomn[^\n]*: cannot read comnlib.loc of us_english: "
                                     r"COM_LOCFILE_ERROR, the file cannot be opened[^\n]*\n\Z")

    def test_message_usage(self):
        self.check_usage(zrvcomn("message"), "number")
        for number in ("x", "", "1x", "0x", "4294967296", "-2147483649", "0x100000000"):
            self.check_usage(zrvcomn("message", "--", number), "no message number")
        self.check_usage(zrvcomn("message", "1", "a", "b", "c", "d"), "three parameters")
        self.check_usage(zrvcomn("message", "0x01050603", "a", "b"), "one parameter")

    # ---- oid ----

    def oid(self, text, *words):
        (self.scratch / "config").mkdir(exist_ok=True)
        (self.scratch / "config" / "objectid.dat").write_text(text)
        return zrvcomn("oid", *words, ZARVEK=str(self.scratch))

    identifiers = ("[charset]\n1.2.3 = utf8, UTF-8\n1.2.840.113549 = \"a, b\", c\\\\\n"
                   "[collate]\n1.2.3 = binary, utf8\n")

    def test_oid_list(self):
        self.check(self.oid(self.identifiers, "list"), 0,
                   "class     identifier      names\n"
                   "charset   1.2.3           utf8, UTF-8\n"
                   "charset   1.2.840.113549  a, b, c\\\\\\\\\n"
                   "collate   1.2.3           binary, utf8\n")
        self.check(self.oid(self.identifiers, "list", "collate"), 0,
                   "class     identifier  names\n"
                   "collate   1.2.3       binary, utf8\n")
        result = self.oid(self.identifiers, "list", "--json", "charset")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()], [
            {"class": "charset", "identifier": "1.2.3", "encoding": "06022a03",
             "names": ["utf8", "UTF-8"]},
            {"class": "charset", "identifier": "1.2.840.113549", "encoding": "06062a864886f70d",
             "names": ["a, b", "c\\\\"]}])

    # A name or an identifier that stands in two classes is found in both.
    def test_oid_find(self):
        both = ("class       charset\nidentifier  1.2.3\nencoding    06022a03\n"
                "names       utf8, UTF-8\n\n"
                "class       collate\nidentifier  1.2.3\nencoding    06022a03\n"
                "names       binary, utf8\n")
        self.check(self.oid(self.identifiers, "find", "utf8"), 0, both)
        self.check(self.oid(self.identifiers, "find", "1.2.3"), 0, both)
        self.check(self.oid(self.identifiers, "find", "--", "1.2.3"), 0, both)
        result = self.oid(self.identifiers, "find", "binary", "--json")
        self.assertEqual([json.loads(line)["class"] for line in result.out.splitlines()], ["collate"])

    # What stands in the file commands no terminal, and columns stay columns.
    def test_oid_control_characters(self):
        text = "[charset]\n1.2\x1b = a\x1bb\n1.3 = c\n"
        self.check(self.oid(text, "list"), 0,
                   "class     identifier  names\n"
                   "charset   1.2\\x1b     a\\x1bb\n"
                   "charset   1.3         c\n")
        self.check(self.oid(text, "find", "1.2\x1b"), 0,
                   "class       charset\nidentifier  1.2\\x1b\nencoding    06012a\n"
                   "names       a\\x1bb\n")

    def test_oid_not_found(self):
        for wanted in ("UTF8", "1.2", "\x1b"):
            result = self.oid(self.identifiers, "find", wanted)
            self.assertEqual((result.code, result.out), (1, ""))
            self.assertRegex(result.err, r"\Azrvcomn oid: nothing is known as '[ -~]*'\n\Z")
        self.assertEqual(self.oid(self.identifiers, "list", "money").code, 1)

    def test_oid_not_loaded(self):
        result = self.oid("[charset]\nx\n", "list")
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertRegex(result.err, r"\Azrvcomn oid: cannot load .*/objectid\.dat: COM_INTL_ERROR, .*\n\Z")
        result = zrvcomn("oid", "list", ZARVEK="/nonexistent")
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertRegex(result.err, r"COM_LOCFILE_ERROR, .*zrvcomn config paths")
        result = self.oid("[charset]\n1 = a\n", "list")
        self.assertRegex(result.err, r"objectid\.dat: CS_FAIL: ")

    def test_oid_usage(self):
        self.check_usage(zrvcomn("oid"), "action")
        self.check_usage(zrvcomn("oid", "fnd"), "'fnd'", "did you mean 'find'?")
        self.check_usage(zrvcomn("oid", "find"), "find needs a name")
        self.check_usage(zrvcomn("oid", "list", "charsets"), "'charsets'", "did you mean 'charset'?")
        self.check_usage(zrvcomn("oid", "find", "a", "--", "b"), "one class, name or identifier at a time")

    # Without a variable the build's own tree is used.
    def test_shipped_identifiers(self):
        result = zrvcomn("oid", "find", "--json", "windows-1252")
        self.assertEqual(json.loads(result.out)["names"][0], "cp1252")

    # ---- charset ----

    def test_charset_list(self):
        result = zrvcomn("charset", "list")
        self.assertEqual((result.code, result.err), (0, ""))
        lines = result.out.splitlines()
        self.assertEqual(lines[0], "set          id  class  bytes  other names")
        self.assertIn("koi8         55  1      1      KOI8-R, koi8-r, koi8r", lines)
        rows = [json.loads(line) for line in zrvcomn("charset", "list", "--json").out.splitlines()]
        self.assertEqual(len(rows), len(lines) - 1)
        self.assertIn({"name": "koi8", "id": 55, "class": 1, "longest": 1,
                       "names": ["koi8", "KOI8-R", "koi8-r", "koi8r"]}, rows)

    def test_charset_show(self):
        result = zrvcomn("charset", "show", "Shift_JIS")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertIn("set          sjis\n", result.out)
        self.assertIn("longest      2 bytes\n", result.out)
        self.assertIn("\n     0 1 2 3 4 5 6 7 8 9 a b c d e f\n", result.out)
        self.assertIn("\n  2  _ ! ! ! ! ! ! ! ! ! ! ! ! ! ! !\n", result.out)
        self.assertIn("\n  3  0 0 0 0 0 0 0 0 0 0 ! ! ! ! ! !\n", result.out)
        self.assertIn("\n  4  ! U U U U U U U U U U U U U U U\n", result.out)
        self.assertIn("\n  6  ! l l l l l l l l l l l l l l l\n", result.out)
        self.assertIn("\n  9  2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2\n", result.out)
        self.assertIn("\n  d  a a a a a a a a a a a a a a a a\n", result.out) # narrow katakana
        self.assertIn("\n  2 2 bytes\n", result.out)
        self.assertIn("\n  9  * * * * * * * * * * * * * * * *\n", zrvcomn("charset", "show", "gb18030").out)
        shown = json.loads(zrvcomn("charset", "show", "--json", "latin1").out)
        self.assertEqual((shown["name"], shown["id"], shown["types"][65], shown["lower"][65],
                          shown["upper"][0xE4], shown["length"][0xE4], shown["columns"][0xE4]),
                         ("iso_1", 1, 17, 97, 0xC4, 1, 1))
        self.assertEqual(len(shown["types"]), 256)

    def test_charset_failures(self):
        self.check_usage(zrvcomn("charset", "show", "no\x1bne"), "there is no character set 'no\\x1bne'")
        self.check(zrvcomn("charset", "show", "utf16"), 1, "",
                   "zrvcomn charset: utf16: COM_LOCFILE_ERROR, " + "the file cannot be opened\n")
        (self.scratch / "config").mkdir()
        (self.scratch / "config/objectid.dat").write_text("[charset]\n1.2.3 = one\n1.2.4 = two\n")
        (self.scratch / "charsets/one").mkdir(parents=True)
        (self.scratch / "charsets/one/charset.loc").write_text("[charset]\nclass = 9\n")
        self.check(zrvcomn("charset", "list", ZARVEK=str(self.scratch)), 1,
                   "set          id  class  bytes  other names\n", "zrvcomn charset: one: CS_FAIL\n")

    # JSON is UTF-8, whatever bytes a name has.
    def test_charset_of_any_name(self):
        folder = self.scratch / "charsets" / os.fsdecode(b"caf\xe9")
        folder.mkdir(parents=True)
        shutil.copy(project.source_dir / "home/charsets/cp850/charset.loc", folder)
        (self.scratch / "config").mkdir()
        (self.scratch / "config/objectid.dat").write_bytes(b"[charset]\n1.2.3 = caf\xe9\n")
        for words in ("list", "--json"), ("show", "--json", b"caf\xe9"):
            result = zrvcomn("charset", *words, ZARVEK=str(self.scratch))
            self.assertEqual((result.code, result.err), (0, ""))
            self.assertEqual(json.loads(result.out)["name"], "caf\ufffd")

    def test_charset_usage(self):
        self.check_usage(zrvcomn("charset"), "action")
        self.check_usage(zrvcomn("charset", "shw"), "'shw'", "did you mean 'show'?")
        self.check_usage(zrvcomn("charset", "show"), "show needs a set")
        self.check_usage(zrvcomn("charset", "list", "iso_1"), "list takes no set")
        self.check_usage(zrvcomn("charset", "show", "a", "--", "b"), "one set at a time")
        self.check_usage(zrvcomn("charset", "show", "--", "a", "b"), "one set at a time")

    # ---- config ----

    def sort(self, lines, *words):
        """The lines in the order of the installation that the build has."""
        home = str(project.source_dir / "home")
        return zrvcomn("sort", *words, stdin="".join(f"{line}\n" for line in lines).encode("iso-8859-1"),
                       ZARVEK=home)

    def check_sorted(self, lines, expected, *words):
        result = self.sort(lines, *words)
        self.assertEqual((result.raw.decode("iso-8859-1").split("\n")[:-1], result.err, result.code),
                         (expected, "", 0))

    def test_sort_orders(self):
        words = ["Zoo", "zebra", "Äpfel", "apple", "Apple", "apfel", "Apfel"]
        self.check_sorted(words, ["apfel", "Apfel", "Äpfel", "apple", "Apple", "zebra", "Zoo"])
        self.check_sorted(words, ["Apfel", "Apple", "Zoo", "apfel", "apple", "zebra", "Äpfel"],
                          "--order", "binary")
        self.check_sorted(words, ["apfel", "Apfel", "Äpfel", "apple", "Apple", "zebra", "Zoo"],
                          "--order=nocase")
        self.check_sorted(words, ["Apfel", "apfel", "Äpfel", "Apple", "apple", "zebra", "Zoo"],
                          "--order=nocasepref")
        self.check_sorted(["cuz", "chz", "da", "ca"], ["ca", "chz", "cuz", "da"])
        self.check_sorted(["cuz", "chz", "da", "ca"], ["ca", "cuz", "chz", "da"],
                          "--order=spanish_traditional")
        self.check_sorted(["ñu", "chz", "oso", "nz", "cuz"], ["chz", "cuz", "nz", "ñu", "oso"],
                          "--order=spanish")
        self.check_sorted(["ñu", "nz", "nu"], ["nu", "ñu", "nz"])
        self.check_sorted(["ö", "z", "o", "å"], ["o", "z", "å", "ö"], "--order=swedish")
        # The same bytes, in the set in which they mean something else.
        self.check_sorted(["\x81", "v", "u"], ["u", "\x81", "v"], "--charset=cp850")

    # Stable, also backwards: what is equal stays as it came.
    def test_sort_equal_lines(self):
        lines = ["b", "a ", "a", "a  ", "B"]
        self.check_sorted(lines, ["a ", "a", "a  ", "b", "B"], "--order=nocase")
        self.check_sorted(lines, ["B", "b", "a ", "a", "a  "], "--order=nocase", "-r")
        self.check_sorted(lines, ["a ", "b", "B"], "--order=nocase", "-u")
        self.check_sorted(lines, ["B", "b", "a "], "-u", "--reverse")
        self.check_sorted([], [])
        self.check_sorted(["", "a", ""], ["", "", "a"])
        self.check(zrvcomn("sort", stdin=b"b\r\na", ZARVEK=str(project.source_dir / "home")), 0, "a\nb\n")

    def test_sort_million(self):
        lines = [f"{number * 7919 % 1000003:07d}" for number in range(1000000)]
        self.check_sorted(lines, sorted(lines))

    def test_sort_csv(self):
        path = self.scratch / "data.csv"
        path.write_text('n,name\n1,pear\n2,"an\n apple"\n3,Fig\n4\n5,"a, b"\n')
        result = self.sort([], "--csv", path, "--column", "name", "--order=nocase")
        self.check(result, 1, 'n,name\n5,"a, b"\n2,"an\n apple"\n3,Fig\n1,pear\n',
                   f"zrvcomn sort: {path}:6: the record has 1 of 2 fields, and no 'name'\n")
        path.write_text("n\nb\na")
        self.check(self.sort([], "--csv", path, "--column=n", "-r"), 0, "n\nb\na\n")
        path.write_text("n;m\nb;1\na;2\n")
        self.check(self.sort([], "--csv", path, "--column=n", "--delimiter=;"), 0, "n;m\na;2\nb;1\n")
        path.write_text("n\tm\nb\t1\na\t2\n")
        self.check(self.sort([], "--csv", path, "--column=m", "-r", "--delimiter=\\t"), 0,
                   "n\tm\na\t2\nb\t1\n")

    def test_sort_usage(self):
        self.check_usage(self.sort([], "--charset", "iso_11"), "no character set 'iso_11'", "did you mean")
        self.check_usage(self.sort([], "--order", "nocas"), "has no sort order 'nocas'", "did you mean 'nocase'")
        self.check_usage(self.sort([], "--csv", "x"), "--csv requires --column")
        self.check_usage(self.sort([], "--column", "x"), "--column requires --csv")
        self.check_usage(self.sort([], "--delimiter", ";"), "--delimiter requires --csv")
        self.check_usage(self.sort([], "--csv", "x", "--column", "y", "--delimiter", "ab"), "one byte")
        self.check_usage(self.sort([], "--check", "x", "-r"), "--check stands alone")
        self.check(self.sort([], "--check", "/nowhere"), 1, "",
                   "zrvcomn sort: cannot open '/nowhere': No such file or directory\n")
        (self.scratch / "charsets/set").mkdir(parents=True)
        (self.scratch / "charsets/set/bad.srt").write_text("[sortorder]\n")
        result = zrvcomn("sort", "--charset=set", "--order=bad", ZARVEK=str(self.scratch))
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("bad.srt: CS_FAIL (zrvcomn sort --check tells why)", result.err)

    def check_order(self, text):
        path = self.scratch / "order.srt"
        path.write_text(text)
        return path, zrvcomn("sort", "--check", path)

    def test_sort_check(self):
        header = ("[sortorder]\nclass = \\x01\nid = \\x33\nname = order\nmenuname = m\n"
                  "charset = set\ndescription = d\n")

        def rest(*left_out):
            return "".join(f"char = \\x{code:02x}\n" for code in range(1, 256) if chr(code) not in left_out)

        for text, told in (
                (header + "lig = z, equal ab\nchar = ch, c=C\n" + rest("c", "C", "z"),
                 "number 51: 253 weights, 1 double character, 1 ligature"),
                (header + "binary = true\n", "number 51: by byte")):
            path, result = self.check_order(text)
            self.check(result, 0, f"{path}: sort order order of set, {told}\n")
        for text, told in (
                ("", "line 0: there is no section 'sortorder'"),
                ("[sortorder]\n", "line 1: the header ends without 'class'"),
                ("[sortorder\n", "line 1: the file has a malformed line"),
                (header.replace("x01", "x02"), "line 2: 'class', value 1: class 2 is reserved and cannot be compiled"),
                (header.replace("x01", "x03"), "line 2: 'class', value 1: neither \\x01 nor \\x02"),
                (header.replace("x33", "x00"), "line 3: 'id', value 1: the number is 0"),
                (header.replace("= order", "= or-der"),
                 "line 4: 'name', value 1: byte 3, \\x2d '-', may not stand in a name"),
                (header.replace("menuname = m\n", ""), "line 6: the header ends without 'menuname'"),
                (header.replace("= d", "= " + 255 * "d"), "line 7: 'description', value 1: longer than 254 bytes"),
                (header, "line 7: the section ends behind the header, and the order is not by byte"),
                (header + "binary = yes\n", "line 8: 'binary', value 1: neither 'true' nor 'false'"),
                (header + "chars = a\n", "line 8: 'chars' is no entry of a sort order"),
                (header + "char = a\nlig = z, after bc\n", "line 9: 'lig' stands behind the first 'char'"),
                (header + "char = a\nbinary = true\n", "line 9: 'binary' is no entry of a body"),
                (header + "char = a, b=a\n", "line 8: 'char', value 2: \\x61 'a' is listed already, in line 8"),
                (header + "char = a\nchar = a\n", "line 9: 'char', value 1: \\x61 'a' is listed already, in line 8"),
                (header + "char = a,,b\n", "line 8: 'char', value 2: empty"),
                (header + "char = a=\n", "line 8: 'char', value 1: a character is missing behind '='"),
                (header + "char = a=bc\n",
                 "line 8: 'char', value 1: byte 4, \\x63 'c', where '=', a blank or the end is due"),
                (header + "char = ab=c\n",
                 "line 8: 'char', value 1: byte 4, \\x63 'c', is one byte in a value of double characters"),
                (header + "lig = z\n", "line 8: 'lig' has no closing value, 'after xy' or 'equal xy'"),
                (header + "lig = after ab\n", "line 8: 'lig', value 1: it closes an entry that names no byte"),
                (header + "lig = z, after abc\n",
                 "line 8: 'lig', value 2: behind the word stand 3 bytes where two characters are due"),
                (header + "lig = z, after zb\n", "line 8: 'lig', value 2: \\x7a 'z' is itself a ligature, of line 8"),
                (header + "lig = z y, after ab\n",
                 "line 8: 'lig', value 1: byte 3, \\x79 'y', where '=' or the end is due"),
                (header + "lig = z, after ab\nchar = bz\n", "line 9: 'char', value 1: \\x7a 'z' is a ligature, of line 8"),
                (header + "lig = z, after ab\nlig = a, after cd\n",
                 "line 9: 'lig', value 1: \\x61 'a' is what an earlier ligature sorts as"),
                (header + rest("q"), "line 261: at the end 1 byte is not listed: \\x71 'q'"),
                (header + "char = " + ", ".join(f"a\\x{code:02x}" for code in range(100, 164)) + "\n" +
                 rest("b", "c") + "char = b, c\n",
                 "line 262: at the end double characters, the bytes that begin them and ligatures take 65 elements of 64")):
            with self.subTest(told):
                path, result = self.check_order(text)
                self.check(result, 1, "", f"zrvcomn sort: {path}, {told}\n")

    # The explanation finds a fault wherever the library does: every byte of a good file changed.
    def test_sort_check_explains_all(self):
        header = ("[sortorder]\nclass=\\x01\nid=\\x33\nname=n\nmenuname=m\ncharset=s\ndescription=d\n"
                  "lig=z=y,after ab\nchar=ch=cH\n")
        listed = [code for code in range(1, 256) if chr(code) not in "zy"]
        text = header + "char=" + "\nchar=".join(f"\\x{code:02x}" for code in listed[:40])
        for start in range(40, len(listed), 50):
            text += "\nchar=" + ",".join(f"\\x{code:02x}" for code in listed[start:start + 50])
        self.assertEqual(self.check_order(text)[1].code, 0)
        failed = 0
        for at in [*range(len(header)), *range(len(header), len(text), 61)]:
            _, result = self.check_order(text[:at] + "=\n,q\\\""[at % 6] + text[at + 1:])
            self.assertNotIn("not known", result.err)
            failed += result.code
        self.assertGreater(failed, len(header) // 2)

    def config_paths(self, **environment):
        clean = {name: "" for name in ("ZARVEK_NCL", "ZRVNCL_IFILE", "ZRVNCL_TCL_CFG",
                                       "ZARVEK_TCL_CFG")}
        result = zrvcomn("config", "paths", "--json", **(clean | environment))
        self.assertEqual((result.code, result.err), (0, ""))
        rows = [json.loads(line) for line in result.out.splitlines()]
        return {row["name"]: (row["path"], row["is"], row["decided_by"]) for row in rows}

    def test_config_paths(self):
        home = str(self.scratch)
        (self.scratch / "config").mkdir()
        (self.scratch / "config" / "ncl.cfg").touch()
        below = "below the home directory"
        places = self.config_paths(ZARVEK=home)
        self.assertEqual(places["home"], (home, "directory", "ZARVEK"))
        self.assertEqual(places["ncl.cfg"], (f"{home}/config/ncl.cfg", "file", below))
        self.assertEqual(places["interfaces"], (f"{home}/interfaces", "missing", below))
        self.assertEqual(places["libtcl.cfg"], (f"{home}/config/libtcl.cfg", "missing", below))
        self.assertEqual(places["locales.dat"][0], f"{home}/locales/locales.dat")
        self.assertEqual(places["charsets"][0], f"{home}/charsets")
        # What each variable decides.
        places = self.config_paths(ZARVEK=home, ZARVEK_NCL="NCL-1", ZRVNCL_IFILE="/etc/servers",
                                   ZARVEK_TCL_CFG="/second")
        self.assertEqual(places["interfaces"], ("/etc/servers", "missing", "ZRVNCL_IFILE"))
        self.assertEqual(places["libtcl.cfg"], ("/second", "missing", "ZARVEK_TCL_CFG"))
        self.assertEqual(places["devlib3p"],
                         (f"{home}/NCL-1/devlib3p", "missing", f"{below}, ZARVEK_NCL"))
        self.assertEqual(self.config_paths(ZARVEK=home, ZRVNCL_TCL_CFG="/first",
                                           ZARVEK_TCL_CFG="/second")["libtcl.cfg"],
                         ("/first", "missing", "ZRVNCL_TCL_CFG"))
        # Without ZARVEK the tree that belongs to the library, with what is shipped.
        places = self.config_paths(ZARVEK="")
        self.assertNotEqual(places["home"][2], "ZARVEK")
        self.assertEqual(places["objectid.dat"],
                         (f"{places['home'][0]}/config/objectid.dat", "file", below))

    def test_config_paths_table(self):
        result = zrvcomn("config", "paths", ZARVEK="/nowhere")
        self.assertEqual((result.code, result.err), (0, ""))
        lines = [line.split("  ") for line in result.out.splitlines()]
        self.assertEqual([word.strip() for word in lines[0] if word],
                         ["name", "path", "is", "decided by"])
        self.assertEqual([word.strip() for word in lines[1] if word],
                         ["home", "/nowhere", "missing", "ZARVEK"])

    # A path that does not fit is reported by its status, and the exit status tells.
    def test_config_paths_failure(self):
        result = zrvcomn("config", "paths", "--json", ZARVEK="/" + "x" * 5000)
        self.assertEqual((result.code, result.err), (1, ""))
        row = json.loads(result.out.splitlines()[0])
        self.assertEqual((row["path"], row["is"]), (None, "COM_INTL_ERROR"))
        self.check_usage(zrvcomn("config", "nonsense"), "nonsense")
        self.check_usage(zrvcomn("config"), "action")

    sample = ("[defaults]\ntimeout = 30\nserver = d\n"
              "[pay roll]\ninclude = defaults\nserver = \"a = 1\"\nserver = b\n")

    def config_file(self, text, name="app.cfg"):
        path = self.scratch / name
        path.write_bytes(text.encode() if isinstance(text, str) else text)
        return str(path)

    def test_config_get(self):
        path = self.config_file(self.sample)
        self.check(zrvcomn("config", "get", path, "defaults", "timeout"), 0, "30\n")
        # All values, those of included sections behind the section's own.
        self.check(zrvcomn("config", "get", path, "pay roll", "server"), 0, "a = 1\nb\nd\n")
        result = zrvcomn("config", "get", path, "pay roll", "server", "--json")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()],
                         [{"section": "pay roll", "entry": "server", "value": value}
                          for value in ("a = 1", "b", "d")])
        long = "x" * 5000
        path = self.config_file(f"[a]\nk = 1\nk = {long}\nk = 3\n")
        self.check(zrvcomn("config", "get", path, "a", "k"), 0, f"1\n{long}\n3\n")

    def test_config_get_without_a_value(self):
        path = self.config_file(self.sample)
        self.check(zrvcomn("config", "get", path, "defaults", "nothing"), 1, "",
                   "zrvcomn config: there is no entry 'nothing' for section 'defaults'\n")
        self.check(zrvcomn("config", "get", path, "none", "timeout"), 1, "",
                   f'zrvcomn config: {path}: There is no usable section "none".\n')
        missing = str(self.scratch / "missing")
        self.check(zrvcomn("config", "get", missing, "a", "k"), 1, "",
                   f'zrvcomn config: {missing}: The file "{missing}" cannot be opened.\n')
        # What is wrong with a file is told, and what is right is found.
        path = self.config_file("[a]\nk = 1\n[b]\nbad line\n")
        self.check(zrvcomn("config", "get", path, "a", "k"), 0, "1\n",
                   f'zrvcomn config: {path}:4: There is a syntax error in line 4 near "line".\n')

    def test_config_list(self):
        path = self.config_file(self.sample)
        self.check(zrvcomn("config", "list", path), 0, "defaults\npay roll\n")
        self.check(zrvcomn("config", "list", path, "pay roll"), 0,
                   "include = defaults\nserver = a = 1\nserver = b\n")
        self.check(zrvcomn("config", "list", path, "none"), 1, "",
                   f"zrvcomn config: there is no section 'none' in {path}\n")
        result = zrvcomn("config", "list", path, "--json")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()],
                         [{"section": "defaults"}, {"section": "pay roll"}])
        result = zrvcomn("config", "list", path, "defaults", "--json")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()],
                         [{"section": "defaults", "entry": "server", "value": "d"},
                          {"section": "defaults", "entry": "timeout", "value": "30"}])

    # The file of the installation, which is found without a variable and loads.
    def test_config_of_the_installation(self):
        environment = {"ZARVEK": str(project.source_dir / "home")}
        result = zrvcomn("config", "list", **environment)
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertIn("NAMED_APP_DEFAULT\n", result.out)
        self.check(zrvcomn("config", "get", "nobody", "login_timeout", **environment), 0, "30\n")
        self.check(zrvcomn("config", "get", "payroll", "login_timeout", **environment), 0, "10\n30\n")
        result = zrvcomn("config", "list", "payroll", **environment)
        self.assertIn("server = db1.example, port = 5000\n", result.out)
        self.check(zrvcomn("config", "check", str(project.source_dir / "home/config/ncl.cfg")), 0, "")

    def test_config_check(self):
        path = self.config_file(self.sample)
        self.check(zrvcomn("config", "check", path), 0, "")
        # Places are told in characters; what a line shows for a tab is two of them.
        path = self.config_file("[a]\r\nbad\tl\xe4ne here\r\n\r\n\r\n\r\n[b]\ninclude = zz\nl = \"x\n")
        self.check(zrvcomn("config", "check", path, LC_ALL="en_US.UTF-8"), 1,
                   f'{path}:2:5: There is a syntax error in line 2 near "l\xe4ne".\n'
                   "  bad\\tl\xe4ne here\n"
                   "       ^\n"
                   f'{path}:3:1: There is a syntax error in line 3 near "\\r\\n".\n'
                   "  \n"
                   "  ^\n"
                   f'{path}:7:11: There is no usable section "zz".\n'
                   "  include = zz\n"
                   "            ^\n"
                   f'{path}:9:1: There is a syntax error in line 9 near "".\n'
                   "  \n"
                   "  ^\n")
        path = self.config_file("; c\n" * 2000 + "[a]\nk = 1 = 2\n")
        result = zrvcomn("config", "check", path, "--json")
        self.assertEqual((result.code, [json.loads(line) for line in result.out.splitlines()]),
                         (1, [{"file": path, "line": 2002, "column": 7,
                               "text": 'There is a syntax error in line 2002 near "=".'}]))

    def test_config_usage(self):
        for words in (["paths", "x"], ["check"], ["check", "a", "b"], ["get"], ["get", "a"],
                      ["get", "a", "b", "c", "d"], ["list", "a", "b", "c"]):
            self.check_usage(zrvcomn("config", *words), words[0] + " takes")

    # ---- date ----

    def test_date_format(self):
        moment = "2001-01-05T13:30:15.123456"
        self.check(zrvcomn("date", "format", moment), 0, "2001-01-05 13:30:15.123456\n")
        self.check(zrvcomn("date", "format", "--style", "9", moment, "2001-01-05 13:30"), 0,
                   "Jan  5 2001  1:30:15:123PM\nJan  5 2001  1:30:00:000PM\n")
        result = zrvcomn("date", "format", "--all-styles", moment)
        self.assertEqual((result.code, result.err), (0, ""))
        rows = dict(line.split("\t") for line in result.out.splitlines())
        self.assertEqual(len(rows), 56)
        self.assertEqual(rows["0"], "Jan  5 2001  1:30PM")
        self.assertEqual(rows["112"], "20010105")
        self.assertEqual(rows["141"], "Jan  5 2001  1:30:15.123456PM")

    def test_date_sums_and_parts(self):
        self.check(zrvcomn("date", "add", "--part", "month", "--count", "1", "--style", "23",
                           "2001-01-31", "2000-01-31"), 0,
                   "2001-02-28T00:00:00\n2000-02-29T00:00:00\n")
        self.check(zrvcomn("date", "diff", "--part", "hour", "--from", "2000-01-01T23:30",
                           "2000-01-02T00:29", "2000-01-02T01:30"), 0, "0\n2\n")
        self.check(zrvcomn("date", "part", "--part", "weekday", "--names", "2001-01-05"), 0,
                   "Friday\n")
        self.check(zrvcomn("date", "part", "--part", "weekday", "--firstday", "1", "2001-01-05"), 0,
                   "5\n")
        result = zrvcomn("date", "part", "--part", "iso-year", "--json", "-",
                         stdin=b"2005-01-01\n2008-12-29\n")
        self.assertEqual([json.loads(line)["result"] for line in result.out.splitlines()],
                         [2004, 2009])
        self.check(zrvcomn("date", "DIFF", "--part", "Day", "--from", "2000-01-01", "--plain",
                           "2000-01-03", "x"), 1,
                   "2000-01-03\t2\t1\tCS_SUCCEED\nx\t\t\tCS_CONV_SYNTAX\n",
                   "zrvcomn date: value 2: 'x': CS_CONV_SYNTAX\n")
        result = zrvcomn("date", "part", "--part", "month", "--names", "--json", "2005-01-01", "x")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()],
                         [{"line": 1, "value": "2005-01-01", "result": "January", "length": 7,
                           "status": "CS_SUCCEED", "code": 1},
                          {"line": 2, "value": "x", "result": None, "length": None,
                           "status": "CS_CONV_SYNTAX", "code": -105}])
        # Numbers are decimal, whatever they begin with.
        self.check(zrvcomn("date", "add", "--part", "day", "--count", "010", "2001-01-01"), 0,
                   "2001-01-11 00:00:00.000000\n")
        for wrong in ("0x10", "", "1.5", "99999999999", "x"):
            self.check_usage(zrvcomn("date", "add", "--part", "day", "--count", wrong,
                                     "2001-01-01"), "--count", "-2147483647 to 2147483647")
        # Behind "--" a value is a value.
        self.check(zrvcomn("date", "format", "--", "-", stdin=b"2001-01-01\n"), 1, "\n",
                   "zrvcomn date: value 1: '-': CS_CONV_SYNTAX\n")

    def test_date_failures(self):
        self.check(zrvcomn("date", "format", "2001-02-30", "2001-01-05", "x", "2001-1-05",
                           "2001-01-05T24:00", "2001-01-05T1:00", "2001-01-05T01:00:00.1234567"), 1,
                   "\n2001-01-05 00:00:00.000000\n\n\n\n\n\n",
                   "zrvcomn date: value 1: '2001-02-30': CS_CONV_DOMAIN\n"
                   "zrvcomn date: value 3: 'x': CS_CONV_SYNTAX\n"
                   "zrvcomn date: value 4: '2001-1-05': CS_CONV_SYNTAX\n"
                   "zrvcomn date: value 5: '2001-01-05T24:00': CS_CONV_DOMAIN\n"
                   "zrvcomn date: value 6: '2001-01-05T1:00': CS_CONV_SYNTAX\n"
                   "zrvcomn date: value 7: '2001-01-05T01:00:00.1234567': CS_CONV_SYNTAX\n")
        self.check(zrvcomn("date", "add", "--part", "day", "--count", "1", "9999-12-31"), 1, "\n",
                   "zrvcomn date: value 1: '9999-12-31': CS_CONV_OVERFLOW\n")

    def test_date_parse(self):
        self.check(zrvcomn("date", "--parse", "Jan 5, 2001 10:30:15.5 PM", "5pm"), 0,
                   "year=2001 month=1 day=5 hour=22 minute=30 second=15 millisecond=500\n"
                   "year=1900 month=1 day=1 hour=17 minute=0 second=0 millisecond=0\n")
        self.check(zrvcomn("date", "--parse", "--to", "bigdatetime", "20010203T04:05:06.123456"), 0,
                   "year=2001 month=2 day=3 hour=4 minute=5 second=6 microsecond=123456\n")
        self.check(zrvcomn("date", "--parse", "--to", "datetime4", "1:30:30 1/2/1999"), 0,
                   "year=1999 month=1 day=2 hour=1 minute=31 second=0 millisecond=0\n")
        self.check(zrvcomn("date", "--parse", "--order", "dmy", "--to", "date", "31/12/1999"), 0,
                   "year=1999 month=12 day=31\n")
        self.check(zrvcomn("date", "--parse", "--style", "103", "--to", "date", "31/12/1999"), 0,
                   "year=1999 month=12 day=31\n")
        self.check(zrvcomn("date", "--parse", "--to", "time", "12:30:15.9996"), 0,
                   "hour=12 minute=30 second=15 millisecond=996 truncated\n")
        self.check(zrvcomn("date", "--parse", "--to", "bigtime", "-", stdin=b"0:01\n\n"), 0,
                   "hour=0 minute=1 second=0 microsecond=0\n"
                   "hour=0 minute=0 second=0 microsecond=0\n")
        for text, reason in (("31/12/1999", "no such month"), ("2/30/2001", "no such day"),
                             ("12-31", "this forms no date"), ("5", "something is left over"),
                             ("0 pm", "am or pm contradicts the hour"), ("25:00", "out of range"),
                             ("1/1/1752", "out of range")):
            result = zrvcomn("date", "--parse", text)
            self.assertEqual((result.code, result.out), (1, "\n"))
            self.assertIn(reason, result.err)
        result = zrvcomn("date", "--parse", "--json", "--to", "date", "1/2/2003", "x")
        self.assertEqual([json.loads(line) for line in result.out.splitlines()],
                         [{"line": 1, "value": "1/2/2003",
                           "result": {"year": 2003, "month": 1, "day": 2}, "length": None,
                           "status": "CS_SUCCEED", "code": 1, "truncated": False},
                          {"line": 2, "value": "x", "result": None, "length": None,
                           "status": "CS_CONV_SYNTAX", "code": -105, "truncated": False,
                           "reason": "this forms no date"}])
        self.check_usage(zrvcomn("date", "--parse", "--order", "dym1", "5"), "dym")
        self.check_usage(zrvcomn("date", "--parse", "--to", "datetme", "5"), "datetime")
        self.check_usage(zrvcomn("date", "--parse"), "values")

    def test_date_locale(self):
        date = ("date", "format", "--style", "0", "--locale")
        self.check(zrvcomn(*date, "fr_FR.UTF-8", "1789-07-14T13:30"), 0, "juil. 14 1789  1:30PM\n")
        # The bytes are those of the locale's character set, but for JSON.
        self.assertEqual(zrvcomn("date", "format", "--style", "106", "--locale", "de_DE", "2001-03-05").raw,
                         b"05 M\xe4rz 2001\n")
        result = zrvcomn("date", "format", "--style", "106", "--locale", "de_DE", "--json", "2001-03-05")
        self.assertEqual(json.loads(result.out)["result"], "05 März 2001")
        for locale, day in (("de_DE.UTF-8", "Freitag"), ("en_US.UTF-8", "Friday"), ("ja_JP.UTF-8", "金曜日")):
            self.check(zrvcomn("date", "part", "--part", "weekday", "--names", "--locale", locale,
                               "2001-01-05"), 0, f"{day}\n")
        self.check_usage(zrvcomn(*date, "nowhere", "2001-01-05"), "there is no locale 'nowhere'")

    # ---- locale and check ----

    def test_locale_list(self):
        lines = zrvcomn("locale", "list").out.splitlines()
        self.assertEqual(lines[0].split(), ["name", "language", "charset", "sort_order", "date", "number",
                                            "money"])
        self.assertEqual(lines[1].split(), ["default", "us_english", "utf8", "binary", "-", "-", "-"])
        rows = [json.loads(line) for line in zrvcomn("locale", "list", "--json").out.splitlines()]
        self.assertEqual(len(rows), len(lines) - 1)
        self.assertIn({"name": "fr_CA", "language": "french", "charset": "iso_1", "sort_order": "dictionary",
                       "date": None, "number": "fr_CA", "money": "fr_CA"}, rows)

    # Those that the library finds: up to an entry of another kind, in the first section of that name.
    def test_locale_list_of_an_odd_file(self):
        (self.scratch / "locales").mkdir()
        (self.scratch / "locales/locales.dat").write_text(
            "[other]\nlocale = a, b, c\n[linux]\nlocale = one, us_english, utf8\nlocale =\n"
            "locale = two, german\nlocal = x\nlocale = three, german, utf8\n"
            "[linux]\nlocale = four, german, utf8\n")
        result = zrvcomn("locale", "list", "--plain", ZARVEK=str(self.scratch))
        self.check(result, 0, "one\tus_english\tutf8\t-\t-\t-\t-\ntwo\tgerman\t-\t-\t-\t-\t-\n")
        result = zrvcomn("locale", "list", ZARVEK="/nowhere")
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("/nowhere/locales/locales.dat: COM_LOCFILE_ERROR, ", result.err)

    def test_locale_show(self):
        result = zrvcomn("locale", "show", "de_DE.UTF-8")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertIn("\ndate order  dmy, style 3\nfirst day   1\nclock       24 hours\n"
                      "date        05 Aug. 2001\nmessage     comn_init_cfg: gemeinsame Bibliothek: "
                      "Konfiguration: ", result.out)
        self.check(zrvcomn("locale", "show", "--", "de_DE.UTF-8"), 0, result.out)
        # Without a name each category has its own.
        result = zrvcomn("locale", "show", "--json", LC_ALL="never", LANG="de_DE", LC_TIME="ru_RU.KOI8-R",
                         LC_COLLATE="C")
        shown = json.loads(result.out)
        self.assertEqual([shown[category]["name"] for category in ("collate", "ctype", "time")],
                         ["C", "de_DE", "ru_RU.KOI8-R"])
        self.assertEqual(shown["time"]["charset"], "koi8")
        self.assertEqual(shown["date"], "05 авг. 2001")

    def test_locale_failures(self):
        self.check_usage(zrvcomn("locale", "list", "de_DE"), "list takes no name")
        self.check_usage(zrvcomn("locale", "list", "--", "de_DE"), "list takes no name")
        self.check_usage(zrvcomn("locale", "show", "de_DE", "--", "C"), "one locale at a time")
        self.check_usage(zrvcomn("locale", "find"), "there is no action 'find'")
        self.check_usage(zrvcomn("locale", "show", "de_De.UTF-8"), "did you mean 'de_DE.UTF-8'",
                         "zrvcomn locale list")
        result = zrvcomn("locale", "show", LC_TIME="nowhere")  # what the environment says is no usage
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("cannot load the locale 'nowhere'", result.err)
        result = zrvcomn("locale", "show", "C", ZARVEK=str(self.scratch))
        self.assertEqual(result.code, 1)
        self.assertIn(f"cannot load {self.scratch}/config/objectid.dat", result.err)

    def test_check(self):
        result = zrvcomn("check")
        self.assertRegex(result.out, r"\A[0-9]+ checked, 0 wrong\n\Z")
        self.assertEqual((result.code, result.err), (0, ""))
        self.check(zrvcomn("check", "german"), 0, "1 checked, 0 wrong\n")
        self.check(zrvcomn("check", "--", "german"), 0, "1 checked, 0 wrong\n")
        self.check_usage(zrvcomn("check", "german", "--", "iso_1"), "one language or set at a time")
        self.check_usage(zrvcomn("check", "klingon"), "no language and no character set 'klingon'")

    def test_check_finds_what_is_wrong(self):
        home = self.scratch / "home"
        shutil.copytree(project.source_dir / "home", home, copy_function=os.symlink)
        broken = {"charsets/unicode/koi8.bin": None, "charsets/unicode/cp437.bin": "x",
                  "locales/message/german/common.loc": None, "locales/message/french/comnlib.loc": "x",
                  "charsets/iso15/danish.srt": "[other]\n", "charsets/koi8/charset.loc": None}
        for path, text in broken.items():
            (home / path).unlink()
            if text is not None:
                (home / path).write_text(text)
        result = zrvcomn("check", ZARVEK=str(home))
        self.assertEqual((result.code, result.err), (1, ""))
        for path in broken:
            self.assertIn(f"{home / path}: ", result.out)
        self.check(zrvcomn("check", "german", ZARVEK=str(home)), 1,
                   f"{home}/locales/message/german/common.loc: COM_LOCFILE_ERROR, the file cannot be "
                   "opened: put the file back, and let this user read it\n1 checked, 1 wrong\n")
        problem = [f"{home}/locales/message/german/common.loc", "COM_LOCFILE_ERROR, the file cannot be opened",
                   "put the file back, and let this user read it"]
        self.check(zrvcomn("check", "german", "--plain", ZARVEK=str(home)), 1, "\t".join(problem) + "\n")
        result = zrvcomn("check", "german", "--json", ZARVEK=str(home))
        self.assertEqual((result.code, json.loads(result.out)),
                         (1, dict(zip(("what", "problem", "advice"), problem))))
        for words in ([], ["--plain"], ["--json"]):
            self.check(zrvcomn("check", "italian", *words, ZARVEK=str(home)), 0,
                       "" if words else "1 checked, 0 wrong\n")

    # What nothing foresaw is a failure like others.
    def test_check_of_a_folder_that_leads_to_itself(self):
        home = self.scratch / "home"
        shutil.copytree(project.source_dir / "home", home, copy_function=os.symlink)
        (home / "charsets/circle").symlink_to("circle")
        result = zrvcomn("check", ZARVEK=str(home))
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertRegex(result.err, r"\Azrvcomn check: [^\n]*Too many levels of symbolic links[^\n]*\n\Z")

    # What is broken is named with its path, even where nothing can start, and no hint leads back here.
    def test_check_of_what_cannot_start(self):
        home = self.scratch / "home"
        for path, text in (("config/objectid.dat", None), ("config/objectid.dat", "x"),
                           ("charsets/utf8/charset.loc", None), ("charsets/utf8/charset.loc", "x"),
                           ("locales/locales.dat", None)):
            with self.subTest(f"{path} {text}"):
                shutil.copytree(project.source_dir / "home", home, copy_function=os.symlink)
                (home / path).unlink()
                if text is not None:
                    (home / path).write_text(text)
                result = zrvcomn("check", "all", ZARVEK=str(home))
                self.assertEqual((result.code, result.out), (1, ""))
                self.assertRegex(result.err, rf"\Azrvcomn check: [^\n]*{home / path}: COM_\w+, [^\n]*\n\Z")
                self.assertNotIn("zrvcomn check tells", result.err)
                shutil.rmtree(home)

    def test_date_usage(self):
        self.check_usage(zrvcomn("date", "formt", "2001-01-05"), "formt", "format")
        self.check_usage(zrvcomn("date", "format"), "values")
        self.check_usage(zrvcomn("date", "format", "--style", "24", "2001-01-05"), "24")
        self.check_usage(zrvcomn("date", "add", "2001-01-05"), "--part")
        self.check_usage(zrvcomn("date", "part", "--part", "mnth", "2001-01-05"), "month")
        self.check_usage(zrvcomn("date", "diff", "--part", "day", "--from", "x", "2001-01-05"),
                         "--from")
        self.check_usage(zrvcomn("date", "part", "--all-styles", "--part", "day", "2001-01-05"),
                         "--all-styles")

    # ---- completion ----

    def complete(self, line):
        """What bash offers for the last word of a line."""
        script = ('eval "$("$ZRVCOMN" completion bash)"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '_zrvcomn; printf "%s\\n" "${COMPREPLY[@]}"')
        return subprocess.run(["bash", "-c", script, "bash", *line], text=True, check=True,
                              capture_output=True, cwd=self.scratch,
                              env=os.environ | {"ZRVCOMN": str(command)}).stdout.split()

    # A type by its code; a length that nothing fits in; what the default of a numeric is.
    def test_types_by_code_and_shape(self):
        self.check(convert("8", "6", "--plain", "5"), 0, "5\t5\t1\tCS_SUCCEED\n")
        self.check_usage(convert("40", "6", "1"), "there is no type '40'")
        self.assertIn("'1234567890123456789' does not fit numeric(18,0), the default; say "
                      "--from numeric(p,s): CS_CONV_",
                      convert("numeric", "char", "1234567890123456789").err)
        self.assertIn("'123456' does not fit numeric(5,0): CS_CONV_",
                      convert("numeric(5)", "char", "123456").err)

    # What a failure leaves behind is shown where it means something.
    def test_unusable_results_are_not_shown(self):
        self.assertEqual(fields(convert("char", "int", "--plain", "x"))[0],
                         ["x", "", "0", "CS_CONV_SYNTAX"])
        self.assertEqual(fields(convert("int", "numeric(2)", "--plain", "300"))[0][1], "")
        self.assertEqual(fields(convert("int", "tinyint", "--plain", "300"))[0][1], "255")
        self.assertEqual(fields(convert("char", "tinyint", "--plain", "300"))[0][1], "")
        self.assertEqual(fields(convert("char", "numeric(5,2)", "--plain", "1.234"))[0][1], "")
        self.assertEqual(fields(convert("numeric(5,3)", "numeric(5,2)", "--plain", "1.234"))[0][1],
                         "1.23")
        self.assertEqual(fields(convert("char", "datetime", "--plain", "2001-02-30"))[0][1], "")
        self.assertEqual(fields(convert("char", "char(2)", "--plain", "abc"))[0][1], "ab")
        row = json.loads(convert("char", "int", "--json", "--hex", "x").out)
        self.assertEqual((row["result"], row["hex"], row["code"]), (None, None, -105))

    # A few long values take no more than they need: nothing waits for a full table.
    def test_long_values_in_a_table(self):
        line = b"x" * (4 << 20) + b"\n"
        peak = subprocess.run(
            ["python3", "-c", "import resource, subprocess, sys\n"
             "subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, check=True)\n"
             "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)",
             command, "convert", "--from", "char", "--to", "char", "-"],
            input=line * 40, capture_output=True, check=True)
        self.assertLess(int(peak.stdout), 100 << 10)  # KiB; the values have 160 MiB

    def test_help_as_a_word(self):
        for name in ("convert", "date"):
            self.check(zrvcomn("help", name), 0, zrvcomn(name, "--help").out)
        self.check(zrvcomn("help"), 0, zrvcomn("--help").out)
        self.check(zrvcomn("-V"), 0, zrvcomn("--version").out)
        self.check_usage(zrvcomn("help", "nonsense"), "unknown command 'nonsense'")

    # Options that an action does not look at are refused.
    def test_date_options_have_their_actions(self):
        date = "2001-01-01"
        for words in (("add", "--part", "day"), ("add", "--count", "1"), ("diff", "--part", "day"),
                      ("part",), ("diff", "--from", date)):
            self.check_usage(zrvcomn("date", *words, date), words[0] + " needs --")
        for words in (("format", "--count", "1"), ("format", "--firstday", "1"),
                      ("add", "--part", "day", "--count", "1", "--names"),
                      ("part", "--part", "day", "--style", "1"), ("format", "--to", "date"),
                      ("--parse", "--count", "1"), ("--parse", "--plain")):
            self.check_usage(zrvcomn("date", *words, date), " has no use for --")
        self.check_usage(zrvcomn("date", "format", "--all-styles", "--style", "1", date), "--style")

    def test_completion_of_words(self):
        self.assertEqual(self.complete(["zrvcomn", "charset", "ma"]), ["matrix"])
        self.assertEqual(self.complete(["zrvcomn", "date", "--part", "iso-w"]),
                         ["iso-week", "iso-weekday"])
        self.assertEqual(self.complete(["zrvcomn", "date", "--style", "14"]), ["14", "140", "141"])
        self.assertEqual(self.complete(["zrvcomn", "completion", "z"]), ["zsh"])
        self.assertIn("bashcompinit", zrvcomn("completion", "ZSH").out)
        fish = zrvcomn("completion", "fish").out
        self.assertIn("complete -c zrvcomn -n '__fish_seen_subcommand_from convert' -l csv -r -F",
                      fish)
        self.assertIn("-l part -x -a 'year quarter ", fish)

    def test_completion(self):
        (self.scratch / "data.csv").touch()
        self.assertEqual(self.complete(["zrvcomn", "conv"]), ["convert"])
        self.assertEqual(self.complete(["zrvcomn", "--v"]), ["--version"])
        self.assertEqual(self.complete(["zrvcomn", "convert", "--m"]), ["--maxlength"])
        self.assertEqual(self.complete(["zrvcomn", "convert", "--to", "small"]),
                         ["smallint", "smalldatetime", "smallmoney"])
        self.assertEqual(self.complete(["zrvcomn", "convert", "--format", "padb"]), ["padblank"])
        self.assertEqual(self.complete(["zrvcomn", "convert", "--csv", "da"]), ["data.csv"])
        self.assertEqual(self.complete(["zrvcomn", "convert", "--column", ""]), [])
        # Every option of every subcommand, as its help has them.
        commands = zrvcomn("--help").out.split("Subcommands:\n")[1].split("\n\n")[0]
        for name in re.findall(r"^  (\w+) ", commands, re.M):
            options = re.findall(r"^  (?:-\w,)?(--[\w-]+)", zrvcomn(name, "--help").out, re.M)
            self.assertTrue(options)
            self.assertLessEqual(set(options), set(self.complete(["zrvcomn", name, "--"])))
        self.check_usage(zrvcomn("completion", "nonsense"), "nonsense")
        self.check_usage(zrvcomn("completion"), "shell")
        self.check_usage(zrvcomn("completion", "bash", "--", "zsh"), "one shell at a time")

    # ---- terminals ----

    def on_terminal(self, stream, words, stdin=b"", **environment):
        """What the command writes to a terminal in the place of one of its streams."""
        master, slave = pty.openpty()
        streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, stream: slave}
        with open(self.scratch / "input", "wb+") as file:
            file.write(stdin)
            file.seek(0)
            process = subprocess.Popen([command, *words], stdin=file, **streams,
                                       env=os.environ | {"TERM": "xterm"} | environment)
        os.close(slave)
        pipe = process.stdout if process.stdout else process.stderr
        texts = {master: b"", pipe.fileno(): b""}
        open_files = set(texts)
        while open_files:
            for file in select.select(list(open_files), [], [])[0]:
                try:
                    chunk = os.read(file, 65536)
                except OSError as error:
                    self.assertEqual(error.errno, errno.EIO)  # the other end is closed
                    chunk = b""
                texts[file] += chunk
                if not chunk:
                    open_files.remove(file)
        pipe.close()
        os.close(master)
        process.wait()
        return texts[master].decode()

    def test_colour(self):
        words = ["convert", "--from", "int", "--to", "tinyint", "300"]
        self.assertIn("\033[31m300", self.on_terminal("stdout", words, NO_COLOR=""))
        for environment in ({"NO_COLOR": "1"}, {"TERM": "dumb", "NO_COLOR": ""}):
            text = self.on_terminal("stdout", words, **environment)
            self.assertIn("CS_CONV_OVERFLOW", text)
            self.assertNotIn("\033", text)

    def test_progress(self):
        words = ["convert", "--from", "int", "--to", "int", "--plain", "-"]
        text = self.on_terminal("stderr", words, b"1\n" * 250_000)
        self.assertIn("\r100000 values, ", text)
        self.assertIn("\r200000 values, ", text)
        self.assertTrue(text.endswith("\r\033[K"))
        self.assertEqual(self.on_terminal("stderr", words, b"1\n" * 1000), "")

    # ---- what it is linked to ----

    # The command is a client like any other: it binds the names of the contract. Beside them it takes
    # only what has no public form: sums, differences, parts and text of microsecond dates, dates out of
    # text, and the loaders of single files that it explains.
    def test_exported_names_only(self):
        symbols = run(build.readelf, "--dyn-syms", "--wide", command)
        self.assertIn("@ZRVCOMN_16", symbols)
        self.assertEqual(set(re.findall(r"(\w+)@+ZRVCOMN_PRIVATE", symbols)),
                         {"Application_global", "Com__WeekDay", "Comdeferrs", "Comlocsections", "com__bigdate_add",
                          "com__bigdatediff", "com__bigdatename", "com__bigdatepart",
                          "com__bigdatetimefromchar_mb", "com__bigdatetimetochar",
                          "com__bigtimefromchar_mb", "com__date4fromchar_mb", "com__date4todt",
                          "com__dateafromchar_mb", "com__datefromchar_mb", "com__get_months",
                          "com__get_shortmonths", "com__open_locfile", "com__timeafromchar_mb",
                          "comn__build_class1", "comn__convt_from_utf8",
                          "comn__get_sort_description", "comn__intl_load_charset",
                          "comn__intl_load_message", "comn__intl_load_sortorder",
                          "comn__sortorder_drop"})


    # ---- crypt ----

    salt, other_salt = b"\x01\x02\x03\x04\x05\x06\x07\x08", b"12345678"
    secret_hex = "0x0102793154c7ec100920f480a2ab11f64fb8dbf833bab79bb0da2799db2df63ec506"

    def crypt(self, action, *lines, end=b"\n"):
        return zrvcomn("crypt", "hex", action, stdin=b"\n".join(lines) + end)

    def test_crypt_hex(self):
        for salt in (self.salt, b"0x0102030405060708"):
            with self.subTest(salt):
                self.check(self.crypt("encode", salt, b"secret"), 0, self.secret_hex + "\n")
                self.check(self.crypt("decode", salt, self.secret_hex.encode()), 0, "secret\n")
        # Lines may end in CR LF, the last one in nothing; digits may be of either case.
        self.check(self.crypt("encode", self.salt + b"\r", b"secret\r"), 0, self.secret_hex + "\n")
        self.check(self.crypt("encode", self.salt, b"secret", end=b""), 0, self.secret_hex + "\n")
        self.check(self.crypt("encode", self.salt, b"secret\r", end=b""), 0,
                   self.crypt("encode", self.salt, b"secret\r\r").out)
        upper = b"0x01" + self.secret_hex[4:].upper().encode()
        self.check(self.crypt("decode", self.salt, upper), 0, "secret\n")

    # Sixteen digits behind 0x are bytes in either case of the digits.
    def test_crypt_salt_in_hexadecimal(self):
        salt = bytes.fromhex("abcdef99fefcaa09")
        plain = self.crypt("encode", salt, b"x")
        self.assertEqual(plain.code, 0)
        for spelled in (b"0xabcdef99fefcaa09", b"0xABCDEF99FEFCAA09"):
            self.check(self.crypt("encode", spelled, b"x"), 0, plain.out)

    # What comes out is what went in, byte for byte.
    def test_crypt_any_bytes(self):
        for size in (1, 29, 30):
            text = bytes(b for b in range(200, 200 + size + 1) if b != 10)[:size]
            text = b"\\" + text[1:]
            form = self.crypt("encode", self.other_salt, text)
            self.assertEqual((form.code, len(form.out)), (0, 71))
            self.assertEqual(self.crypt("decode", self.other_salt, form.out.strip().encode()).raw,
                             text + b"\n")

    def test_crypt_refuses(self):
        for action, lines, message in (
                ("encode", [self.salt, b""], "a text has 1 to 30 bytes, not 0: CS_FAIL"),
                ("encode", [self.salt, b"x" * 31], "a text has 1 to 30 bytes, not 31: CS_FAIL"),
                ("encode", [self.salt, b"x" * 1025], "the text is too long"),
                ("encode", [b"1234567", b"x"], "a salt has 8 bytes"),
                ("encode", [b"123456789", b"x"], "a salt has 8 bytes"),
                ("encode", [b"0x010203040506070g", b"x"], "a salt has 8 bytes"),
                ("encode", [b"0y0102030405060708", b"x"], "a salt has 8 bytes"),
                ("encode", [b"0x01020304050607", b"x"], "a salt has 8 bytes"),
                ("decode", [self.salt, self.secret_hex[:-2].encode()], "CS_FAIL"),
                ("decode", [self.salt, self.secret_hex[:-1].encode() + b"g"], "CS_FAIL"),
                ("decode", [self.salt, b"0x02" + self.secret_hex[4:].encode()], "CS_FAIL"),
                ("decode", [self.salt, self.secret_hex[:-2].encode() + b"1f"], "CS_FAIL")):
            with self.subTest(message):
                result = self.crypt(action, *lines)
                self.assertEqual((result.code, result.out), (1, ""))
                self.assertRegex(result.err, r"\Azrvcomn crypt: [^\n]+\n\Z")
                self.assertIn(message, result.err)
                self.assertNotIn("1234567", result.err)

    def test_crypt_input_that_ends_early(self):
        self.check(zrvcomn("crypt", "hex", "encode"), 1, "",
                   "zrvcomn crypt: standard input ended before the salt\n")
        self.check(zrvcomn("crypt", "hex", "encode", stdin=b"12345678\n"), 1, "",
                   "zrvcomn crypt: standard input ended before the text\n")

    # Nothing secret comes from the arguments, and what is there is not repeated.
    def test_crypt_takes_no_secret_argument(self):
        for words in (("encode", "hunter2"), ("encode", "--", "hunter2"), ("decode", "a", "hunter2")):
            result = zrvcomn("crypt", "hex", *words)
            self.check_usage(result, "standard input")
            self.assertNotIn("hunter2", result.err)

    def test_crypt_usage(self):
        self.check_usage(zrvcomn("crypt"))
        self.check_usage(zrvcomn("crypt", "hex"))
        self.check_usage(zrvcomn("crypt", "base64", "encode"), "hex")
        self.check_usage(zrvcomn("crypt", "hex", "encipher"), "encode and decode")

    def crypt_on_terminal(self, converse):
        """What the command prints where, and its exit status, with its input at a terminal."""
        master, slave = pty.openpty()
        try:
            before = termios.tcgetattr(slave)
            process = subprocess.Popen([command, "crypt", "hex", "encode"], stdin=slave,
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            converse(master, process)
            out, err = process.communicate(timeout=60)
            echoed = b""
            while select.select([master], [], [], 0.2)[0]:
                echoed += os.read(master, 4096)
            self.assertEqual(termios.tcgetattr(slave), before)
            return out, err, echoed, process.returncode
        finally:
            os.close(master)
            os.close(slave)

    def test_crypt_asks_without_echo(self):
        def answer(master, process):
            prompts = b""
            for prompt, line in ((b"salt: ", b"12345678\n"), (b"text: ", b"secret\n")):
                while not prompts.endswith(prompt):
                    prompts += os.read(process.stderr.fileno(), 1)
                self.await_quiet(master)
                os.write(master, line)

        out, err, echoed, code = self.crypt_on_terminal(answer)
        self.assertEqual((code, len(out), err), (0, 71, b"\n"))
        self.assertEqual(out, self.crypt("encode", b"12345678", b"secret").raw)
        self.assertEqual(echoed, b"")

    def await_quiet(self, terminal):
        for _ in range(6000):
            if not termios.tcgetattr(terminal)[3] & termios.ECHO:
                return
            time.sleep(0.01)
        self.fail("the echo stays on")

    # The terminal is as before when a signal ends the question.
    def test_crypt_interrupted(self):
        def interrupt(master, process):
            self.await_quiet(master)
            process.send_signal(signal.SIGINT)

        out, err, echoed, code = self.crypt_on_terminal(interrupt)
        self.assertEqual((code, out), (1, b""))
        self.assertIn(b"interrupted", err)
        self.assertEqual(echoed, b"")

    # ---- key ----

    aes_key = "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4"
    aes_iv = "000102030405060708090a0b0c0d0e0f"

    def openssl(self, *words, stdin=b""):
        done = subprocess.run(["openssl", *words], input=stdin, capture_output=True, cwd=self.scratch)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def key_files(self):
        key, iv = self.scratch / "key", self.scratch / "iv"
        key.write_text(self.aes_key + "\n")
        iv.write_text(self.aes_iv.upper() + "\r\n")
        return key, iv

    def test_key_create(self):
        first, second = zrvcomn("key", "create"), zrvcomn("key", "create")
        for result in (first, second):
            self.assertEqual((result.code, result.err), (0, ""))
            self.assertRegex(result.out, r"\A[0-9a-f]{64}\n\Z")
        self.assertNotEqual(first.out, second.out)
        file = self.scratch / "new.key"
        self.check(zrvcomn("key", "create", "--out", file), 0, "")
        self.assertRegex(file.read_text(), r"\A[0-9a-f]{64}\n\Z")
        self.assertEqual(file.stat().st_mode & 0o777, 0o600)
        before = file.read_text()
        self.assertIn("File exists", zrvcomn("key", "create", "--out", file).err)
        self.assertEqual(file.read_text(), before)

    def test_key_and_openssl_read_each_other(self):
        key, iv = self.key_files()
        for text in (b"", b"x", b"sixteen bytes...", bytes(range(256)) * 1000):
            cipher = self.openssl("enc", "-aes-256-cbc", "-K", self.aes_key, "-iv", self.aes_iv, stdin=text)
            ours = zrvcomn("key", "encrypt", "--key", key, "--iv", iv, stdin=text)
            self.assertEqual((ours.code, ours.err, ours.raw), (0, "", cipher))
            back = zrvcomn("key", "decrypt", "--key", key, "--iv", iv, stdin=cipher)
            self.assertEqual((back.code, back.err, back.raw), (0, "", text))

    def test_key_draws_a_vector_for_each_text(self):
        key, _ = self.key_files()
        ciphers = [zrvcomn("key", "encrypt", "--key", key, stdin=b"text").raw for _ in range(2)]
        self.assertEqual([len(cipher) for cipher in ciphers], [32, 32])
        self.assertNotEqual(ciphers[0], ciphers[1])
        for cipher in ciphers:
            self.check(zrvcomn("key", "decrypt", "--key", key, stdin=cipher), 0, "text")

    def test_key_from_standard_input(self):
        lines = f"{self.aes_key}\n{self.aes_iv}\n".encode()
        cipher = zrvcomn("key", "encrypt", "--key", "-", "--iv", "-", stdin=lines + b"a\nb")
        self.assertEqual((cipher.code, len(cipher.raw)), (0, 16))
        self.check(zrvcomn("key", "decrypt", "--key=-", "--iv=-", stdin=lines + cipher.raw), 0, "a\nb")

    def test_key_refuses(self):
        key, iv = self.key_files()
        cipher = zrvcomn("key", "encrypt", "--key", key, "--iv", iv, stdin=b"text").raw
        bad = self.scratch / "bad"
        bad.write_text(self.aes_key[:-1] + "g\n")
        for words, stdin, message in (
                (("decrypt", "--key", key, "--iv", iv), cipher[:-1], "damaged"),
                (("decrypt", "--key", key), b"short", "no initialisation vector"),
                (("decrypt", "--key", key, "--iv", key), cipher, "32 hexadecimal digits"),
                (("encrypt", "--key", bad), b"", "64 hexadecimal digits"),
                (("encrypt", "--key", "-"), b"", "standard input ended before the key")):
            with self.subTest(message):
                result = zrvcomn("key", *words, stdin=stdin)
                self.assertEqual((result.code, result.raw), (1, b""))
                self.assertRegex(result.err, r"\Azrvcomn key: [^\n]+\n\Z")
                self.assertIn(message, result.err)
                self.assertNotIn(self.aes_key[:16], result.err)

    def test_key_file_that_is_not_there(self):
        self.check_usage(zrvcomn("key", "encrypt", "--key", str(self.scratch / "none")),
                         f"cannot open '{self.scratch}/none': No such file or directory")

    def test_key_without_a_provider_for_fips(self):
        if subprocess.run(["openssl", "list", "-providers", "-provider", "fips"],
                          capture_output=True).returncode == 0:
            self.skipTest("this machine has a FIPS kernel")
        result = zrvcomn("key", "create", ZRVNCL_FIPS_MODE="0")
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("ZRVNCL_FIPS_MODE", result.err)

    # Nothing secret comes from the arguments, and what is there is not repeated.
    def test_key_usage(self):
        for words in (("create", "hunter2"), ("encrypt", "--key", "-", "--", "hunter2")):
            result = zrvcomn("key", *words)
            self.check_usage(result, "standard input")
            self.assertNotIn("hunter2", result.err)
        self.check_usage(zrvcomn("key"))
        self.check_usage(zrvcomn("key", "break"), "create, encrypt, decrypt or pair")
        self.check_usage(zrvcomn("key", "CREATE", "--bits", "2048"), "--bits is for pair")
        self.check_usage(zrvcomn("key", "encrypt"), "--key")
        self.check_usage(zrvcomn("key", "create", "--key", "x"), "--key")
        self.check_usage(zrvcomn("key", "pair", "--out", "x"), "--out")
        self.check_usage(zrvcomn("key", "create", "--bits", "2048"), "--bits")
        for bits in ("1024", "16392", "0x800"):
            self.check_usage(zrvcomn("key", "pair", "--bits", bits), "2048 to 16384")
        for bits in ("2049", "03777"):  # which is decimal
            self.check_usage(zrvcomn("key", "pair", "--bits", bits), "multiple of 8")

    def test_key_pair(self):
        process = subprocess.Popen([command, "key", "pair", "--bits", "2048"], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        pem = b""
        while not pem.endswith(b"-----END RSA PUBLIC KEY-----\n"):
            line = process.stdout.readline()
            self.assertTrue(line)
            pem += line
        (self.scratch / "public1.pem").write_bytes(pem)
        self.openssl("rsa", "-RSAPublicKey_in", "-in", "public1.pem", "-pubout", "-out", "public.pem")
        ciphers = [self.openssl("pkeyutl", "-encrypt", "-pubin", "-inkey", "public.pem", "-pkeyopt",
                                "rsa_padding_mode:oaep", stdin=text) for text in (b"one", b"two")]
        lines = [ciphers[0].hex(), "0" * 512, "short", ciphers[1].hex().upper()]
        out, err = process.communicate("\n".join(lines).encode() + b"\n", timeout=60)
        self.assertEqual((out, process.returncode), (b"one\ntwo\n", 1))
        self.assertEqual(err.decode(), "zrvcomn key: line 2: was not encrypted for this key: CS_FAIL\n"
                                       "zrvcomn key: line 3: has not 512 hexadecimal digits: CS_FAIL\n")

    # ---- store ----

    def store(self, *words, stdin=b""):
        if not hasattr(self, "store_directory"):
            above = Path(tempfile.mkdtemp())
            self.addCleanup(shutil.rmtree, above)
            self.store_directory = above / "store"
        return zrvcomn("store", *words, "--directory", self.store_directory, stdin=stdin)

    def test_store_keeps_values(self):
        for value, words in ((b"secret", ()), (b"", ()), ("\u00e4\u20ac".encode(), ("--unencrypted",)),
                             (b"two\nlines", ())):
            for end in (b"\n", b"\r\n", b""):
                if not end and value.endswith(b"\n"):
                    continue
                self.check(self.store("put", "app/password", *words, stdin=value + end), 0, "")
                self.assertEqual(self.store("get", "app/password").raw, value + b"\n")
        # One line end goes, and no more.
        for value, kept in (b"x\n\n", b"x\n"), (b"x\r", b"x\r"), (b"x\r\r\n", b"x\r"), (b"\n", b""):
            self.check(self.store("put", "a", stdin=value), 0, "")
            self.assertEqual(self.store("get", "a").raw, kept + b"\n")
        binary = bytes(range(256)) + b"\n"
        self.check(self.store("put", "--binary", "raw", stdin=binary), 0, "")
        self.assertEqual(self.store("get", "raw").raw, binary)
        self.assertNotIn(b"secret", b"".join(path.read_bytes() for path in
                                             self.store_directory.iterdir()))

    def test_store_lists_and_deletes(self):
        for key in ("b", "a/2", "a/1"):
            self.check(self.store("put", key, stdin=b"v"), 0, "")
        self.check(self.store("list"), 0, "a/1\na/2\nb\n")
        self.check(self.store("list", "a/"), 0, "a/1\na/2\n")
        self.assertEqual([json.loads(line) for line in self.store("list", "b", "--json").out.splitlines()],
                         [{"key": "b"}])
        self.check(self.store("list", "c"), 0, "")
        self.check(self.store("delete", "a/1"), 0, "")
        self.check(self.store("list"), 0, "a/2\nb\n")
        missing = f"zrvcomn store: {self.store_directory}/a+1.rec: there is no such record\n"
        self.check(self.store("delete", "a/1"), 1, "", missing)
        self.check(self.store("get", "a/1"), 1, "", missing)

    def test_store_rekey(self):
        self.check(self.store("put", "a", stdin=b"v"), 0, "")
        key = (self.store_directory / "key").read_bytes()
        self.check(self.store("rekey"), 0, "")
        self.assertNotEqual((self.store_directory / "key").read_bytes(), key)
        self.check(self.store("rekey", "--from-input", stdin=b"0f" * 32 + b"\n"), 0, "")
        self.assertIn(b"\x0f" * 32, (self.store_directory / "key").read_bytes())
        self.check(self.store("get", "a"), 0, "v\n")
        self.check(self.store("rekey", "--from-input", stdin=b"0f\n"), 1, "",
                   "zrvcomn store: a master key is 64 hexadecimal digits\n")

    def test_store_refuses(self):
        self.check(self.store("put", "a", stdin=b"\xff"), 1, "",
                   "zrvcomn store: a value that is not binary must be UTF-8\n")
        self.check(self.store("put", "a", stdin=b"x\0y"), 1, "",
                   "zrvcomn store: the value has a NUL byte: it is binary (--binary)\n")
        for words in ((), ("--binary",)):
            for length in (1048577, 1048584, 2000000):
                self.check(self.store("put", "a", *words, stdin=b"x" * length), 1, "",
                           "zrvcomn store: a value has at most 1048576 bytes\n")
            self.check(self.store("put", "a", *words, stdin=b"x" * 1048576), 0, "")
        self.check(self.store("put", "a b", stdin=b"x"), 1, "",
                   "zrvcomn store: this is no key of a record\n")

    def test_store_usage(self):
        self.check_usage(zrvcomn("store"))
        self.check_usage(zrvcomn("store", "steal"))
        self.check_usage(zrvcomn("store", "put"), "the key of a record is needed")
        self.check_usage(zrvcomn("store", "put", "a", "secret"), "never from the arguments")
        self.check_usage(zrvcomn("store", "rekey", "0f" * 32), "never from the arguments")
        self.check_usage(zrvcomn("store", "get", "a", "--unencrypted"), "--unencrypted goes with put")
        self.check_usage(zrvcomn("store", "put", "a", "--json"), "--json goes with list")
        self.check_usage(zrvcomn("store", "list", "--directory", "/" + "d" * 4000), "too long")

    # The library's own message, its log, and no crash.
    def test_store_without_its_library(self):
        with tempfile.TemporaryDirectory() as scratch:
            (Path(scratch) / "libvelssfs.so").write_text("no library")
            done = subprocess.run([command, "store", "list"], cwd=scratch, capture_output=True, text=True,
                                  env=os.environ | {"LD_LIBRARY_PATH": scratch})
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertRegex(done.stderr, r"\Azrvcomn store: comn_ssfslib_load\(\): [^\n]*\n"
                                          r"zrvcomn store: the secure store cannot be loaded\n\Z")
            self.assertRegex((Path(scratch) / "secstore.log").read_text(),
                             r"\A\(comn_ssfslib_load line \d+\): "
                             r"DLOPEN of libvelssfs.so library failed\n\Z")

    def test_store_asks_without_echo(self):
        above = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, above)
        master, slave = pty.openpty()
        try:
            process = subprocess.Popen([command, "store", "put", "a", "--directory", above],
                                       stdin=slave, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            prompt = b""
            while not prompt.endswith(b"value: "):
                prompt += os.read(process.stderr.fileno(), 1)
            self.await_quiet(master)
            os.write(master, b"typed secret\n")
            out, err = process.communicate(timeout=60)
            self.assertEqual((process.returncode, out, err), (0, b"", b"\n"))
            self.assertFalse(select.select([master], [], [], 0.2)[0])
        finally:
            os.close(master)
            os.close(slave)
        self.assertEqual(zrvcomn("store", "get", "a", "--directory", above).raw, b"typed secret\n")

    # ---- types --wire ----

    def test_types_wire(self):
        lines = zrvcomn("types", "--wire").out.split("\n")
        blank = lines.index("")
        forms = {row[1]: row[2:] for row in (line.split() for line in lines[1:blank])}
        self.assertEqual(len(forms), 40)
        self.assertEqual(forms["char"], ["47", "255", "1", "39", "255", "1"])
        self.assertEqual(forms["int"], ["56", "4", "0", "38", "4", "1"])
        self.assertEqual(forms["varchar"], ["-"] * 6)
        self.assertEqual(forms["blob"], ["36", "-", "0", "36", "-", "0"])
        wire = [line.split() for line in lines[blank + 2:-1]]
        self.assertEqual(len(wire), 49)
        self.assertEqual([row for row in wire if row[0] == "38"],
                         [["38", "tinyint", "1", "1", "yes"], ["38", "smallint", "2", "1", "yes"],
                          ["38", "int", "4", "1", "yes"], ["38", "bigint", "8", "1", "yes"]])
        self.assertIn(["45", "binary", "255", "1", "no"], wire)
        self.assertIn(["36", "blob", "-", "0", "no"], wire)

    def test_types_wire_json(self):
        objects = [json.loads(line)
                   for line in zrvcomn("types", "--wire", "--json").out.splitlines()]
        self.assertEqual([object["code"] for object in objects], list(range(40)))
        self.assertEqual(objects[27], {"code": 27, "name": "date",
                                       "fixed": {"wire": 49, "maxlength": 4, "prefix": 0},
                                       "nullable": {"wire": 123, "maxlength": 4, "prefix": 1}})
        self.assertEqual(objects[18]["fixed"], None)
        self.assertEqual(objects[26]["nullable"], {"wire": 36, "maxlength": None, "prefix": 0})

    def test_types_wire_takes_no_filter(self):
        self.check_usage(zrvcomn("types", "--wire", "--from", "int"), "--wire")
        self.check_usage(zrvcomn("types", "--wire", "--to", "int"), "--wire")


if __name__ == "__main__":
    project.main()
