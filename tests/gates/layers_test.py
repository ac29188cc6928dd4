"""The sources as text: layers that hold, and one format."""
import os
import re
import unittest
from pathlib import Path

import project
from project import build, run, source_dir, tracked_files


class Layering(unittest.TestCase):
    """The include lines against layering.txt."""

    @classmethod
    def setUpClass(cls):
        cls.allowed = {}
        for line in (Path(__file__).parent / "layering.txt").read_text().splitlines():
            line = line.partition("#")[0].strip()
            if line:
                folder, _, below = line.partition(":")
                cls.allowed[folder] = below.split()
        sources = tracked_files("*.h", "*.c", "*.cpp")
        cls.files = [path.relative_to(source_dir).as_posix() for path in sources]
        cls.headers = [name for name in cls.files if name.endswith(".h")]

    def folder(self, name):
        """The folder of the layering file that a source belongs to, or None."""
        owners = [folder for folder in self.allowed if name.startswith(folder + "/")]
        return max(owners, key=len, default=None)

    def includes(self, name):
        """The files of ours that a file includes, as (line, file); an unknown one is None."""
        text = (source_dir / name).read_text()
        for match in re.finditer(r'^[ \t]*#[ \t]*include[ \t]*(?:"(.+?)"|<(zrvcomn/.+?)>)', text, re.M):
            target = match[1] or match[2]
            line = text.count("\n", 0, match.start()) + 1
            own = os.path.normpath(Path(name).parent / target)
            if target.startswith("zrvcomn/"):
                base = target.removeprefix("zrvcomn/")
                found = [header for header in (f"include/{base}", f"platform/zrvintl/{base}",
                                               f"platform/zrvunic/{base}",
                                               f"platform/velcrypto/{base}",
                                               f"platform/velssfs/{base}")
                         if header in self.headers]
            elif own in self.headers:
                found = [own]
            else:
                found = [header for header in self.headers if header.endswith("/" + target)]
            yield line, found[0] if len(found) == 1 else None

    def test_layers_have_no_cycle(self):
        reached = set()
        for folder, below in self.allowed.items():  # each line names only folders above it
            self.assertLessEqual(set(below), reached, folder)
            reached.add(folder)

    def test_every_source_has_a_layer(self):
        stray = [name for name in self.files
                 if name.split("/")[0] in ("generic", "linux", "platform") and not self.folder(name)]
        self.assertEqual(stray, [])

    def test_includes_follow_the_layers(self):
        trouble = []
        for name in self.files:
            folder = self.folder(name)
            if folder is None:
                continue
            for line, target in self.includes(name):
                if target is None:
                    trouble.append(f"{name}:{line}: no such header of ours, or more than one")
                elif self.folder(target) not in (folder, *self.allowed[folder]):
                    trouble.append(f"{name}:{line}: {folder} must not include {target}")
        self.assertEqual(trouble, [])

    def test_includes_have_no_cycle(self):
        graph = {name: [target for _, target in self.includes(name) if target] for name in self.headers}
        done, path = set(), []

        def visit(name):
            self.assertNotIn(name, path, "a cycle of includes")
            if name not in done:
                path.append(name)
                for target in graph[name]:
                    visit(target)
                path.pop()
                done.add(name)

        for name in graph:
            visit(name)


class Format(unittest.TestCase):
    def test_clang_format(self):
        version = run(build.clang_format, "--version")
        if " version 14." not in version:
            self.skipTest("formatting is defined by clang-format 14, not by " + version)
        files = tracked_files("*.h", "*.c", "*.cpp")
        self.assertGreater(len(files), 0)
        run(build.clang_format, "--dry-run", "-Werror", *files)


if __name__ == "__main__":
    project.main()
