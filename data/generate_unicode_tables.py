#!/usr/bin/env python3
"""Writes the tables of libzrvunic, home/charsets/unicode/*.bin, from data/mappings.

    data/generate_unicode_tables.py [DIRECTORY]

A table has 24 bytes before its body, numbers of more than a byte with the low one first:

     0  8  "zrvunic" and 1, the version of this form
     8  4  the size of the file, a multiple of 8
    12  4  the number of the set
    16  8  the check sum of the rest

The body is made of bytes and of numbers that have seven bits a byte, low ones first, with the highest bit
set in all bytes but the last. It has

    the form: 0 one_byte, 1 multi_byte, 2 shifted, 3 gb18030
    how many pairs of characters have a code of their own, then two numbers for each
    for each width of codes: the width, then its runs in the order of the codes, then 0
    0

and NULs to the end. A run is codes that follow one another:

    how far its first code lies behind the code after the run before it, and 1 more
    four times how many codes it has, and 1 if their characters follow one another, and 2 if they are
    read and never written
    how far its first character lies behind the one after the last of the run before it, with the sign in
    the lowest bit; the same for each further one if they do not follow one another

where 0x110000 and what follows are the pairs of characters, and four-byte codes of gb18030 go by their
own count.
"""

import struct
import sys
from pathlib import Path

import charset_mappings

MAGIC = b"zrvunic\x01"
FIRST_PAIR = 0x110000
WORD = (1 << 64) - 1


def number(value):
    result = bytearray()
    while value >= 0x80:
        result.append(value & 0x7F | 0x80)
        value >>= 7
    result.append(value)
    return bytes(result)


def signed(value):
    return number(value << 1 if value >= 0 else (-value << 1) - 1)


def check_sum(size, cid, body):
    check = (size << 32 | cid) & WORD
    for (word,) in struct.iter_unpack("<Q", body):
        check = (check ^ word) * 0x9E3779B97F4A7C15 & WORD
        check ^= check >> 32
    return check


def successive(values, start):
    end = start + 1
    while end < len(values) and values[end] == values[end - 1] + 1:
        end += 1
    return end


def run_pieces(values):
    """Values as (values, whether they follow one another); three that do are worth a run."""
    start = plain = 0
    while start < len(values):
        end = successive(values, start)
        if end - start >= 3:
            if plain < start:
                yield values[plain:start], False
            yield values[start:end], True
            plain = end
        start = end
    if plain < len(values):
        yield values[plain:], False


def group(mapping, width, pairs, values):
    """The runs of the codes of one width."""
    result, next_code, next_value = bytearray(number(width)), 0, 0
    marked = [(code, (values(text), charset_mappings.bytes_of(mapping.form, width, code) in
                      mapping.decode_only)) for code, text in pairs]
    for code, items in charset_mappings.runs(marked):
        start = 0
        while start < len(items):
            end = start
            while end < len(items) and items[end][1] == items[start][1]:
                end += 1
            for piece, follows in run_pieces([value for value, _ in items[start:end]]):
                result += number(code + start - next_code + 1)
                result += number(len(piece) << 2 | follows | items[start][1] << 1)
                for value in piece[:1] if follows else piece:
                    result += signed(value - next_value)
                    next_value = value + 1
                next_value = piece[-1] + 1
                start += len(piece)
                next_code = code + start
    return bytes(result) + number(0)


def table(mapping):
    sequences = sorted({text for text in mapping.decode.values() if len(text) == 2})

    def value(text):
        return ord(text) if len(text) == 1 else FIRST_PAIR + sequences.index(text)

    body = bytes([charset_mappings.FORMS.index(mapping.form)]) + number(len(sequences))
    for text in sequences:
        body += number(ord(text[0])) + number(ord(text[1]))
    for width, pairs in mapping.width_groups():
        body += group(mapping, width, pairs, value)
    body += number(0)
    body += bytes(-len(body) % 8)
    size = 24 + len(body)
    return MAGIC + struct.pack("<IiQ", size, mapping.cid, check_sum(size, mapping.cid, body)) + body


def main():
    directory = Path(sys.argv[1] if len(sys.argv) > 1 else
                     Path(__file__).parent.parent / "home/charsets/unicode")
    directory.mkdir(parents=True, exist_ok=True)
    for name in charset_mappings.names():
        (directory / f"{name}.bin").write_bytes(table(charset_mappings.load(name)))


if __name__ == "__main__":
    main()
