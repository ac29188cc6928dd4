"""The comments of the public headers, as script/docs shows them."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import project
from project import source_dir

sys.path.insert(0, str(source_dir / "script" / "support"))
from doxygen_filter import functions_without_comment

headers = project.tracked_files("include/*.h", "platform/zrvintl/zrvintl.h", "platform/zrvunic/zrvunic.h",
                                "platform/velcrypto/velcrypto.h", "platform/velssfs/velssfs.h")


class Comments(unittest.TestCase):
    # Parameters that are told are parameters; every warning is an error in Doxyfile.
    def test_doxygen(self):
        if not shutil.which("doxygen"):
            self.skipTest("doxygen is not installed")
        with tempfile.TemporaryDirectory() as scratch:
            settings = (source_dir / "Doxyfile").read_text() + f'\nOUTPUT_DIRECTORY = "{scratch}"\n'
            done = subprocess.run(["doxygen", "-"], input=settings, text=True, cwd=source_dir,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            self.assertEqual((done.returncode, done.stdout), (0, ""))
            self.assertTrue((Path(scratch) / "html" / "comnlib_8h.html").is_file())

    def test_every_function_has_a_comment(self):
        self.assertEqual(functions_without_comment("/* Told. */\nZRV_API int a(void);\n\n"
                                                   "ZRV_API int b(void);\n"), ["b"])
        self.assertEqual([name for header in headers
                          for name in functions_without_comment(header.read_text())], [])


if __name__ == "__main__":
    project.main()
