#!/usr/bin/env python3
"""Writes the sort orders of the installation, home/charsets/<set>/<order>.srt.

    data/generate_sort_orders.py home/charsets

What a byte of a set means comes from data/mappings, what comes before what from ICU's collator: the
default collation of Unicode for the orders that every single-byte set has, a language's own for the
orders of NATIONAL in each set that has the letters of the language. Sets of several bytes have the
order by bytes alone. The numbers of the orders are those of identifiers.txt.

In an order that this program writes

- each primary difference of the collation is an entry "char", and so is each control character, which
  the collation ignores, and each byte that the set leaves open: those stand first and last, by code;
- "dictionary" and the national orders give each character of an entry a value of its own, accents
  before case; "nocase" ties what differs by case; "noaccent" ties the whole entry; "nocasepref" is
  "nocase" with upper case first, and makes the difference count as a preference;
- what sorts as two letters is a ligature, which sorts after them where the order has the difference;
- two letters that sort as one are a double character.

It needs the Python module icu (Debian: python3-icu).
"""

import argparse
import string
import sys
import unicodedata
from functools import lru_cache
from pathlib import Path

import icu

import charset_mappings
import generate_objectid

# Orders of languages: the locale of the collation, and letters without which a set does not serve the
# language. A set that has a letter in its forms at the ends and in the middle of words has the letter.
NATIONAL = {
    "arabic": ("ar", "ءآأؤئابةتثجحخدذرزسشصضطظعغفقكلمنهوىي"),
    "bulgarian": ("bg", "абвгдежзийклмнопрстуфхцчшщъьюя"),
    "croatian": ("hr", "čćđšž"),
    "czech": ("cs", "áčďéěíňóřšťúůýž"),
    "danish": ("da", "æøå"),
    "estonian": ("et", "äõöüšž"),
    "finnish": ("fi", "äöå"),
    "german_phonebook": ("de@collation=phonebook", "äöüß"),
    "greek": ("el", "αάβγδεέζηήθιίκλμνξοόπρσςτυύφχψωώ"),
    "hebrew": ("he", "אבגדהוזחטיךכלםמןנסעףפץצקרשת"),
    "hungarian": ("hu", "áéíóöőúüű"),
    "icelandic": ("is", "áðéíóúýþæö"),
    "kazakh": ("kk", "әғқңөұүһі"),
    "latvian": ("lv", "āčēģīķļņšūž"),
    "lithuanian": ("lt", "ąčęėįšųūž"),
    "norwegian": ("nb", "æøå"),
    "persian": ("fa", "آپچژکگه"),
    "polish": ("pl", "ąćęłńóśźż"),
    "romanian": ("ro", "ăâî"),
    "russian": ("ru", "абвгдеёжзийклмнопрстуфхцчшщъыьэюя"),
    "serbian": ("sr", "ђјљњћџ"),
    "slovak": ("sk", "áäčďéíĺľňóôŕšťúýž"),
    "slovenian": ("sl", "čšž"),
    "spanish": ("es", "áéíñóúü"),
    "spanish_traditional": ("es@collation=traditional", "áéíñóúü"),
    "swedish": ("sv", "äöå"),
    "thai": ("th", "กขฃคฅฆงจฉชซฌญฎฏฐฑฒณดตถทธนบปผฝพฟภมยรลวศษสหฬอฮะัาำิีึืุูเแโใไ็่้๊๋์"),
    "turkish": ("tr", "çğıöşü"),
    "ukrainian": ("uk", "ґєії"),
    "vietnamese": ("vi", "ăâđêôơư"),
}

# Sets without a file of a mapping: as Unicode numbers its first characters.
BUILT_IN = {"ascii_7": 128, "ascii_8": 128, "iso646": 128, "iso_1": 256}
BY_BYTE_ALONE = ("utf8",)

DESCRIPTIONS = {
    "binary": "Characters by the values of their bytes",
    "dictionary": "Letters by alphabet, then by accent, then by case",
    "nocase": "Letters by alphabet, then by accent; case does not count",
    "noaccent": "Letters by alphabet; neither accents nor case count",
    "nocasepref": "Letters by alphabet, then by accent; upper case first among equals",
}
ELEMENTS = 64  # of a table, for double characters, the bytes that begin them, and ligatures


class Collation:
    """A collator at each of three levels, and what it makes of pairs of letters."""

    PRIMARY, SECONDARY, TERTIARY = range(3)

    def __init__(self, locale, upper_first=False):
        self.collators = []
        for strength in (icu.Collator.PRIMARY, icu.Collator.SECONDARY, icu.Collator.TERTIARY):
            collator = icu.Collator.createInstance(icu.Locale(locale))
            collator.setStrength(strength)
            if upper_first:
                collator.setAttribute(icu.UCollAttribute.CASE_FIRST, icu.UCollAttributeValue.UPPER_FIRST)
            self.collators.append(collator)

    @lru_cache(maxsize=None)
    def key(self, text, level):
        return self.collators[level].getSortKey(text)

    def elements(self, text):
        return list(self.collators[self.TERTIARY].createCollationElementIterator(text))

    @lru_cache(maxsize=None)
    def is_contraction(self, first, second):
        """Whether two letters sort as one, other than by their bases with an accent behind them."""
        bases = [unicodedata.normalize("NFD", letter)[0] for letter in (first, second)]
        return (self.elements(first + second) != self.elements(first) + self.elements(second)
                and (bases == [first, second] or not self.is_contraction(*bases)))

    @lru_cache(maxsize=None)
    def is_ignored(self, text):
        return self.key(text, self.TERTIARY) == self.key("", self.TERTIARY)

    @lru_cache(maxsize=None)
    def pairs(self, letters):
        """Pairs of the letters, by their primary keys."""
        result = {}
        for first in letters:
            for second in letters:
                result.setdefault(self.key(first + second, self.PRIMARY), []).append(first + second)
        return result


@lru_cache(maxsize=None)
def collation(locale, upper_first=False):
    return Collation(locale, upper_first)


def grouped(items, key):
    """Sorted lists of what has the same key, in the order of the keys."""
    groups = {}
    for item in items:
        groups.setdefault(key(item), []).append(item)
    return [groups[value] for value in sorted(groups)]


class Order:
    """The entries of one order of one set."""

    def __init__(self, decode, rules, tied_level):
        # What differs behind this level alone is tied.
        self.rules, self.tied_level = rules, tied_level
        self.is_ascii = decode.get(b"A") == "A"
        texts = {code: text for code, text in decode.items() if code != b"\0"}
        ignored = sorted(code for code, text in texts.items() if rules.is_ignored(text))
        open_codes = [bytes([byte]) for byte in range(1, 256) if bytes([byte]) not in texts]
        self.texts = {code: text for code, text in texts.items() if code not in ignored}
        by_text = {text: code for code, text in sorted(self.texts.items(), reverse=True)}
        self.ligatures = self.find_ligatures(by_text)
        ligature_codes = {code for slot in self.ligatures for code in slot[0]}
        doubles = self.find_doubles(by_text, ligature_codes)
        self.texts.update(doubles)
        listed = [code for code in self.texts if code not in ligature_codes]
        self.entries = ([[[code]] for code in ignored]
                        + [self.values(group) for group in grouped(listed, self.key(Collation.PRIMARY))]
                        + [[[code]] for code in open_codes])

    def key(self, level):
        return lambda code: self.rules.key(self.texts[code], level)

    def values(self, codes):
        """The values of an entry: lists of tied characters, of the same length each."""
        result = []
        for group in grouped(codes, self.key(self.tied_level)):
            group = sorted(group, key=lambda code: (self.key(Collation.TERTIARY)(code), code))
            # A double character cannot be tied with a single one: it follows it.
            result += [part for part in ([code for code in group if len(code) == length]
                                         for length in (1, 2)) if part]
        return result

    def find_ligatures(self, by_text):
        """Slots, (codes, letters, word); those that sort equal first, for a slot that sorts after its
        letters moves what follows."""
        level = self.tied_level
        pairs = self.pairs(by_text)
        slots = {}
        for code, text in self.texts.items():
            if len(text) != 1 or code in (b" ", b"="):
                continue
            # Behind the last of the pairs that it does not come before.
            own = self.rules.key(text, level)
            base = max((pair for pair in pairs.get(self.key(Collation.PRIMARY)(code), ())
                        if self.rules.key(pair, level) <= own and not self.rules.is_contraction(*pair)),
                       key=lambda pair: self.rules.key(pair, level), default=None)
            if base is None:
                continue
            bases = b"".join(by_text[letter] for letter in base)
            is_after = self.rules.key(base, level) < own
            # What is tied shares a slot.
            slots.setdefault((is_after, own, bases), []).append(code)
        result = []
        for (is_after, _, bases), codes in sorted(slots.items()):
            codes.sort(key=lambda code: (self.rules.key(self.texts[code], Collation.TERTIARY), code))
            result += [(codes[i:i + 10], bases, "after" if is_after else "equal")
                       for i in range(0, len(codes), 10)]
        return result

    def pairs(self, by_text):
        """Pairs of letters by their primary keys: letters of ASCII in one case, and those that have no case.
        None of them is a ligature itself."""
        primary = lambda text: self.rules.key(text, Collation.PRIMARY)
        letters = sorted(text for text in by_text if len(text) == 1 and primary(text) != primary(""))
        result = {}
        for alphabet in ([letter for letter in letters if letter in string.ascii_lowercase],
                         [letter for letter in letters if letter in string.ascii_uppercase],
                         [letter for letter in letters if unicodedata.category(letter) in ("Lo", "Mn")]):
            pairs = self.rules.pairs(tuple(alphabet))
            ligatures = {letter for letter in alphabet if primary(letter) in pairs}
            for key, texts in pairs.items():
                result.setdefault(key, []).extend(text for text in texts if ligatures.isdisjoint(text))
        return result

    def find_doubles(self, by_text, ligature_codes):
        letters = [text for text, code in by_text.items()
                   if len(text) == 1 and text.isalpha() and code not in ligature_codes
                   and ord(text) < 0x250]
        pairs = {by_text[first] + by_text[second]: first + second
                 for first in letters for second in letters
                 if not (first.islower() and second.isupper()) and self.rules.is_contraction(first, second)}
        if len(pairs) + len({pair[:1] for pair in pairs}) + len(ligature_codes) > ELEMENTS:
            sys.exit("more double characters and ligatures than a table holds")
        return dict(sorted(pairs.items()))

    def spell(self, code):
        """Letters and digits as they stand in sets that have them where ASCII does."""
        return "".join(chr(byte) if chr(byte).isalnum() and byte < 128 and self.is_ascii else f"\\x{byte:02x}"
                       for byte in code)

    def lines(self):
        for codes, bases, word in self.ligatures:
            yield f"lig = {'='.join(map(self.spell, codes))}, {word} {self.spell(bases)}"
        for entry in self.entries:
            values = ["=".join(map(self.spell, value)) for value in entry]
            line = "char = "
            for i, value in enumerate(values):
                separator = "" if i == 0 else ", "
                if i > 0 and len(line) + len(value) > 96:
                    yield line + ", \\"
                    line, separator = "    ", ""
                line += separator + value
            yield line


def decode_of(name):
    if name in BUILT_IN:
        return {bytes([code]): chr(code) for code in range(BUILT_IN[name])}
    mapping = charset_mappings.load(name)
    return {code: text for code, text in mapping.decode.items()} if mapping.form == "one_byte" else None


def orders_of(name):
    """The orders of a set: (name, Order or None, preference)."""
    yield "binary", None, False
    decode = None if name in BY_BYTE_ALONE else decode_of(name)
    if decode is None:
        return
    # Whoever asks for the default collation gets Unicode's own.
    root, root_upper = collation("und"), collation("und", True)
    yield "dictionary", Order(decode, root, Collation.TERTIARY), False
    yield "nocase", Order(decode, root, Collation.SECONDARY), False
    yield "noaccent", Order(decode, root, Collation.PRIMARY), False
    yield "nocasepref", Order(decode, root_upper, Collation.SECONDARY), True
    texts = "".join(decode.values())
    letters = {*texts, *unicodedata.normalize("NFKC", texts)}
    for order, (locale, needed) in NATIONAL.items():
        if letters.issuperset(needed):
            yield order, Order(decode, collation(locale), Collation.TERTIARY), False


def title_of(order):
    return order.replace("_", " ").capitalize()


def description_of(order):
    return DESCRIPTIONS.get(order, f"{title_of(order)}: letters by alphabet, then by accent, then by case")


def file_of(charset, order, rules, preference, number):
    source = "" if rules is None else f",\n; from the collation of ICU {icu.ICU_VERSION}"
    lines = [f"; The sort order {order} of {charset}, by data/generate_sort_orders.py{source}.",
             "",
             "[sortorder]",
             "class = \\x01",
             f"id = \\x{number:02x}",
             f"name = {order}",
             f'menuname = "{title_of(order)}"',
             f"charset = {charset}",
             f'description = "{description_of(order)}"',
             f"preference = {'true' if preference else 'false'}"]
    if rules is None:
        lines.append("binary = true")
    else:
        lines += ["", *rules.lines()]
    return "\n".join(lines) + "\n"


def numbers():
    with open(Path(__file__).parent / "identifiers.txt", encoding="ascii") as file:
        identifiers = generate_objectid.Identifiers(file)
    return {name: number for number, names in identifiers.classes["collate"] for name in names}


def charsets():
    """The sets with a charset.loc: one whose bytes shift between widths cannot be described."""
    mapped = {name for name in charset_mappings.names() if charset_mappings.load(name).form != "shifted"}
    return sorted({*mapped, *BUILT_IN, *BY_BYTE_ALONE})


def generate():
    """(set, order, text) of each file."""
    ids = numbers()
    for charset in charsets():
        for order, rules, preference in orders_of(charset):
            yield charset, order, file_of(charset, order, rules, preference, ids[order])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("directory", type=Path, help="the directory of the character sets")
    directory = parser.parse_args().directory
    for charset, order, text in generate():
        (directory / charset).mkdir(parents=True, exist_ok=True)
        (directory / charset / f"{order}.srt").write_text(text, encoding="ascii")


if __name__ == "__main__":
    main()
