"""The ranks of the characters of each set by ICU's collator, at the levels that each shipped order has,
as sort_order_ranks.cpp reads them. Run with a Python that has the module icu."""
import sys
from pathlib import Path

import icu

source_dir = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(source_dir / "data"))
import generate_sort_orders as generator  # noqa: E402

LEVELS = {"noaccent": icu.Collator.PRIMARY, "nocase": icu.Collator.SECONDARY,
          "nocasepref": icu.Collator.SECONDARY}
# What sorts as one letter, as far as two bytes go; the other case forms follow.
DIGRAPHS = {"croatian": ("dž", "lj", "nj"), "czech": ("ch",), "danish": ("aa",),
            "hungarian": ("cs", "dz", "gy", "ly", "ny", "sz", "ty", "zs"), "norwegian": ("aa",),
            "slovak": ("ch",), "spanish_traditional": ("ch", "ll")}
# Letters that a ligature of some order stands for, and others behind them. Files give a mark that has no
# primary weight in the collation one of its own.
STRINGS = ("ae", "AE", "oe", "OE", "ss", "TM", "No", "וו", "וז", "וי", "יי", "ءا", "ءب", "าํ")


def keys_of(locale, strength):
    collator = icu.Collator.createInstance(icu.Locale(locale))
    collator.setStrength(strength)
    return collator.getSortKey


def ranks(charset, order):
    locale = generator.NATIONAL[order][0] if order in generator.NATIONAL else "und"
    primary = keys_of(locale, icu.Collator.PRIMARY)
    tertiary = keys_of(locale, icu.Collator.TERTIARY)
    key = keys_of(locale, LEVELS.get(order, icu.Collator.TERTIARY))
    decode = {code: text for code, text in generator.decode_of(charset).items() if code != b"\0"}
    codes = {text: code for code, text in decode.items()}
    for digraph in DIGRAPHS.get(order, ()):
        for form in (digraph, digraph.capitalize(), digraph.upper()):
            decode[codes[form[0]] + codes[form[1]]] = form
    for text in STRINGS:
        if codes.keys() >= set(text) and all(primary(letter) != primary("") for letter in text):
            decode[b"".join(codes[letter] for letter in text)] = text
    keys = {code: key(text) for code, text in decode.items() if tertiary(text) != tertiary("")}
    rank = {key: number for number, key in enumerate(sorted(set(keys.values())))}
    return {code: rank[key] for code, key in keys.items()}


def main():
    for path in sorted((source_dir / "home/charsets").glob("*/*.srt")):
        charset, order = path.parent.name, path.stem
        print("order", charset, order)
        if order != "binary":
            for code, rank in ranks(charset, order).items():
                print(code.hex(), rank)


if __name__ == "__main__":
    main()
