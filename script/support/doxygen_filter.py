"""Prints a header with its comments in Doxygen's form; Doxygen runs it over each header (Doxyfile).

usage: doxygen_filter.py HEADER

The headers are written for people who read them as they stand. So that Doxygen sees the same:

- the first comment is about the file, and so is what stands under a section's title;
- a comment is about all declarations under it, up to a blank line or the next comment, and that of a
  section up to the next comment;
- one behind a declaration is about that;
- a member list that a macro declares is told by the comment of the macro;
- "name  in  text" is a parameter, and columns stay as they are.
"""
import html
import re
import sys
from pathlib import Path

TITLE = re.compile(r"^-{4} (.*?) -{4}$")
PARAMETERS = re.compile(r"^([a-zA-Z_]\w*(?:, [a-zA-Z_]\w*)*) {2,}(in/out|in,out|in|out) +(\S.*)$")
FAMILY = re.compile(r"(ZRV_\w+)\(.*\);?$")


def body_of(comment):
    """The lines of a comment without its frame."""
    lines = comment[2:-2].split("\n")
    return [lines[0].strip()] + [re.sub(r"^ *\* ?", "", line).rstrip() for line in lines[1:]]


def inline(text):
    """Escaped for Doxygen, with `code` as such."""
    text = html.escape(text, quote=False)
    text = re.sub(r"([\\@#%$\"])", r"\\\1", text)
    return re.sub(r"`([^`]*)`", r"<code>\1</code>", text)


def paragraphs(lines):
    group = []
    for line in [*lines, ""]:
        if line.strip():
            group.append(line)
        elif group:
            yield group
            group = []


def parameters(lines):
    """Names, direction and text of each parameter of a paragraph; None if it is another paragraph."""
    found = []
    for line in lines:
        start = PARAMETERS.match(line)
        if start:
            found.append((start[1].split(", "), start[2], [start[3]]))
        elif found and line.startswith("  "):
            found[-1][2].append(line.strip())
        else:
            return None
    return found


def shown(lines, declared):
    """The text of a comment; `declared` is what it is about, each declaration with its names."""
    parts = []
    for group in paragraphs(lines):
        known = parameters(group)
        if known:
            for names, direction, text in known:
                for name in names:
                    holders = [name in words for words in declared if "define" not in words]
                    # What no declaration knows is shown all the same, so that Doxygen complains.
                    if holders and (all(holders) or not any(holders)):
                        parts.append(f"@param[{direction.replace('/', ',')}] {name} "
                                     + inline(" ".join(text)))
                    else:
                        parts.append(f"\n<code>{name}</code> ({direction}): "
                                     + inline(" ".join(text)) + "\n")
        elif any(re.search(r"\S {2,}\S", line) or line.startswith("  ") for line in group):
            parts.append("\n@verbatim\n" + "\n".join(group) + "\n@endverbatim\n")
        else:
            parts.append("\n" + inline("\n".join(group)) + "\n")
    return "\n".join(parts)


def documented(lines, code):
    """Declarations under their comment; the group hands it to each of them."""
    declarations = split_block(code)
    words = [set(re.findall(r"\w+", each)) for each in declarations if "(" in each]
    text = "/**" + shown(lines, words) + "*/\n" + code
    if len(declarations) == 1 and not FAMILY.match(declarations[0]):
        return text
    return "/**@{*/\n" + text.rstrip("\n") + "\n/**@}*/"


def functions_without_comment(text):
    """The functions of a header that no comment is about."""
    missing, told, section = [], False, False
    for piece in re.split(r"^(/\*.*?\*/[ \t]*\n)", text, flags=re.M | re.S):
        if piece.startswith("/*"):
            lines = body_of(piece.rstrip())
            section = any(TITLE.match(line) for line in lines) and len(lines) > 1
            told = True
            continue
        for block in re.split(r"\n[ \t]*\n|^\n", piece):
            if not told and not section:
                missing += re.findall(r"^ZRV_(?:API|PRIVATE) [^;]*?(\w+)\(", block, re.M)
            told = False
    return missing


def split_block(block):
    """The declarations of a block of code, each on its own."""
    joined = re.sub(r"/\*.*?\*/", "", block.replace("\\\n", ""), flags=re.S)
    joined = re.sub(r"\{[^{}]*\}", "{}", re.sub(r"\{[^{}]*\}", "", joined))
    joined = re.sub(r"^( *#.*)$", r"\1;", joined, flags=re.M)
    return [" ".join(each.split()) for each in joined.split(";") if each.strip()]


def filtered(text, name):
    # Comments that begin a line, with the code up to the next one.
    pieces = re.split(r"^(/\*.*?\*/)[ \t]*\n", text, flags=re.M | re.S)
    out = [pieces[0]]
    for number, (comment, code) in enumerate(zip(pieces[1::2], pieces[2::2])):
        lines = body_of(comment)
        title = next((found[1] for line in lines if (found := TITLE.match(line))), None)
        code = behind(code)
        block, _, behind_block = code.partition("\n\n")
        attached = bool(split_block(block)) and not code.startswith("\n")
        if number == 0:  # "name.h - what it is for"
            lines = [re.sub(rf"^{name} - (\w)", lambda found: found[1].upper(), line)
                     for line in lines]
        if number == 0 or title:
            lines = [line for line in lines if not TITLE.match(line)]
            out.append(f"/** @file {name}\n" + (f"\n@par {inline(title)}\n" if title else "")
                       + shown(lines, []) + "*/\n")
            out.append(documented(lines, code) + "\n" if attached and any(lines) else families(code))
        elif attached:
            out.append(documented(lines, block) + "\n\n" + families(behind_block))
        else:
            out.append(comment + "\n" + families(code))
    return "".join(out)


def behind(code):
    """Comments behind a declaration, on its line."""
    lines, continued = [], False
    for line in code.split("\n"):
        if not continued and not line.endswith("\\"):
            line = re.sub(r"^(.*[;,}\w\")] +)/\*( .*)", lambda found: found[1] + "/**<" + inline(found[2]),
                          line)
        continued = line.endswith("\\")
        lines.append(line)
    return "\n".join(lines)


def families(code):
    """Member lists that stand alone."""
    return re.sub(r"^(?:ZRV_\w+\([\w, ]*\);?\n?)+", lambda found: "/**@{*/\n/** See " +
                  found[0].partition("(")[0] + ". */\n" + found[0].rstrip("\n") + "\n/**@}*/\n",
                  code, flags=re.M)


if __name__ == "__main__":
    path = Path(sys.argv[1])
    sys.stdout.write(filtered(path.read_text(), path.name))
