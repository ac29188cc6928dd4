#!/usr/bin/env python3
"""Writes the mappings in data/mappings from what Debian has of them: the charmaps of the package
`locales`, the converters of libicu72, the encodings of perl.

    data/import_mappings.py [SET ...]

Each set names one source in the table below. Two rules change what a source says. In every set but the
EBCDIC ones the bytes 00 to 7F are ASCII, for pure ASCII text is passed between sets as it is: this
concerns 1A, 1C and 7F, which some sources rotate, and the yen sign and the overline where a source has
them at 5C and 7E. And a character without its own code keeps none: fallbacks of a source from Unicode
are left out. MacThai has some bytes for forms of a character that others have: they are read as it.
"""

import ctypes
import gzip
import re
import subprocess
import sys
from pathlib import Path

import charset_mappings
from charset_mappings import Mapping

CHARMAPS = Path("/usr/share/i18n/charmaps")
ICU_VERSION = 72

# number, set, form, source
ONE_BYTE = """
2 cp850 charmap:IBM850
3 cp437 charmap:IBM437
4 roman8 charmap:HP-ROMAN8
5 mac charmap:MACINTOSH
12 iso88592 charmap:ISO-8859-2
13 iso88595 charmap:ISO-8859-5
14 iso88596 charmap:ISO-8859-6
15 iso88597 charmap:ISO-8859-7
16 iso88598 charmap:ISO-8859-8
17 iso88599 charmap:ISO-8859-9
18 iso10 charmap:ISO-8859-10
19 iso88593 charmap:ISO-8859-3
20 iso88594 charmap:ISO-8859-4
21 iso15 charmap:ISO-8859-15
26 mac_cyr icu:macos-7_3-10.2
27 mac_ee icu:macos-29-10.2
28 macgreek icu:macos-6_2-10.4
29 macturk icu:macos-35-10.2
30 greek8 charmap:HP-GREEK8
31 turkish8 charmap:HP-TURKISH8
32 koi8 charmap:KOI8-R
33 tis620 charmap:TIS-620
37 cp037 icu:ibm-37_P100-1995
41 macthai perl:MacThai
42 iso13 charmap:ISO-8859-13
43 iso14 charmap:ISO-8859-14
44 roman9 charmap:HP-ROMAN9
45 mac_euro icu:macos-0_2-10.2
46 cp874ibm charmap:IBM874
54 kz1048 charmap:RK1048
273 cp273 icu:ibm-273_P100-1995
277 cp277 icu:ibm-277_P100-1995
278 cp278 icu:ibm-278_P100-1995
280 cp280 icu:ibm-280_P100-1995
284 cp284 icu:ibm-284_P100-1995
285 cp285 icu:ibm-285_P100-1995
290 cp290 icu:ibm-290_P100-1995
297 cp297 icu:ibm-297_P100-1995
420 cp420 icu:ibm-420_X120-1999
424 cp424 icu:ibm-424_P100-1995
500 cp500 icu:ibm-500_P100-1995
737 cp737 charmap:CP737
775 cp775 charmap:CP775
852 cp852 charmap:IBM852
855 cp855 charmap:IBM855
856 cp856 charmap:IBM856
857 cp857 charmap:IBM857
858 cp858 charmap:IBM858
860 cp860 charmap:IBM860
861 cp861 charmap:IBM861
862 cp862 charmap:IBM862
863 cp863 charmap:IBM863
864 cp864 charmap:IBM864
865 cp865 charmap:IBM865
866 cp866 charmap:IBM866
869 cp869 charmap:IBM869
870 cp870 icu:ibm-870_P100-1995
871 cp871v1 icu:ibm-871_P100-1995
874 cp874 icu:windows-874-2000
875 cp875 icu:ibm-875_P100-1995
921 cp921 icu:ibm-921_P100-1995
923 cp923 icu:ibm-923_P100-1998
1006 cp1006 icu:ibm-1006_P100-1995
1026 cp1026 icu:ibm-1026_P100-1995
1047 cp1047 icu:ibm-1047_P100-1995
1140 cp1140 icu:ibm-1140_P100-1997
1141 cp1141 icu:ibm-1141_P100-1997
1142 cp1142 icu:ibm-1142_P100-1997
1143 cp1143 icu:ibm-1143_P100-1997
1144 cp1144 icu:ibm-1144_P100-1997
1145 cp1145 icu:ibm-1145_P100-1997
1146 cp1146 icu:ibm-1146_P100-1997
1147 cp1147 icu:ibm-1147_P100-1997
1148 cp1148 icu:ibm-1148_P100-1997
1149 cp1149 icu:ibm-1149_P100-1997
1250 cp1250 charmap:CP1250
1251 cp1251 charmap:CP1251
1252 cp1252 charmap:CP1252
1253 cp1253 charmap:CP1253
1254 cp1254 charmap:CP1254
1255 cp1255 charmap:CP1255
1256 cp1256 charmap:CP1256
1257 cp1257 charmap:CP1257
1258 cp1258 charmap:CP1258
"""
OTHERS = """
8 deckanji multi_byte charmap:EUC-JP
9 euccns multi_byte charmap:EUC-TW
10 eucgb multi_byte charmap:GB2312
11 cp932ms multi_byte icu:ibm-943_P15A-2003
34 big5 multi_byte charmap:BIG5
36 eucksc multi_byte charmap:EUC-KR
47 big5hk multi_byte charmap:BIG5-HKSCS
48 gb18030 gb18030 charmap:GB18030
49 eucjis multi_byte charmap:EUC-JP
50 sjis multi_byte charmap:SHIFT_JIS
930 cp930 shifted icu:ibm-930_P120-1999
932 cp932 multi_byte icu:ibm-942_P12A-1999
933 cp933 shifted icu:ibm-933_P110-1995
935 cp935 shifted icu:ibm-935_P110-1999
936 cp936 multi_byte icu:windows-936-2000
937 cp937 shifted icu:ibm-937_P110-1999
939 cp939 shifted icu:ibm-939_P120-1999
949 cp949 multi_byte icu:windows-949-2000
950 cp950 multi_byte icu:windows-950-2000
954 cp954 multi_byte icu:ibm-954_P101-2007
5026 cp5026 shifted icu:ibm-930_P120-1999
5035 cp5035 shifted icu:ibm-939_P120-1999
"""
EBCDIC = {37, 273, 277, 278, 280, 284, 285, 290, 297, 420, 424, 500, 870, 871, 875, 930, 933, 935, 937,
          939, 1026, 1047, 5026, 5035, *range(1140, 1150)}
BASES = {"cp5026": "cp930", "cp5035": "cp939"}


def charmap(mapping, name):
    with gzip.open(CHARMAPS / f"{name}.gz", "rt", encoding="latin-1") as file:
        body = file.read().partition("\nCHARMAP\n")[2].partition("\nEND CHARMAP")[0]
    row = re.compile(r"(%IRREVERSIBLE%)?((?:<U[0-9A-F]+>)+)(?:\.\.<U([0-9A-F]+)>)?\s+((?:/x[0-9a-fA-F]{2})+)")
    for line in body.splitlines():
        found = row.match(line)
        if not found:
            continue
        text = "".join(chr(int(number, 16)) for number in re.findall(r"<U([0-9A-F]+)>", found[2]))
        code = bytes.fromhex(found[4].replace("/x", ""))
        count = int(found[3], 16) - ord(text) + 1 if found[3] else 1
        if mapping.form == "gb18030" and len(code) == 4 and ord(text[0]) > 0xFFFF:
            continue  # these follow by rule
        number = charset_mappings.number_of(mapping.form, code)
        for step in range(count):
            here = charset_mappings.bytes_of(mapping.form, len(code), number + step)
            if 0xD800 <= ord(text[0]) + step < 0xE000:
                continue
            mapping.decode[here] = text if count == 1 else chr(ord(text) + step)
            if found[1]:
                mapping.decode_only.add(here)


class Icu:
    """A converter of ICU, strict in both directions."""

    def __init__(self, name):
        self.library = ctypes.CDLL(f"libicuuc.so.{ICU_VERSION}")
        self.status = ctypes.c_int(0)
        self.converter = ctypes.c_void_p(self.call("ucnv_open", name.encode(), restype=ctypes.c_void_p))
        if self.status.value > 0:
            sys.exit(f"no converter {name}")
        stop = ctypes.cast(getattr(self.library, f"UCNV_TO_U_CALLBACK_STOP_{ICU_VERSION}"),
                           ctypes.c_void_p)
        self.call("ucnv_setToUCallBack", self.converter, stop, None, None, None)
        stop = ctypes.cast(getattr(self.library, f"UCNV_FROM_U_CALLBACK_STOP_{ICU_VERSION}"),
                           ctypes.c_void_p)
        self.call("ucnv_setFromUCallBack", self.converter, stop, None, None, None)
        self.units = ctypes.create_string_buffer(64)
        self.bytes = ctypes.create_string_buffer(64)

    def call(self, function, *arguments, restype=ctypes.c_int32):
        entry = getattr(self.library, f"{function}_{ICU_VERSION}")
        entry.restype = restype
        self.status.value = 0
        return entry(*arguments, ctypes.byref(self.status))

    def decode(self, code):
        length = self.call("ucnv_toUChars", self.converter, self.units, 30, code, len(code))
        if self.status.value > 0:
            return None
        return self.units.raw[:2 * length].decode("utf-16-le")

    def encode(self, text):
        units = text.encode("utf-16-le")
        length = self.call("ucnv_fromUChars", self.converter, self.bytes, 60, units, len(units) // 2)
        return self.bytes.raw[:length] if self.status.value <= 0 else None


def icu(mapping, name):
    converter = Icu(name)
    double = (lambda code: b"\x0e" + code + b"\x0f") if mapping.form == "shifted" else lambda code: code
    singles = {}
    for byte in range(256):
        text = converter.decode(bytes([byte]))
        if text and not (mapping.form == "shifted" and byte in (0x0E, 0x0F)):
            singles[byte] = text
            mapping.decode[bytes([byte])] = text
    if mapping.form != "one_byte":
        leads = [byte for byte in range(0x40, 256) if mapping.form == "shifted" or byte not in singles]
        for lead in leads:
            for trail in range(0x40, 0xFF):
                add(mapping, converter, bytes([lead, trail]), double)
    if name.startswith("ibm-954"):
        for lead in range(0xA1, 0xFF):
            for trail in range(0xA1, 0xFF):
                add(mapping, converter, bytes([0x8F, lead, trail]), double)
    for code, text in mapping.decode.items():
        if converter.encode(text) != (double(code) if len(code) > 1 else code):
            mapping.decode_only.add(code)


def add(mapping, converter, code, double):
    text = converter.decode(double(code))
    if text and "\uFFFD" not in text and "\x1a" not in text and len(text) == 1:
        mapping.decode[code] = text


def perl(mapping, name):
    program = ('use Encode; binmode STDOUT, ":utf8"; for (0..255) { my $b = chr; '
               f'my $t = decode("{name}", $b, Encode::FB_QUIET); print join("+", map {{ sprintf "%04X", ord }} '
               'split //, $t), "\\n" }')
    lines = subprocess.run(["perl", "-e", program], check=True, capture_output=True, text=True)
    for byte, line in enumerate(lines.stdout.splitlines()):
        if line and line != "FFFD":
            # A second character only hints at a form of the first.
            first, *hints = line.split("+")
            mapping.decode[bytes([byte])] = chr(int(first, 16))
            if hints:
                mapping.decode_only.add(bytes([byte]))


def settle(mapping):
    """The rule of ASCII; one code for each text, the first one unless the source says otherwise."""
    if mapping.cid not in EBCDIC:
        for byte in range(0x80):
            mapping.decode[bytes([byte])] = chr(byte)
            mapping.decode_only.discard(bytes([byte]))
    mapping.decode.pop(b"\x00", None)
    taken = {}
    for code in sorted(mapping.decode, key=lambda code: (len(code), code)):
        text = mapping.decode[code]
        if code not in mapping.decode_only and taken.setdefault(text, code) != code:
            mapping.decode_only.add(code)
    mapping.decode_only &= set(mapping.decode)


# Its charmap leaves out what has two characters; the converter of the C library knows them.
PAIRS = {"8862": "\u00ca\u0304", "8864": "\u00ca\u030c", "88A3": "\u00ea\u0304", "88A5": "\u00ea\u030c"}


def subset(mapping):
    if mapping.name == "big5hk":
        mapping.decode |= {bytes.fromhex(code): text for code, text in PAIRS.items()}
    if mapping.name == "deckanji":  # ASCII and JIS X 0208
        mapping.decode = {code: text for code, text in mapping.decode.items()
                          if (len(code) == 1 and code[0] < 0x80) or (len(code) == 2 and code[0] >= 0xA1)}


def make(cid, name, form, source):
    kind, _, reference = source.partition(":")
    told = {"charmap": f"{name}: the charmap {reference} of glibc",
            "icu": f"{name}: the converter {reference} of ICU {ICU_VERSION}",
            "perl": f"{name}: the encoding {reference} of perl"}[kind]
    if name == "deckanji":
        told += ", without what its single shifts begin"
    mapping = Mapping(name, int(cid), form, told)
    {"charmap": charmap, "icu": icu, "perl": perl}[kind](mapping, reference)
    subset(mapping)
    settle(mapping)
    return mapping


def sources():
    """(number, set, form, source) of each set."""
    for line in ONE_BYTE.split("\n"):
        if line:
            cid, name, source = line.split()
            yield cid, name, "one_byte", source
    for line in OTHERS.split("\n"):
        if line:
            yield tuple(line.split())


def main():
    made = {}
    for cid, name, form, source in sources():
        if len(sys.argv) == 1 or name in sys.argv[1:] or name in BASES.values():
            made[name] = make(cid, name, form, source)
    for name, mapping in made.items():
        text = charset_mappings.dump(mapping, made.get(BASES.get(name)))
        (charset_mappings.DIRECTORY / f"{name}.txt").write_text(text)


if __name__ == "__main__":
    main()
