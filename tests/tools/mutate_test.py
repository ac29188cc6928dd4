"""script/mutate on a project of one function, with a test that sees everything and one that does not."""
import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import project

sys.path.insert(0, str(project.source_dir / "script/support"))
from mutants import find_mutants  # noqa: E402

FILES = {
    "CMakeLists.txt": """\
cmake_minimum_required(VERSION 3.21)
project(sample LANGUAGES CXX)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS -O1)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
add_library(sample SHARED sum/sum.cpp)
foreach(name sum_test strong_test wrong_test)
  add_executable(${name} tests/${name}.cpp)
  target_link_libraries(${name} sample)
endforeach()
add_library(opened MODULE opened/opened.cpp)
add_executable(opened_test tests/opened_test.cpp)
target_link_libraries(opened_test sample ${CMAKE_DL_LIBS})
add_dependencies(opened_test opened)
""",
    "sum/sum.cpp": """\
#include "limit.h"
// 1 + 1
static_assert(1 + 1 == 2, "1 + 1");
int sum(int a, int b) {
  if (a > limit)
    return limit;
  return a + b;
}
int last(int n) {
  const int pair[2] = {n, n};
  volatile int left = pair[0];
  while (left > 1)
    --left;
  return left;
}
""",
    "sum/limit.h": "constexpr int limit = 100;\n",
    "tests/sum_test.cpp": """\
int sum(int, int);
int main() { return sum(1, 2) != 3; }
""",
    "tests/strong_test.cpp": """\
int sum(int, int);
int last(int);
int main() {
  return sum(1, 2) != 3 || sum(100, 5) != 105 || sum(101, 5) != 100 || last(3) != 1 || last(0) != 0;
}
""",
    "tests/wrong_test.cpp": "int main() { return 1; }\n",
    "opened/opened.cpp": 'extern "C" int next(int a) {\n  return a + 1;\n}\n',
    "tests/opened_test.cpp": """\
#include <dlfcn.h>
int main() {
  void *const library = dlopen("libopened.so", RTLD_NOW);
  void *const next = library == nullptr ? nullptr : dlsym(library, "next");
  return next == nullptr || reinterpret_cast<int (*)(int)>(next)(1) != 2;
}
""",
}


class Mutate(unittest.TestCase):
    """The command. One test, since each would build the project anew."""

    def test_command(self):
        with tempfile.TemporaryDirectory() as folder:
            self.set_up(Path(folder).resolve())
            for check in (self.check_weak_test, self.check_strong_test, self.check_header, self.check_opened,
                          self.check_fates, self.check_sample, self.check_interrupt, self.check_trouble):
                with self.subTest(check.__name__):
                    check()
                    self.check_nothing_changed()

    def set_up(self, folder):
        self.source = folder / "sample"
        self.build = self.source / "build"
        self.scratch = folder / "tmp"
        self.scratch.mkdir()
        for name, text in FILES.items():
            path = self.source / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        project.run(project.build.cmake, "-G", "Ninja", "-S", self.source, "-B", self.build,
                    "-DCMAKE_CXX_COMPILER=" + project.build.cxx_compiler)
        project.run(project.build.cmake, "--build", self.build)
        self.library = (self.build / "libsample.so").read_bytes()

    def check_nothing_changed(self):
        for name, text in FILES.items():
            self.assertEqual((self.source / name).read_text(), text)
        self.assertEqual((self.build / "libsample.so").read_bytes(), self.library)
        self.assertEqual(list(self.scratch.iterdir()), [])

    def start(self, *arguments):
        return subprocess.Popen([project.source_dir / "script/mutate", "--build", self.build, *arguments],
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                env={**os.environ, "TMPDIR": str(self.scratch)})

    def mutate(self, *arguments):
        process = self.start(*arguments)
        out, err = process.communicate(timeout=100)
        return process.returncode, out.splitlines(), err

    def check_weak_test(self):
        code, lines, err = self.mutate("sum", "--line", "1-8")
        self.assertEqual(lines[:-1], [
            "sum/sum.cpp:5: condition: a > limit -> false",
            "sum/sum.cpp:5: comparison: (a > limit) -> (a >= limit)",
            "sum/sum.cpp:6: return: return limit -> return {}"], err)
        self.assertRegex(lines[-1], r"\Asum/sum.cpp: 3 killed, 3 survived, 0 timed out, "
                                    r"0 did not compile, 0 same code \(\d+ s\)\Z")
        self.assertEqual(code, 1)

    def check_strong_test(self):
        code, lines, err = self.mutate("sum/sum.cpp", "--line", "4-8", "--test", "strong_test", "--jobs", "2")
        self.assertEqual((code, len(lines)), (0, 1), err)
        self.assertIn(": 6 killed, 0 survived,", lines[0])

    def check_header(self):
        code, lines, _ = self.mutate(str(self.source / "sum/limit.h"), "--verbose", "--test", "strong_test")
        self.assertEqual(lines[:-1], [
            "sum/limit.h:1: constant: limit = 100; -> limit = 101; [killed by strong_test]",
            "sum/limit.h:1: constant: limit = 100; -> limit = 99; [killed by strong_test]"])
        self.assertEqual(code, 0)

    # A library that the test opens, and does not link.
    def check_opened(self):
        code, lines, err = self.mutate("opened")
        self.assertEqual((code, len(lines)), (0, 1), err)
        self.assertIn(" 0 survived,", lines[0])

    def check_fates(self):
        code, lines, _ = self.mutate("sum", "--verbose", "--test", "strong_test", "--timeout", "1",
                                     "--line", "10", "--line", "12-13", "--kind",
                                     "constant,comparison,statement")
        self.assertEqual(lines[:-1], [
            "sum/sum.cpp:10: constant: pair[2] = -> pair[1] = [did not compile]",
            "sum/sum.cpp:10: constant: pair[2] = -> pair[3] = [same code]",
            "sum/sum.cpp:12: comparison: (left > 1) -> (left >= 1) [killed by strong_test]",
            "sum/sum.cpp:12: constant: left > 1) -> left > 0) [killed by strong_test]",
            "sum/sum.cpp:12: constant: left > 1) -> left > 2) [killed by strong_test]",
            "sum/sum.cpp:13: statement: --left -> (dropped) [timed out by strong_test]"])
        self.assertIn(" 3 killed, 0 survived, 1 timed out, 1 did not compile, 1 same code ", lines[-1])
        self.assertEqual(code, 0)

    def check_sample(self):
        def sample(*arguments):
            code, lines, err = self.mutate("sum", "--list", *arguments)
            self.assertEqual(code, 0)
            return lines, err

        everything, _ = sample()
        some, err = sample("--limit", "4")
        self.assertEqual(len(some), 4)
        self.assertEqual(some, [line for line in everything if line in some])
        self.assertEqual(sample("--limit", "4", "--seed", err.split()[-1])[0], some)

    def check_interrupt(self):
        process = self.start("sum", "--test", "strong_test", "--line", "13", "--kind", "statement",
                             "--timeout", "50")
        process.stderr.readline()  # it has begun
        process.send_signal(signal.SIGTERM)
        out, _ = process.communicate(timeout=20)
        self.assertEqual(process.returncode, 130)
        self.assertIn("1 not tried", out)

    def check_trouble(self):
        for code, *arguments in ((2,), (2, "nothing"), (2, "sum", "--test", "none"), (2, "sum", "--kind", "x"),
                                 (2, "sum", "--line", "x"), (2, "/dev/null"),
                                 (3, "sum", "--test", "wrong_test"), (0, "--help")):
            with self.subTest(arguments):
                self.assertEqual(self.mutate(*arguments)[0], code)


class Mutants(unittest.TestCase):
    """Which changes there are."""

    def notes(self, body, **options):
        return [f"{mutant.kind}: {mutant.note}" for mutant in
                find_mutants("void f() {\n" + body + "\n}\n", **options)]

    def test_what_is_no_code(self):
        for text in ("#include <a+b>\n#if 1 < 2\n#endif\n", "// a < 1\n/* a = 1; */\n", "static_assert(1 < 2);",
                     "template <int n> struct S;", "int f(int a, int b);", "[[gnu::aligned(8)]] int a;",
                     'const char *s = "1 < 2";', "x::y<a, b> *operator+(T &&t);", "auto *p = f<a>;"):
            self.assertEqual(find_mutants(text), [], text)

    def test_kinds(self):
        for body, *expected in (
                ("x = 7;", "statement: x = 7 -> (dropped)", "constant: x = 7; -> x = 6;",
                 "constant: x = 7; -> x = 8;"),
                ("int x = 0xFFu;", "constant: x = 0xFFu; -> x = 0x100u;", "constant: x = 0xFFu; -> x = 0xfeu;"),
                ("const char c = '0';", "constant: c = '0'; -> c = ('0' + 1);"),
                ("bool b = true;", "constant: b = true; -> b = false;"),
                ("T b = a < c;", "comparison: = a < c; -> = a <= c;"),
                ("T b = a == c;", "comparison: = a == c; -> = a != c;"),
                ("T b = a != nullptr;", "comparison: = a != nullptr; -> = a == nullptr;"),
                ("T b = a == 0;", "comparison: = a == 0; -> = a != 0;", "comparison: = a == 0; -> = a <= 0;",
                 "comparison: = a == 0; -> = a >= 0;", "constant: a == 0; -> a == 1;"),
                ("T b = a % c;", "arithmetic: = a % c; -> = a / c;"),
                ("T b = -a;", "arithmetic: b = -a; -> b = a;"),
                ("*a++ = b;", "statement: *a++ = b -> (dropped)", "arithmetic: *a++ = b -> *a-- = b"),
                ("T b = !a;", "logic: b = !a; -> b = a;"),
                ("T b = a || c;", "logic: a || c -> c", "logic: a || c -> a", "logic: = a || c; -> = a && c;"),
                ("T b = a ? c : d;", "condition: a -> false", "condition: a -> true"),
                ("if (a) {}", "condition: a -> false", "condition: a -> true"),
                ("while (a) {}", "condition: a -> false"),
                ("return a;", "return: return a -> return {}"),
                ("return COMN_TRACE(g());",
                 "return: return COMN_TRACE(g()) -> return COMN_TRACE(CS_FAIL)"),
                ("return COMN_TRACE(CS_FAIL);",
                 "constant: COMN_TRACE(CS_FAIL); -> COMN_TRACE(CS_SUCCEED);"),
                ("return;", "statement: return -> (dropped)"),
                ("return CS_FAIL;", "constant: return CS_FAIL; -> return CS_SUCCEED;"),
                ("T b = g(a, c);", "argument: a, c -> c, a"),
                ("T b = g<a, c>(a, a);",),
                ("for (T i = a; i < c; ++i) {}", "comparison: ; i < c; -> ; i <= c;"),
                ("T b = [] { h(); };", "statement: h() -> (dropped)")):
            with self.subTest(body):
                self.assertEqual(self.notes(body), expected)
        self.assertEqual(self.notes('T b = "one";', strings=True), ['string: b = "one"; -> b = "#ne";'])
        self.assertEqual([mutant.note for mutant in find_mutants("#define M(a) \\\n  g(a, 1)\n")],
                         ["g(a, 1) -> (dropped)", "a, 1 -> 1, a", "a, 1) -> a, 0)", "a, 1) -> a, 2)"])

    def test_lines_stay(self):
        text = "void f() {\n  g(a,\n    b);\n  if (a &&\n      b)\n    return;\n}\n"
        found = find_mutants(text)
        self.assertIn("statement", [mutant.kind for mutant in found])
        for mutant in found:
            self.assertEqual(mutant.apply(text).count("\n"), text.count("\n"), mutant)


if __name__ == "__main__":
    project.main()
