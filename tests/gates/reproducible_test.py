"""The same sources in another directory give the same libraries, byte for byte: the small ones whole, and
of the large one every eighth object, which keeps the run short."""
import shutil
import tempfile
import unittest
from pathlib import Path

import project
from project import build, run, source_dir, tracked_files


class Reproducible(unittest.TestCase):
    def test_build_elsewhere(self):
        with tempfile.TemporaryDirectory(prefix="zrvcomn-elsewhere-") as scratch:
            copy = Path(scratch) / "a longer path to the sources"
            for path in tracked_files("*"):
                target = copy / path.relative_to(source_dir)
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(path, target)
            binary = copy / "build" / "again"
            toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={build.toolchain}"] if build.toolchain else []
            run(build.cmake, "-G", build.generator, "-S", copy, "-B", binary, *toolchain,
                f"-DCMAKE_BUILD_TYPE={build.build_type}", f"-DCMAKE_C_COMPILER={build.c_compiler}",
                f"-DCMAKE_CXX_COMPILER={build.cxx_compiler}", "-DZRV_TESTS=OFF", "-DZRV_BENCH=OFF",
                "-DZRV_TOOLS=OFF",
                "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON")  # the optimiser's warnings too, at no cost
            here = Path(build.binary_dir)
            libraries = [Path(path).relative_to(here) for path in
                         (build.zrvintl, build.zrvunic, build.velcrypto, build.velssfs)]
            objects = sorted(path.relative_to(here)
                             for path in here.glob("generic/CMakeFiles/zrvcomn.dir/**/*.o"))[::8]
            self.assertGreater(len(objects), 10)
            run(build.cmake, "--build", binary, "--target", *libraries, *objects)
            for made in libraries + objects:
                self.assertTrue((binary / made).read_bytes() == (here / made).read_bytes(), made)


if __name__ == "__main__":
    project.main()
