"""Prints docs/names.md: the public names by header and section, so by what they are for.

usage: name_index.py [CC]     (from the project's root; CC is the C compiler, cc without it)
"""
import itertools
import re
import subprocess
import sys
from pathlib import Path

HEAD = """# The public names

By header, and in each by its sections; a test makes this page anew from the headers and compares. What a
name does stands at its declaration. Members of a family are declared by macros: look there for the source,
as `ZRV_NUMBER_CONVS(i4)`, not for the whole name. [conversions.md](conversions.md) begins with the tasks.
"""
TITLE = re.compile(r"-{4} (.*?) -{4}")
MEMBER = re.compile(r"(com[a-z]*_(?:mb_)?[a-z0-9]+to)([a-z]\w*)")


def public_names(root):
    text = (root / "generic" / "src" / "libzrvcomn.map").read_text()
    return set(re.findall(r"^    (\w+);", text.split("ZRVCOMN_16 {")[1].split("}")[0], re.M))


def marked(text):
    """The header with a declaration in place of each section's title, and the titles."""
    titles = []

    def mark(comment):
        found = TITLE.search(comment[0])
        if not found:
            return comment[0]
        titles.append(found[1])
        return f"\nextern int zrv_section_{len(titles)};\n"
    return re.sub(r"/\*.*?\*/", mark, text, flags=re.S), titles


def names_by_section(root, header, public, compiler):
    """Pairs of a title and its names; what stands before the first title has none."""
    text, titles = marked(header.read_text())
    # What is included is another header's.
    lines = [line for line in text.splitlines() if not line.startswith("#include")]
    empty = ["-DZRV_API=", "-DZRV_PRIVATE=", "-DZRV_NOEXCEPT="]
    done = subprocess.run([compiler, "-E", "-P", "-x", "c", *empty, "-"], input="\n".join(lines),
                          capture_output=True, text=True, check=True).stdout
    sections = [("", [])] + [(title, []) for title in titles]
    current, seen = sections[0][1], set()
    for word in re.findall(r"\b[A-Za-z_]\w*\b", done):
        if word.startswith("zrv_section_"):
            current = sections[int(word.rsplit("_", 1)[1])][1]
        elif word in public and word not in seen:
            seen.add(word)
            current.append(word)
    return [section for section in sections if section[1]]


def shown(names):
    """The names as code; the members of a source together, and sources with the same members."""
    groups = []  # stems, and the members of each
    for stem, family in itertools.groupby(names, key=stem_of):
        family = list(family)
        if stem is None or len(family) < 3:
            groups += [([name], None) for name in family]
            continue
        members = [name.removeprefix(stem) for name in family]
        if groups and groups[-1][1] == members:
            groups[-1][0].append(stem)
        else:
            groups.append(([stem], members))
    parts = [", ".join(f"`{stem}`" for stem in stems) +
             ("" if members is None else " with " + " ".join(f"`{each}`" for each in members))
             for stems, members in groups]
    plain = ", ".join(part for part, group in zip(parts, groups) if group[1] is None)
    families = [part for part, group in zip(parts, groups) if group[1] is not None]
    return "\n  - ".join(([plain] if plain or not families else [""]) + families)


def stem_of(name):
    member = MEMBER.fullmatch(name)
    return member and member[1]


def page(root, compiler):
    public = public_names(root)
    text, found = HEAD, set()
    for header in sorted((root / "include").glob("*.h")):
        sections = names_by_section(root, header, public, compiler)
        if not sections:
            continue
        purpose = re.search(r"^ \* \w+\.h - (.*?)(?:\.\n|\n \*\n|\n \*/)", header.read_text(),
                            re.M | re.S)
        purpose = re.sub(r"\n \* ", " ", purpose[1])
        text += f"\n## {header.name}\n\n{purpose[0].upper()}{purpose[1:]}.\n\n"
        for title, names in sections:
            found.update(names)
            text += f"- {'**' + title + '** ' if title else ''}{shown(names)}\n"
    missing = public - found
    if missing:
        raise SystemExit("name_index: no header declares " + ", ".join(sorted(missing)))
    return text


if __name__ == "__main__":
    sys.stdout.write(page(Path(__file__).parents[2], sys.argv[1] if len(sys.argv) > 1 else "cc"))
