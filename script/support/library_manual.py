"""Prints docs/libzrvcomn.3: the manual page of the library, with the headers as they name themselves and
the first of the examples.

usage: library_manual.py     (a test makes the page anew and compares)
"""
import re
import sys
from pathlib import Path

BEFORE = r""".\" Made by script/support/library_manual.py from the headers and examples/convert.c.
.TH LIBZRVCOMN 3 "" libzrvcomn
.SH NAME
libzrvcomn \- common base of database client and server libraries
.SH SYNOPSIS
.nf
.B #include <zrvcomn/comnlib.h>
.PP
cc program.c $(pkg\-config \-\-cflags \-\-libs zrvcomn)
.fi
.SH DESCRIPTION
Datatypes and the matrix of conversions between them, exact numerics, money and dates; locales, character
sets and sort orders from the files of an installation; messages, configuration files, memory pools,
lists; keys and a secure store.
.PP
Nothing runs at load, and the library has no thread of its own. A client fills a
.I CS_CONTEXT
with zeros, starts the parts that it needs in the order that
.I startup.md
tells, and ends them in the opposite one. A context and all that belongs to it is used by one thread at a
time.
.PP
Nearly all functions return a
.IR CS_RETCODE :
.B CS_SUCCEED
is 1,
.B CS_FAIL
is 0, other failures are negative;
.B zrv_status_name
names them. A null pointer where none is allowed, and what a header calls fatal, is a fault of the program: a
line with the place goes to standard error, and signal 6 is raised.
.SH HEADERS
Each function has its contract at its declaration: purpose, parameters, who owns what, each return code and
what it leaves behind, what is fatal.
"""

AFTER = r""".SH ENVIRONMENT
.TP
.B ZARVEK
The home directory of the installation; without it that of the user
.IR zarvek ,
else the tree that was installed with the library.
.TP
.BR LC_COLLATE ", " LC_CTYPE ", " LC_MESSAGE ", " LC_MONETARY ", " LC_NUMERIC ", " LC_TIME ", " LANG
The names of the locales, where a client asks for those of the environment.
.TP
.BR ZARVEK_NCL ", " ZRVNCL_IFILE
Other places of single files;
.B zrvcomn config paths
shows each file with what decided.
.TP
.B ZRVNCL_FIPS_MODE
If not empty, the crypto provider is asked for its FIPS kernel.
.SH FILES
.I share/zrvcomn/home
below the prefix is the home directory of the installation; all names in it are told in
.IR files.md .
.SH DIAGNOSTICS
.B zrvcomn check all
loads every file of an installation and says what is wrong with it.
.SH SEE ALSO
.BR zrvcomn (1)
"""

SPECIAL = {"\\": "\\e", "-": "\\-", "'": "\\(aq", '"': "\\(dq", "`": "\\(ga", "^": "\\(ha", "~": "\\(ti"}


def escaped(text):
    text = "".join(SPECIAL.get(c, c) for c in text)
    return re.sub(r"^\.", r"\\&.", text, flags=re.M)


def purpose(header):
    """What a header says that it is for, in its first lines."""
    found = re.search(r"^ \* \w+\.h - (.*?)(?:\.\n|\n \*\n|\n \*/)", header.read_text(), re.M | re.S)
    return re.sub(r"\s*\n \* ", " ", found[1])


def page(root):
    text = BEFORE
    for header in sorted((root / "include").glob("*.h")):
        about = purpose(header)
        text += f".TP\n.B {header.name}\n{escaped(about[0].upper() + about[1:])}.\n"
    program, printed = (root / "examples" / "convert.c").read_text().split("/* prints:\n")
    return (text + ".SH EXAMPLES\n.nf\n" + escaped(program.rstrip()) + "\n.fi\n.PP\nIt prints\n.PP\n.RS 4\n"
            + escaped(printed.removesuffix("*/\n")) + ".RE\n" + AFTER)


if __name__ == "__main__":
    sys.stdout.write(page(Path(__file__).parents[2]))
