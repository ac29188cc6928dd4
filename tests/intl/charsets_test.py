"""The shipped character sets are what their generator makes of the mappings, each loads, and what the
library says of their characters is what ICU says."""
import ctypes
import ctypes.util
import os
import re
import sys
import tempfile
import unittest
from collections import Counter, defaultdict
from ctypes import POINTER, byref, c_byte, c_char_p, c_int, c_ubyte, c_void_p
from pathlib import Path

import project
from project import build, run, source_dir

sys.path.insert(0, str(source_dir / "data"))
import generate_charsets  # noqa: E402

generator = source_dir / "data/generate_charsets.py"
charsets = source_dir / "home/charsets"
version = generate_charsets.VERSION


class Generated(unittest.TestCase):
    def test_committed_files_are_generated(self):
        readme = generate_charsets.UNICODE / "ReadMe.txt"
        if not readme.exists() or f"Version {version}" not in readme.read_text():
            self.skipTest(f"no character database of Unicode {version} (Debian's unicode-data)")
        with tempfile.TemporaryDirectory(prefix="zrvcomn-charsets-") as scratch:
            run(sys.executable, generator, scratch)
            made = {path.relative_to(scratch): path.read_text()
                    for path in Path(scratch).glob("*/charset.loc")}
        committed = {path.relative_to(charsets): path.read_text()
                     for path in charsets.glob("*/charset.loc")}
        self.assertEqual(set(made), set(committed))
        for path, text in made.items():
            self.assertTrue(text == committed[path], f"{path} is not what the generator makes")

    # A set is described or there is a told reason why not.
    def test_sets_with_a_converter(self):
        shipped, left_out = generate_charsets.shipped()
        self.assertEqual({path.parent.name for path in charsets.glob("*/charset.loc")}, set(shipped))
        text = (source_dir / "docs/files.md").read_text()
        for name in left_out:
            self.assertIn(f"`{name}`", text)


class Cache(ctypes.Structure):
    _fields_ = [("locname", c_char_p), ("locnamelen", c_int), ("charname", c_char_p),
                ("charnamelen", c_int), ("locchardesc", POINTER(c_void_p)), ("rest", c_byte * 256)]


class Context(ctypes.Structure):
    _fields_ = [("ctxtag", c_int), ("ctxstatus", c_int), ("ctxversion", c_int), ("ctxlocale", c_void_p),
                ("ctxdeflocale", c_void_p), ("ctxglobals", c_void_p), ("rest", c_byte * 512)]


class Attributes(ctypes.Structure):
    _fields_ = [("cs_status", ctypes.c_short), ("cs_class", c_ubyte), ("cs_id", c_ubyte),
                ("cs_namelen", ctypes.c_short), ("cs_name", ctypes.c_char * 30),
                ("cs_maxcharlen", c_ubyte), ("cs_ncharsize", c_ubyte), ("cs_nnorm", c_ubyte),
                ("cs_ntype", c_ubyte), ("cs_nsoundex", c_ubyte), ("spare", c_ubyte * 3),
                ("cs_width_map", c_void_p), ("cs_norm_map", c_void_p), ("cs_type_map", c_void_p),
                ("cs_soundex", c_void_p)]


class Icu:
    """The functions of libicuuc by their plain names."""

    def __init__(self):
        name = ctypes.util.find_library("icuuc")
        if name is None:
            raise unittest.SkipTest("no libicuuc")
        self.library = ctypes.CDLL(name)
        self.suffix = "_" + re.search(r"\.so\.(\d+)", name)[1]

    def __getattr__(self, name):
        function = getattr(self.library, name + self.suffix)
        if name.startswith("u_is") or name == "u_charType":
            function.restype = c_byte
        setattr(self, name, function)
        return function

    def is_assigned(self, code):
        return self.u_charType(code) != 0


UPPER_CASE, LOWER_CASE, SYMBOLS = 1, 2, range(24, 28)  # general categories of ICU
EAST_ASIAN_WIDTH, AMBIGUOUS, WIDE = 0x1004, 1, (3, 5)
QUESTIONS = ("alpha", "upper", "lower", "digit", "space", "xdigit", "punct", "graph")


@unittest.skipIf(ctypes.sizeof(c_void_p) != build.pointer_size,
                 "the library is not of Python's data model")
class Loaded(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.icu = Icu()
        os.environ["ZARVEK"] = str(source_dir / "home")
        cls.library = ctypes.CDLL(str(build.zrvcomn))
        for name in QUESTIONS:
            getattr(cls.library, "comn_is" + name).argtypes = [c_void_p, c_char_p]
        for name in ("comn_get_lex", "comn_char_width", "comn_disp_width", "comn_to_ascii"):
            getattr(cls.library, name).argtypes = [c_void_p, c_char_p]
        cls.library.comn_to_ascii.restype = c_ubyte
        for name in ("comn_toupper", "comn_tolower"):
            getattr(cls.library, name).argtypes = [c_void_p, c_char_p, c_char_p]
            getattr(cls.library, name).restype = None
        cls.globals = (c_void_p * 32)()
        cls.context = Context(ctxglobals=ctypes.addressof(cls.globals))
        cls.identities, cls.seen = {}, {}

    @classmethod
    def tearDownClass(cls):
        cls.library.com_intl_chardesc_drop(byref(cls.context))

    def load(self, name):
        identity = self.identities.setdefault(name, (c_byte * 64)())
        cache = Cache(charname=name.encode(), charnamelen=len(name))
        self.assertEqual(self.library.comn__intl_load_charset(
            byref(self.context), identity, byref(cache), None, 0), 1, name)
        return ctypes.cast(cache.locchardesc[1], POINTER(Attributes))

    def test_every_set(self):
        for name, (csid, _) in generate_charsets.shipped()[0].items():
            with self.subTest(name):
                record = self.load(name)
                self.assertEqual(record.contents.cs_name.decode(), name)
                self.assertEqual(record.contents.cs_namelen, len(name))
                self.assertEqual(record.contents.cs_id, csid)
                if name != "iso_1":
                    self.compare(name, record)

    # Class and longest character.
    def test_forms(self):
        for name, class_, longest in (("ascii_8", 1, 1), ("koi8", 1, 1), ("cp850", 1, 1), ("cp037", 2, 1),
                                      ("sjis", 2, 2), ("eucjis", 2, 3), ("euccns", 2, 4),
                                      ("gb18030", 2, 4), ("utf8", 2, 4)):
            record = self.load(name).contents
            self.assertEqual((record.cs_class, record.cs_maxcharlen), (class_, longest), name)
            self.assertEqual(record.cs_width_map is None, longest == 1, name)
            self.assertEqual(record.cs_norm_map is None, class_ == 1, name)

    # Worked out by hand: an upper case behind the same first byte, a kanji, a wide digit and letter, a blank.
    def test_some_characters(self):
        for name, code, types, upper, ascii in (
                ("sjis", b"\x84\x70", 2 + 64, b"\x84\x40", 0),         # Cyrillic a
                ("sjis", b"\x88\x9F", 3 + 64, b"\x88\x9F", 0),         # a kanji
                ("sjis", b"\x82\x50", 4 + 16 + 64, b"\x82\x50", 0x31), # wide 1
                ("sjis", b"\x82\x81", 2 + 16 + 64, b"\x82\x60", 0x61), # wide a
                ("sjis", b"\x82\x60", 1 + 16 + 64, b"\x82\x60", 0x61), # wide A
                ("utf8", b"Z", 1 + 64, b"Z", 0x7A),                    # Z
                ("sjis", b"\x81\x40", 8, b"\x81\x40", 0x20),           # ideographic space
                ("utf8", b"\xC3\xA4", 2 + 64, b"\xC3\x84", 0),         # a with diaeresis
                ("utf8", b"\xC3\xBF", 2 + 64, b"\xC3\xBF", 0),         # y with diaeresis: another lead
                ("utf8", b"\xE4\xB8\x80", 3 + 64, None, 0),            # an ideograph
                ("koi8", b"\xC1", 2 + 64, b"\xE1", 0xC1),              # Cyrillic a
                ("cp037", b"\x81", 2 + 16 + 64, b"\xC1", 0x61),        # a
                ("cp037", b"\xF7", 4 + 16 + 64, b"\xF7", 0x37)):       # 7
            record = self.load(name)
            found = sum(1 << bit for bit, question in enumerate(
                ("upper", "lower", "digit", "space", "xdigit", "punct", "graph"))
                if getattr(self.library, "comn_is" + question)(record, code))
            self.assertEqual(found, types, f"{name} {code.hex()}")
            if upper is not None:
                self.assertEqual(self.form(record, self.library.comn_toupper, code), upper)
            self.assertEqual(self.library.comn_to_ascii(record, code), ascii, f"{name} {code.hex()}")

    def test_iso_1_is_the_built_in_set(self):
        built_in = self.library.com_get_charattrib
        built_in.restype = POINTER(Attributes)
        ours, told = self.load("iso_1").contents, built_in().contents
        for field in ("cs_status", "cs_class", "cs_id", "cs_name", "cs_namelen", "cs_maxcharlen",
                      "cs_ncharsize", "cs_nnorm", "cs_ntype", "cs_nsoundex", "cs_width_map", "cs_norm_map"):
            self.assertEqual(getattr(ours, field), getattr(told, field), field)
        self.assertEqual(ctypes.string_at(ours.cs_type_map, 1024), ctypes.string_at(told.cs_type_map, 1024))
        self.assertEqual(ctypes.string_at(ours.cs_soundex, 256), ctypes.string_at(told.cs_soundex, 256))

    def classes(self, character):
        """The classes by ICU, of a set that reduces to ASCII."""
        if character not in self.seen:
            category = self.icu.u_charType(character)
            alpha = self.icu.u_isalpha(character) != 0
            self.seen[character] = {
                "alpha": alpha, "upper": alpha and category != LOWER_CASE,
                "lower": alpha and category != UPPER_CASE,
                "digit": self.icu.u_isdigit(character) != 0,
                "xdigit": self.icu.u_isxdigit(character) != 0,
                "space": self.icu.u_isspace(character) != 0,
                "punct": self.icu.u_ispunct(character) != 0 or category in SYMBOLS,
                "graph": self.icu.u_isgraph(character) != 0}
        return self.seen[character]

    def answers(self, record, code):
        return {name: getattr(self.library, "comn_is" + name)(record, code) != 0 for name in QUESTIONS}

    def expected(self, character, is_class1):
        """Only ASCII has digits in a set that reduces nothing."""
        classes = self.classes(character)
        if is_class1 and character >= 0x80:
            classes = classes | {"digit": False, "xdigit": False}
        return classes

    def form(self, record, change, code):
        dest = ctypes.create_string_buffer(b"\xEE" * 6)
        change(record, code, dest)
        return dest.raw[:len(code)]

    def compare(self, name, record):
        mapping = generate_charsets.load_set(name)
        if name == "utf8":
            mapping.decode = {chr(c).encode(): chr(c) for c in range(0x110000)
                              if not 0xD800 <= c < 0xE000 and self.icu.is_assigned(c)}
        encode = mapping.encode
        is_class1 = record.contents.cs_class == 1
        self.assertEqual(record.contents.cs_maxcharlen, max(map(len, mapping.decode)))
        groups, columns = defaultdict(list), defaultdict(Counter)
        for code, text in mapping.decode.items():
            where = f"{name} {code.hex()} U+{ord(text[0]):04X}"
            self.assertEqual(self.library.comn_char_width(record, code), len(code), where)
            if len(code) > 1:
                width = self.icu.u_getIntPropertyValue(ord(text[0]), EAST_ASIAN_WIDTH)
                wide = width in WIDE or width == AMBIGUOUS and name != "utf8"
                columns[code[:1]][2 if wide else 1] += 1
            if len(text) > 1:
                continue
            character = ord(text)
            expected = self.expected(character, is_class1)
            if len(code) > 2:
                groups[code[:2]].append((code, expected))
                continue
            self.assertEqual(self.answers(record, code), expected, where)
            for change, other in ((self.library.comn_toupper, self.icu.u_toupper(character)),
                                  (self.library.comn_tolower, self.icu.u_tolower(character))):
                form = encode.get(chr(other), code) if other != character else code
                if form[:-1] != code[:-1]:
                    form = code
                self.assertEqual(self.form(record, change, code), form, where)
            if not is_class1:
                ascii = self.library.comn_to_ascii(record, code)
                if character < 0x80:
                    self.assertEqual(ascii, ord(chr(character).lower()), where)
                elif expected["digit"]:
                    self.assertEqual(ascii, ord("0") + self.icu.u_charDigitValue(character), where)
                elif 0xFF01 <= character <= 0xFF5E:
                    self.assertEqual(ascii, ord(chr(character - 0xFEE0).lower()), where)
        # What longer characters with the same beginning have in common; digits cannot be told apart.
        for members in groups.values():
            alpha = all(expected["alpha"] for _, expected in members)
            common = {question: all(expected[question] for _, expected in members)
                      for question in ("space", "punct", "graph")}
            common |= {"alpha": alpha, "digit": False, "xdigit": False}
            common |= {case: alpha and any(expected[case] for _, expected in members)
                       for case in ("upper", "lower")}
            for code, _ in (members[0], members[-1]):
                self.assertEqual(self.answers(record, code), common, f"{name} {code.hex()}")
        for lead, counter in columns.items():
            shown = self.library.comn_disp_width(record, lead + b"\0")
            self.assertEqual(counter[shown], max(counter.values()), f"{name} {lead.hex()}")
        for byte in range(256):
            code = bytes([byte])
            if code not in mapping.decode and self.library.comn_char_width(record, code + b"\0") == 1:
                self.assertFalse(any(self.answers(record, code + b"\0").values()), f"{name} {code.hex()}")


if __name__ == "__main__":
    project.main()
