"""Reads and writes the mappings of character sets in data/mappings, whose form its README tells.

    import charset_mappings
    sjis = charset_mappings.load("sjis")
    sjis.decode[b"\\x82\\xa0"]     # 'あ'
    sjis.encode["あ"]             # b'\\x82\\xa0'
"""

import re
from pathlib import Path

DIRECTORY = Path(__file__).parent / "mappings"
FORMS = ("one_byte", "multi_byte", "shifted", "gb18030")
# The four-byte codes of gb18030 count their second and fourth byte by ten and their third by 126.
FOUR_BYTE = ((0x81, 1), (0x30, 10), (0x81, 126), (0x30, 10))


def linear_of(code):
    """The number of a four-byte code of gb18030, from 0."""
    number = 0
    for byte, (first, radix) in zip(code, FOUR_BYTE):
        number = number * radix + byte - first
    return number


def code_of(number):
    """The four-byte code of gb18030 with that number."""
    code = []
    for first, radix in reversed(FOUR_BYTE[1:]):
        number, digit = divmod(number, radix)
        code.append(first + digit)
    code.append(FOUR_BYTE[0][0] + number)
    return bytes(reversed(code))


def number_of(form, code):
    return linear_of(code) if form == "gb18030" and len(code) == 4 else int.from_bytes(code, "big")


def bytes_of(form, width, number):
    return code_of(number) if form == "gb18030" and width == 4 else number.to_bytes(width, "big")


class Mapping:
    """A set. `decode` has the text of each code, one character or seldom two. Codes in `decode_only` are
    read and never written."""

    def __init__(self, name, cid, form, source):
        self.name, self.cid, self.form, self.source = name, cid, form, source
        self.decode, self.decode_only = {}, set()

    @property
    def encode(self):
        """The code of each text. A pair of characters comes before its first one."""
        return {text: code for code, text in self.decode.items() if code not in self.decode_only}

    def width_groups(self):
        """The widths of the codes, each with its sorted (number, text)."""
        for width in sorted({len(code) for code in self.decode}):
            yield width, sorted((number_of(self.form, code), text)
                                for code, text in self.decode.items() if len(code) == width)


def runs(pairs):
    """Sorted (number, text) as runs [number, texts] of successive numbers."""
    result = []
    for number, text in pairs:
        if result and number == result[-1][0] + len(result[-1][1]):
            result[-1][1].append(text)
        else:
            result.append((number, [text]))
    return result


def _spell(text):
    return "+".join(f"{ord(character):04X}" for character in text)


def _items(texts):
    """Texts as items: characters in succession are written first..last."""
    items, start = [], 0
    while start < len(texts):
        end = start + 1
        while (end < len(texts) and len(texts[start]) == len(texts[end]) == 1
               and ord(texts[end]) == ord(texts[start]) + end - start):
            end += 1
        if end - start > 2:
            items.append(f"{_spell(texts[start])}..{_spell(texts[end - 1])}")
        else:
            items += [_spell(text) for text in texts[start:end]]
        start = end
    return items


def dump(mapping, base=None):
    """The text of a mapping, or of what sets it apart from another one of the same form."""
    lines = [f"# {mapping.source}", f"cid {mapping.cid}", f"form {mapping.form}"]
    decode = mapping.decode
    if base is not None:
        lines.append(f"base {base.name}")
        lines += [f"without {code.hex().upper()}" for code in sorted(set(base.decode) - set(decode))]
        decode = {code: text for code, text in decode.items() if base.decode.get(code) != text}
    part = Mapping(mapping.name, mapping.cid, mapping.form, "")
    part.decode = decode
    for width, pairs in part.width_groups():
        rows = []
        for number, texts in runs(pairs):
            while texts:  # a row ends with its lead byte, and after 16 codes
                room = 1 << 20 if width == 4 and mapping.form == "gb18030" else 16 - number % 16
                items = _items(texts)
                if len(items) > 1:
                    rows.append((number, texts[:room]))
                    number, texts = number + room, texts[room:]
                else:
                    rows.append((number, texts))
                    texts = []
        for number, texts in rows:
            code = bytes_of(mapping.form, width, number).hex().upper()
            lines.append(f"{code} {' '.join(_items(texts))}")
    own_base = base or Mapping("", 0, "", "")
    lines += [f"decode-only {code.hex().upper()}"
              for code in sorted(mapping.decode_only - own_base.decode_only)]
    lines += [f"both-ways {code.hex().upper()}"
              for code in sorted((own_base.decode_only - mapping.decode_only) & set(mapping.decode))]
    return "\n".join(lines) + "\n"


def load(name):
    """Reads the mapping of a set."""
    mapping = Mapping(name, None, None, "")
    for number, line in enumerate((DIRECTORY / f"{name}.txt").read_text().splitlines(), 1):
        if line.startswith("#"):
            mapping.source = mapping.source or line[1:].strip()
            continue
        try:
            key, *items = line.split()
            _line(mapping, key, items)
        except (ValueError, KeyError, TypeError) as error:
            raise ValueError(f"{name}.txt, line {number}: {line[:40]}") from error
    return mapping


def _text(item):
    return "".join(chr(int(number, 16)) for number in item.split("+"))


def _line(mapping, key, items):
    if key == "cid":
        mapping.cid = int(items[0])
    elif key == "form":
        mapping.form = FORMS[FORMS.index(items[0])]
    elif key == "base":
        base = load(items[0])
        mapping.decode = dict(base.decode)
        mapping.decode_only = set(base.decode_only)
    elif key == "without":
        del mapping.decode[bytes.fromhex(items[0])]
        mapping.decode_only.discard(bytes.fromhex(items[0]))
    elif key == "decode-only":
        mapping.decode_only.add(bytes.fromhex(items[0]))
    elif key == "both-ways":
        mapping.decode_only.remove(bytes.fromhex(items[0]))
    elif re.fullmatch(r"([0-9A-F]{2}){1,4}", key):
        code = bytes.fromhex(key)
        number = number_of(mapping.form, code)
        for item in items:
            first, _, last = item.partition("..")
            texts = ([chr(c) for c in range(int(first, 16), int(last, 16) + 1)] if last
                     else [_text(first)])
            for text in texts:
                mapping.decode[bytes_of(mapping.form, len(code), number)] = text
                number += 1
    else:
        raise ValueError(key)


def names():
    """The sets that have a mapping."""
    return sorted(path.stem for path in DIRECTORY.glob("*.txt"))
