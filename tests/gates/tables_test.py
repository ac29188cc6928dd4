"""A program that defines every exported constant table, with rubbish, gets the results of any other."""
import subprocess
import tempfile
import unittest
from pathlib import Path

import project
from project import build, run

client = Path(__file__).with_name("tables_client.c")


class Tables(unittest.TestCase):
    def build_client(self, scratch, name, *more_sources, flags=()):
        program = Path(scratch) / name
        libraries = [build.zrvcomn, build.zrvintl]
        run(build.c_compiler, *project.c_flags, *flags, "-std=gnu99", "-Wall", "-Wextra", "-Werror",
            "-I" + str(Path(build.binary_dir) / "include"), client, *more_sources, *libraries,
            "-Wl,-rpath," + str(Path(build.zrvcomn).parent), "-o", program)
        return program

    @staticmethod
    def run_client(program):
        done = subprocess.run([program], capture_output=True, timeout=120)
        return done.returncode, done.stdout.decode("latin-1").splitlines()

    def test_tables_of_a_program_change_nothing(self):
        tables = [table for table in project.exported_data() if table.is_constant]
        self.assertGreater(len(tables), 0)
        with tempfile.TemporaryDirectory(prefix="zrvcomn-tables-") as scratch:
            # Another size each, odd bytes: what reads a number, a pointer or an end row here notices.
            rubbish = Path(scratch) / "rubbish.c"
            rubbish.write_text("".join(
                f"unsigned char {table.name}[{table.size + 40}] __attribute__((aligned(16))) = "
                f"{{[0 ... {table.size + 39}] = 0x5B}};\n" for table in tables))
            status, expected = self.run_client(self.build_client(scratch, "plain"))
            self.assertEqual((status, expected[-1:]), (0, ["end 1 1"]))
            for flags in (["-fPIE", "-pie"], ["-fno-pie", "-no-pie"]):
                with self.subTest(flags):
                    program = self.build_client(scratch, "rubbish", rubbish, flags=flags)
                    # The program's tables do come first for the loader.
                    symbols = run(build.nm, "--dynamic", "--defined-only", program)
                    self.assertLessEqual({table.name for table in tables},
                                         {line.split()[-1] for line in symbols.splitlines()})
                    status, lines = self.run_client(program)
                    self.assertEqual(status, 0)
                    for number, (line, other) in enumerate(zip(lines, expected), 1):
                        self.assertEqual(line, other, f"line {number}")
                    self.assertEqual(len(lines), len(expected))


if __name__ == "__main__":
    project.main()
