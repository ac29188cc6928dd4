#!/usr/bin/env python3
"""Writes the descriptions of character sets, home/charsets/SET/charset.loc.

    data/generate_charsets.py DIRECTORY [SET ...]     all sets below DIRECTORY, or those that are named

What a code means stands in data/mappings, what a character is in the character database of Unicode
(Debian's package unicode-data). The rules:

- A letter without case is both upper and lower case, which makes it a letter. Symbols are punctuation,
  white space is what Unicode has of it and the control codes 9 to 13 and 28 to 31.
- A digit is what reduces to an ASCII digit, a hexadecimal digit likewise.
- Where all bytes of ASCII mean ASCII and the set has one byte for each character, it is of class 1, which
  has no reduction. All others are of class 2: ASCII characters, their wide, narrow and small forms, the
  digits of all scripts, no-break blanks and the minus sign reduce to ASCII, letters to lower case as in
  the built-in set: so the words of dates and numbers are read in either case whatever the set.
- Another case counts where the set has it, in class 2 behind the same first byte.
- A character of three or four bytes has what all characters have that share its first two bytes.
- A first byte takes the columns of most of its characters. Outside utf8 the doubtful ones are wide.

iso_1 has the tables that the library has built in, whose rules are its own.
"""

import argparse
import re
import sys
from collections import Counter, defaultdict
from pathlib import Path

import charset_mappings
from charset_mappings import Mapping

DATA = Path(__file__).parent
UNICODE = Path("/usr/share/unicode")
VERSION = "15.0.0"

UPPER, LOWER, DIGIT, SPACE, XDIGIT, PUNCT, GRAPH, LEAD = (1 << bit for bit in range(8))
LETTER = UPPER | LOWER
# Lexical classes.
NAME, NUMBER, CONTROL, QUOTE, OPERATION, CURRENCY = 1, 2, 8, 16, 32, 64

LETTER_SOUNDS = "01230120022455012623010202"  # A to Z

# Sets that need no mapping.
ASCII_SETS = {"ascii_7", "ascii_8", "iso646"}

# Why a set that libzrvunic converts has no description.
LEFT_OUT = {
    "utf16": "a character has two bytes in an order that the text decides",
    "rcsu": "the meaning of a byte depends on what stands before it",
}
SHIFTED = "bytes shift between one and two for each character"


# ---- characters ----

def codes_of(field):
    first, _, last = field.partition("..")
    return range(int(first, 16), int(last or first, 16) + 1)


class Unicode:
    """The database: category, simple case forms, decomposition and column width of each character."""

    def __init__(self):
        self.fields = {}
        first = None
        for line in (UNICODE / "UnicodeData.txt").read_text().splitlines():
            fields = line.split(";")
            code = int(fields[0], 16)
            if fields[1].endswith("First>"):
                first = code
            for each in range(code if first is None or first == code else first, code + 1):
                self.fields[each] = fields
            if fields[1].endswith("Last>"):
                first = None
        self.widths = {}
        for line in (UNICODE / "EastAsianWidth.txt").read_text().splitlines():
            entry = line.partition("#")[0].strip()
            if entry:
                codes, width = entry.split(";")
                self.widths.update((code, width.strip()) for code in codes_of(codes))
        self.scripts = {}
        for line in (UNICODE / "Scripts.txt").read_text().splitlines():
            entry = line.partition("#")[0].strip()
            if entry.endswith("Latin"):
                self.scripts.update((code, "Latin") for code in codes_of(entry.split()[0]))

    def category(self, code):
        return self.fields[code][2] if code in self.fields else "Cn"

    def upper(self, code):
        return self._case(code, 12)

    def lower(self, code):
        return self._case(code, 13)

    def _case(self, code, field):
        form = self.fields[code][field] if code in self.fields else ""
        return int(form, 16) if form else code

    def columns(self, code, is_doubtful_wide):
        wide = "WFA" if is_doubtful_wide else "WF"
        return 2 if self.widths.get(code, "N") in wide else 1

    def ascii(self, code):
        """The ASCII character that stands for a character, or 0."""
        if code < 0x80:
            return code
        if self.category(code) == "Nd":
            return ord("0") + int(self.fields[code][6])
        if code == 0x2212:
            return ord("-")
        form = re.fullmatch(r"<(wide|narrow|small|noBreak)> ([0-9A-F]{4})",
                            self.fields[code][5] if code in self.fields else "")
        return int(form[2], 16) if form and int(form[2], 16) < 0x80 else 0


class Describer:
    """What a set says of each character."""

    def __init__(self, unicode):
        self.unicode = unicode

    def type(self, code, ascii):
        category = self.unicode.category(code)
        bits = {"Lu": UPPER, "Ll": LOWER}.get(category, LETTER if category[0] == "L" else 0)
        if category[0] in "PS":
            bits |= PUNCT
        if category[0] == "Z" or 9 <= code <= 13 or 28 <= code <= 31 or code == 0x85:
            bits |= SPACE
        if category not in ("Cc", "Cf", "Cs", "Cn") and category[0] != "Z":
            bits |= GRAPH
        if ascii and chr(ascii) in "0123456789":
            bits |= DIGIT
        if ascii and chr(ascii) in "0123456789abcdefABCDEF":
            bits |= XDIGIT
        return bits

    def lex(self, code, ascii):
        if self.unicode.category(code) == "Sc":
            return CURRENCY
        if code < 0x80 or ascii:
            c = chr(ascii or code)
            if c <= " ":
                return CONTROL
            if c.isdigit():
                return NUMBER
            if c in "\"'":
                return QUOTE
            return NAME if c.isalpha() or c in "#@_" else OPERATION
        return NAME

    def sound(self, code):
        if code < 0x80:
            letter = chr(code).upper()
            return ord(LETTER_SOUNDS[ord(letter) - ord("A")]) if letter.isalpha() else 0
        is_letter = self.unicode.category(code)[0] == "L"
        return ord("0") if is_letter and self.unicode.scripts.get(code) == "Latin" else 0


# ---- sets ----

def load_set(name):
    """The mapping of a set, also of those that need no file."""
    if name in ASCII_SETS:
        mapping = Mapping(name, None, "one_byte", "ASCII")
        mapping.decode = {bytes([code]): chr(code) for code in range(128)}
    elif name == "iso_1":
        mapping = Mapping(name, None, "one_byte", "the tables that the library has built in")
        mapping.decode = {bytes([code]): chr(code) for code in range(256)}
    elif name == "utf8":
        mapping = Mapping(name, None, "multi_byte", "Unicode " + VERSION)
    else:
        mapping = charset_mappings.load(name)
        mapping.source = f"data/mappings/{name}.txt"
        mapping.decode[b"\0"] = "\0"  # which a mapping leaves out, for it ends texts
    return mapping


def add_unicode(mapping, unicode):
    """Every assigned character of Unicode as utf8 writes it."""
    mapping.decode = {chr(code).encode(): chr(code) for code in unicode.fields
                      if unicode.category(code) not in ("Cs", "Cn")}


def is_class1(mapping):
    return (mapping.form == "one_byte"
            and all(mapping.decode.get(bytes([code])) == chr(code) for code in range(128)))


def hexadecimal(data, step=64):
    return "".join(f"definition = {data[at:at + step].hex()}\n" for at in range(0, len(data), step))


def quoted(number, size):
    return "".join(f"\\x{byte:02x}" for byte in number.to_bytes(size, "big"))


def head(mapping, csid, class_, image_size, aliases):
    source = mapping.source
    if mapping.name != "iso_1" and not source.startswith("Unicode"):
        source += f" and Unicode {VERSION}"
    lines = [f"; Made by data/generate_charsets.py from {source}. Do not edit.", "[charset]",
             f"class = {quoted(class_, 1)}", f"name = {mapping.name}", f"id = {quoted(csid, 1)}",
             f"status = {quoted(0, 2)}"]
    if aliases:
        lines.append(f'description = "{", ".join(aliases)}"')
    lines.append(f"image_size = {quoted(image_size, 4)}")
    return "\n".join(lines) + "\n"


# ---- class 1 ----

def describe_class1(mapping, describer):
    unicode = describer.unicode
    codes = mapping.encode
    types, sounds = bytearray(), bytearray()

    def case(byte, code, form):
        return codes.get(chr(form), bytes([byte]))[0] if form != code else byte

    for byte in range(256):
        text = mapping.decode.get(bytes([byte]))
        if text is None or len(text) > 1:
            types += bytes((byte, byte, 0, 0))
            sounds.append(0)
            continue
        code = ord(text)
        ascii = code if code < 0x80 else 0
        types += bytes((case(byte, code, unicode.upper(code)), case(byte, code, unicode.lower(code)),
                        describer.lex(code, ascii), describer.type(code, ascii)))
        sounds.append(describer.sound(code))
    return types, sounds


BUILT_IN = """
0-8 0 8; 9-15 8 8; 16-31 0 8; 32 8 8; 33 32 32; 34 32 16; 35 32 1; 36 32 64; 37-38 32 32; 39 32 16;
40-47 32 32; 48-57 20 2; 58-63 32 32; 64 32 1; 65-70 17 1; 71-90 1 1; 91-94 32 32; 95 32 1; 96 32 32;
97-102 18 1; 103-122 2 1; 123-126 32 32; 127 0 32; 128-141 0 1; 142-143 8 1; 144-159 0 1; 160 8 1;
161-162 32 1; 163-165 32 64; 166-172 32 1; 173 8 1; 174-191 32 1; 192-214 1 1; 215 32 1; 216-223 1 1;
224-246 2 1; 247 32 1; 248-255 2 1
"""


def describe_built_in():
    types = [None] * 256
    for row in BUILT_IN.split(";"):
        codes, type_, lex = row.split()
        first, _, last = codes.partition("-")
        for code in range(int(first), int(last or first) + 1):
            has_lower = 65 <= code <= 90 or 192 <= code <= 222 and code != 215
            has_upper = 97 <= code <= 122 or 224 <= code <= 254 and code != 247
            types[code] = bytes((code - 32 * has_upper, code + 32 * has_lower, int(lex), int(type_)))
    sounds = bytearray(256)
    for code in range(26):
        sounds[65 + code] = sounds[97 + code] = ord(LETTER_SOUNDS[code])
    for code in [*range(192, 215), *range(216, 247), *range(248, 256)]:
        sounds[code] = ord("0")
    return b"".join(types), sounds


# ---- class 2 ----

class Planes:
    """Planes of a map, each a partial table by second byte. Tables that do not contradict one another
    share a plane."""

    def __init__(self):
        self.planes = [{}]  # plane 0 is that of the first bytes

    def add(self, table):
        for number, plane in enumerate(self.planes[1:], 1):
            if all(plane.get(byte, entry) == entry for byte, entry in table.items()):
                plane.update(table)
                return number
        self.planes.append(dict(table))
        return len(self.planes) - 1

    def image(self, empty):
        return b"".join(plane.get(byte, empty(byte)) for plane in self.planes for byte in range(256))


def describe_class2(mapping, describer):
    """The tables widths, norms, types, sounds, and the longest character."""
    unicode = describer.unicode
    codes = mapping.encode
    is_doubtful_wide = mapping.name != "utf8"
    types, norms = Planes(), Planes()
    widths = bytearray([0x11] * 256)
    sounds = bytearray(256)

    def case(code, text, form):
        """The last byte of the other form, or of the character itself."""
        other = codes.get(chr(form)) if form != ord(text) else None
        if other is None or other[:-1] != code[:-1] or len(code) > 2:
            other = code
        return other[-1] if len(code) <= 2 else 0

    def describe(code, text):
        """The entry of the last byte of a short character, and its reduction."""
        if len(text) > 1:
            return bytes((code[-1], code[-1], NAME, GRAPH)), 0
        character = ord(text)
        ascii = unicode.ascii(character)
        return bytes((case(code, text, unicode.upper(character)),
                      case(code, text, unicode.lower(character)),
                      describer.lex(character, ascii), describer.type(character, ascii))), \
            ord(chr(ascii).lower())

    by_lead = defaultdict(dict)
    for code, text in mapping.decode.items():
        by_lead[code[0]][code] = text
    for lead, members in sorted(by_lead.items()):
        lengths = {len(code) for code in members}
        if lengths == {1}:
            code, text = next(iter(members.items()))
            types.planes[0][lead], ascii = describe(code, text)
            norms.planes[0][lead] = bytes([ascii])
            sounds[lead] = describer.sound(ord(text)) if len(text) == 1 else 0
            continue
        if len(lengths) > 1 and not (mapping.form == "gb18030" and lengths <= {2, 4}):
            sys.exit(f"{mapping.name}: characters of different lengths begin with {lead:02X}")
        columns = Counter(unicode.columns(ord(text[0]), is_doubtful_wide)
                          for text in members.values())
        widths[lead] = columns.most_common(1)[0][0] << 4 | min(lengths)
        entries, reductions, longer = {}, {}, defaultdict(list)
        for code, text in members.items():
            entry, ascii = describe(code, text)
            if len(code) == 2:
                entries[code[1]] = entry
                if ascii:
                    reductions[code[1]] = bytes([ascii])
            else:
                longer[code[1]].append(entry)
        for second, group in longer.items():
            bits, cases = 0xFF, 0
            for entry in group:
                bits &= entry[3]
                cases |= entry[3] & LETTER
            # Letters of both cases are letters, of neither.
            bits = bits & ~LETTER | (cases if all(entry[3] & LETTER for entry in group) else 0)
            lexes = {entry[2] for entry in group}
            # No digits: what reduces to one cannot be told apart here.
            entries[second] = bytes((second, second, lexes.pop() if len(lexes) == 1 else NAME,
                                     bits & ~(DIGIT | XDIGIT)))
        types.planes[0][lead] = bytes((types.add(entries), 0, 0, LEAD))
        if reductions:
            # What shares the plane and has no reduction must not find one there.
            reductions = {second: reductions.get(second, b"\0") for second in entries}
            norms.planes[0][lead] = bytes([norms.add(reductions)])
    if mapping.form == "gb18030":
        widths[255] |= 0xF0
    longest = max(len(code) for code in mapping.decode)
    has_widths = longest > 1
    return (bytes(widths) if has_widths else b"", norms.image(lambda byte: b"\0"),
            types.image(lambda byte: bytes((byte, byte, 0, 0))), bytes(sounds), longest)


def write_set(name, csid, aliases, describer):
    mapping = load_set(name)
    if name == "utf8":
        add_unicode(mapping, describer.unicode)
    if name == "iso_1" or is_class1(mapping):
        types, sounds = (describe_built_in() if name == "iso_1"
                         else describe_class1(mapping, describer))
        # One entry to spare in each table.
        return (head(mapping, csid, 1, 1285, aliases) + hexadecimal(types + bytes(4))
                + hexadecimal(sounds + bytes(1)))
    widths, norms, types, sounds, longest = describe_class2(mapping, describer)
    tables = (widths, norms, types, sounds)
    offset, numbers = 44, []
    for table in tables:
        numbers += [offset, len(table)]
        offset += len(table)
    header = bytes((0, 0, 2, longest, 1, len(types) // 1024, len(norms) // 256, 1, 0, 0, 0, 0))
    header += b"".join(number.to_bytes(4, "big") for number in numbers)
    return (head(mapping, csid, 2, offset, aliases)
            + "".join(hexadecimal(table) for table in (header, *tables)))


def identifiers():
    """The sets by their numbers, each with its names."""
    sets, is_in = {}, False
    for line in (DATA / "identifiers.txt").read_text().splitlines():
        words = line.partition("#")[0].split()
        if words and words[0].startswith("["):
            is_in = words == ["[charset]"]
        elif words and is_in:
            sets[words[1]] = (int(words[0]), words[2:])
    return sets


def shipped():
    """The sets that have a description, each with its number and its other names, and the reasons why
    others with a converter have none."""
    left_out = dict(LEFT_OUT)
    names = ASCII_SETS | {"iso_1", "utf8"}
    for name in charset_mappings.names():
        if charset_mappings.load(name).form == "shifted":
            left_out[name] = SHIFTED
        else:
            names.add(name)
    known = identifiers()
    return {name: known[name] for name in sorted(names)}, left_out


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("directory", type=Path)
    parser.add_argument("sets", nargs="*")
    options = parser.parse_args()
    describer = Describer(Unicode())
    sets, _ = shipped()
    for name in options.sets or sets:
        path = options.directory / name / "charset.loc"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(write_set(name, *sets[name], describer))


if __name__ == "__main__":
    main()
