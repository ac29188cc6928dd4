"""The public headers stand alone, in both languages and with both compilers."""
import tempfile
import unittest
from pathlib import Path

import project
from project import build, in_parallel, run, tracked_files

public_headers = tracked_files("include/*.h", "platform/zrvintl/zrvintl.h",
                               "platform/zrvunic/zrvunic.h", "platform/velcrypto/velcrypto.h",
                               "platform/velssfs/velssfs.h")


class Headers(unittest.TestCase):
    """Each public header alone, and twice, as a client would include it."""

    def compile_each(self, compiler, suffix, *flags):
        def compile_one(header):
            with tempfile.NamedTemporaryFile("w", suffix=suffix) as unit:
                unit.write(f"#include <zrvcomn/{header.name}>\n" * 2 + "int unit_is_not_empty;\n")
                unit.flush()
                run(compiler, *flags, "-pedantic", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                    "-I" + str(Path(build.binary_dir) / "include"), unit.name)

        self.assertGreater(len(public_headers), 0)
        in_parallel(compile_one, public_headers)

    def test_headers_as_c99(self):
        self.compile_each(build.c_compiler, ".c", *project.c_flags, "-std=c99")

    def test_headers_as_cxx20(self):
        self.compile_each(build.cxx_compiler, ".cpp", *project.cxx_flags, "-std=c++20")

    def test_headers_as_c99_with_clang(self):
        self.compile_each(build.clang, ".c", *project.c_flags, "-std=c99")

    def test_headers_as_cxx20_with_clang(self):
        self.compile_each(build.clang, ".cpp", *project.cxx_flags, "-std=c++20")


if __name__ == "__main__":
    project.main()
