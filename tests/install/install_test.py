"""Installs into an empty prefix and builds clients against nothing but that."""
import os
import pwd
import re
import shlex
import shutil
import tempfile
import unittest
from pathlib import Path

import project
from project import build, run

here = Path(__file__).parent


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = Path(tempfile.mkdtemp(prefix="zrvcomn install "))  # a blank, on purpose
        cls.addClassCleanup(shutil.rmtree, cls.scratch)
        cls.prefix = cls.scratch / "prefix"
        run(build.cmake, "--install", build.binary_dir, "--prefix", cls.prefix)
        cls.libdir = cls.prefix / build.libdir
        cls.home = cls.prefix / build.home_dir
        cls.environment = {name: value for name, value in os.environ.items()
                           if name not in ("ZARVEK", "LD_LIBRARY_PATH", "CFLAGS", "CXXFLAGS", "LDFLAGS")}

    def check_client(self, program, **environment):
        lines = run(program, env=self.environment | environment).splitlines()
        self.assertEqual(lines[0], "12345")
        try:
            home = pwd.getpwnam("zarvek").pw_dir  # comes before the installed tree
        except KeyError:
            home = self.home
        self.assertEqual(lines[1], os.path.realpath(home))

    def test_installed_files(self):
        for name, link, target in (("libzrvcomn", "16", "16.0.1"), ("libzrvintl", "1", "1.0.0"),
                                   ("libzrvunic", "1", "1.0.0")):
            self.assertTrue((self.libdir / f"{name}.so.{target}").is_file())
            self.assertEqual(os.readlink(self.libdir / f"{name}.so.{link}"), f"{name}.so.{target}")
            self.assertEqual(os.readlink(self.libdir / f"{name}.so"), f"{name}.so.{link}")
        # These are opened by their names, so they have no other.
        for name in ("libvelcrypto.so", "libvelssfs.so"):
            self.assertTrue((self.libdir / name).is_file())
            self.assertFalse((self.libdir / name).is_symlink())
        headers = self.prefix / build.include_dir / "zrvcomn"
        tracked = project.tracked_files("include/*.h", "platform/zrvintl/zrvintl.h",
                                        "platform/zrvunic/zrvunic.h",
                                        "platform/velcrypto/velcrypto.h",
                                        "platform/velssfs/velssfs.h")
        self.assertEqual(sorted(path.name for path in headers.iterdir()),
                         sorted(path.name for path in tracked))
        self.assertFalse([path for path in headers.iterdir() if path.is_symlink()])
        pages = ["man3/libzrvcomn.3"] + (["man1/zrvcomn.1"] if build.has_command else [])
        manuals = self.prefix / "share" / "man"
        self.assertEqual(sorted(path.relative_to(manuals).as_posix() for path in manuals.rglob("*.?")),
                         sorted(pages))

    def test_installed_home(self):
        source = project.source_dir / "home"
        tracked = {path.relative_to(source) for path in project.tracked_files("home/*")}
        self.assertIn(Path("config/objectid.dat"), tracked)
        self.assertEqual({path.relative_to(self.home) for path in self.home.rglob("*")
                          if path.is_file()}, tracked)
        for path in tracked:
            self.assertEqual((self.home / path).read_bytes(), (source / path).read_bytes(), path)

    # What is installed names neither the build nor the sources.
    def test_no_build_paths(self):
        for path in self.prefix.rglob("*"):
            if path.is_file() and not path.is_symlink():
                content = path.read_bytes()
                self.assertNotIn(str(build.binary_dir).encode(), content, path)
                self.assertNotIn(str(build.source_dir).encode() + b"/", content, path)

    # The libraries find their neighbours beside themselves.
    def test_run_path(self):
        for name in ("libzrvcomn.so", "libzrvintl.so", "libzrvunic.so", "libvelcrypto.so",
                     "libvelssfs.so"):
            dynamic = run(build.readelf, "--dynamic", "--wide", self.libdir / name)
            self.assertEqual(re.findall(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]", dynamic), ["$ORIGIN"], name)

    def pkg_config(self, *arguments):
        environment = self.environment | {"PKG_CONFIG_PATH": str(self.libdir / "pkgconfig")}
        return run("pkg-config", *arguments, "zrvcomn", env=environment).strip()

    def test_pkg_config(self):
        self.assertEqual(self.pkg_config("--modversion"), build.version)
        for variable, place in (("libdir", self.libdir), ("homedir", self.home)):
            told = shlex.split(self.pkg_config(f"--variable={variable}"))[0]
            self.assertEqual(os.path.realpath(told), os.path.realpath(place))
        flags = shlex.split(self.pkg_config("--cflags", "--libs"))
        warnings = ["-pedantic", "-Wall", "-Wextra", "-Werror"]
        for compiler, own, source in (
                (build.c_compiler, project.c_flags + ["-std=c99"], "consumer.c"),
                (build.cxx_compiler, project.cxx_flags + ["-std=c++20"], "consumer.cpp")):
            with self.subTest(source):
                program = self.scratch / f"pkg-config-{source}.out"
                run(compiler, *own, *warnings, here / source, "-o", program, *flags)
                self.check_client(program, LD_LIBRARY_PATH=str(self.libdir))

    # Each example compiles as C99 and as C++20, prints what it says, and leaves nothing behind.
    def test_examples(self):
        flags = shlex.split(self.pkg_config("--cflags", "--libs"))
        environment = self.environment | {"LD_LIBRARY_PATH": str(self.libdir)}
        for source in project.tracked_files("examples/*.c"):
            with self.subTest(source.name):
                program = self.scratch / source.stem
                run(build.c_compiler, *project.c_flags, "-std=c99", "-pedantic", "-Wall", "-Wextra",
                    "-Wno-missing-field-initializers", "-Werror", source, "-o", program, *flags)
                run(build.cxx_compiler, *project.cxx_flags, "-std=c++20", "-fsyntax-only", "-x", "c++",
                    source, *shlex.split(self.pkg_config("--cflags")))
                told = source.read_text().split("/* prints:\n")[1].removesuffix("*/\n")
                self.assertEqual(run(program, env=environment), told)
                valgrind = shutil.which("valgrind")
                if valgrind and not build.toolchain:
                    run(valgrind, "-q", "--leak-check=full", "--error-exitcode=9",
                        f"--suppressions={here / 'valgrind.supp'}", program, env=environment)

    def test_find_package(self):
        binary = self.scratch / "find-package"
        toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={build.toolchain}"] if build.toolchain else []
        run(build.cmake, "-G", build.generator, "-S", here / "find_package", "-B", binary, *toolchain,
            f"-DCMAKE_C_COMPILER={build.c_compiler}", f"-DCMAKE_CXX_COMPILER={build.cxx_compiler}",
            f"-DCMAKE_PREFIX_PATH={self.prefix}", env=self.environment)
        run(build.cmake, "--build", binary, env=self.environment)
        for program in ("consumer_c", "consumer_cpp"):
            with self.subTest(program):
                self.check_client(binary / program)

    # Moving the prefix takes everything with it: the libraries find each other and the home tree, and
    # the pkg-config file its neighbours.
    def test_moved_prefix(self):
        program = self.scratch / "moved-client"
        run(build.c_compiler, *project.c_flags, here / "consumer.c", "-o", program,
            f"-I{self.prefix / build.include_dir}", f"-L{self.libdir}", "-lzrvcomn", "-lzrvintl")
        moved = self.scratch / "moved"
        shutil.copytree(self.prefix, moved, symlinks=True)
        lines = run(program, env=self.environment | {"LD_LIBRARY_PATH": str(moved / build.libdir)})
        self.assertEqual(lines.splitlines()[1], os.path.realpath(moved / build.home_dir))
        environment = self.environment | {
            "PKG_CONFIG_PATH": str(moved / build.libdir / "pkgconfig")}
        for variable, place in (("libdir", build.libdir), ("includedir", build.include_dir),
                                ("homedir", build.home_dir)):
            told = shlex.split(run("pkg-config", f"--variable={variable}", "zrvcomn", env=environment))[0]
            self.assertEqual(os.path.realpath(told), os.path.realpath(moved / place))

    def test_command(self):
        command = self.prefix / build.bin_dir / "zrvcomn"
        if not build.has_command:
            self.skipTest("the command is not built")
        self.assertIn(build.version, run(command, "--version", env=self.environment))
        self.assertIn("convert", run(command, "--help", env=self.environment))


if __name__ == "__main__":
    project.main()
