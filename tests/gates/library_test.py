"""The built shared objects: what they export, what they need, what they must not contain."""
import re
import unittest
from pathlib import Path

import project
from project import build, run, source_dir

libraries = {"libzrvcomn": build.zrvcomn, "libzrvintl": build.zrvintl,
             "libzrvunic": build.zrvunic, "libvelssfs": build.velssfs,
             "libvelcrypto": build.velcrypto}
sonames = {"libzrvcomn": ["libzrvcomn.so.16"], "libzrvintl": ["libzrvintl.so.1"],
           "libzrvunic": ["libzrvunic.so.1"], "libvelssfs": ["libvelssfs.so"],
           "libvelcrypto": []}  # nobody links with the provider
maps = {"libzrvcomn": "generic/src/libzrvcomn.map", "libzrvintl": "platform/zrvintl/zrvintl.map",
        "libzrvunic": "platform/zrvunic/zrvunic.map",
        "libvelssfs": "platform/velssfs/velssfs.map",
        "libvelcrypto": "platform/velcrypto/velcrypto.map"}

# The only shared objects that ours may need. libgcc_s has the 64-bit division of 32-bit programs, and
# 64-bit ones have no use for it.
system_libraries = {"libc.so.6", "libm.so.6", "libdl.so.2"}
if build.pointer_size == 4:
    system_libraries.add("libgcc_s.so.1")
allowed_libraries = {"libzrvcomn": system_libraries | {"libzrvintl.so.1", "libzrvunic.so.1",
                                                       "libstdc++.so.6"},
                     "libzrvintl": system_libraries,
                     "libzrvunic": system_libraries | {"libzrvintl.so.1"},
                     "libvelssfs": system_libraries | {"libzrvintl.so.1", "libcrypto.so.3"},
                     "libvelcrypto": system_libraries | {"libcrypto.so.3"}}

# The version nodes of those, which tell where an undefined symbol is to come from.
allowed_versions = {"libzrvcomn": r"GLIBC_.*|GLIBCXX_.*|GCC_.*|ZRVINTL_1|ZRVUNIC_1",
                    "libzrvintl": r"GLIBC_.*|GCC_.*",
                    "libzrvunic": r"GLIBC_.*|GCC_.*|ZRVINTL_1",
                    "libvelssfs": r"GLIBC_.*|GCC_.*|ZRVINTL_1|OPENSSL_3.*",
                    "libvelcrypto": r"GLIBC_.*|GCC_.*|OPENSSL_3\..*"}

# What the compiler's start files refer to in every shared object, all of it weak.
start_file_names = {"_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable", "__cxa_finalize",
                    "__gmon_start__"}

# The constant tables that calls hand out by their told names: a caller may compare addresses.
handed_out = {"Com__Days", "Com__Months", "Com__Shortmonths", "Com__cnvrt_array", "Com__date_order",
              "comn__Vdate", "ISO_1_soundex", "ISO_1_type_map"}

memory_functions = {"comn_malloc", "comn_calloc", "comn_realloc", "comn_free"}

# Exceptions, type information, guards of local statics, wrappers of thread-locals, the C++ heap, the
# functions that run static constructors, and of the standard library all but text from and to doubles.
run_time_names = re.compile(
    r"__cxa_(?!finalize$)|__gxx_|_Unwind_|_ZT[ISVHW]|_ZGV|__dynamic_cast|_Zn[wa]|_Zd[la]"
    r"|_GLOBAL__(sub_)?[ID]|_ZSt(?!8to_charsPcS_dSt|10from_charsPKcS0_RdSt)|_ZNSt|_ZNKSt")


class Symbol:
    """One line of nm: an address (or none), a kind, a name with a version (or none)."""

    def __init__(self, line):
        *address, self.kind, name = line.split()
        self.address = int(address[0], 16) if address else None
        self.name, _, version = name.partition("@")
        self.version = version.lstrip("@")


def symbols(library, *options):
    return [Symbol(line) for line in run(build.nm, *options, library).splitlines()]


def parse_map(path):
    """The version nodes of a linker map: {node: [names]}, in the order of the file."""
    text = re.sub(r"/\*.*?\*/", "", (source_dir / path).read_text(), flags=re.S)
    nodes = {}
    for node, body in re.findall(r"(\w+)\s*\{(.*?)\}", text, flags=re.S):
        exported = re.sub(r"local\s*:.*", "", body.replace("global:", ""), flags=re.S)
        nodes[node] = [name.strip() for name in exported.split(";") if name.strip()]
    return nodes


def declared(headers, node_of_marker):
    """The names that headers declare under the export macros: {node: set of names}."""
    names = {node: set() for node in node_of_marker.values()}
    for header in headers:
        markers = [f"-D{marker}={marker}_MARK" for marker in node_of_marker]
        text = run(build.c_compiler, *project.c_flags, "-std=c99", "-E", *markers,
                   f"-I{build.binary_dir}/include/zrvcomn", header)
        own = []  # what stands in the header itself, not in those that it includes
        inside = False
        for line in text.splitlines():
            marker = re.match(r'# \d+ "(.*?)"', line)
            if marker:
                inside = Path(marker[1]) == header
            elif inside:
                own.append(line)
        for marker, declaration in re.findall(r"\b(\w+)_MARK\b([^;]*);", "\n".join(own)):
            # The name is what stands before the parameters, the bounds or the end; a pointer to a
            # function has it in parentheses.
            name = re.search(r"\(\s*\*\s*(\w+)|(\w+)\s*(?:[(\[]|$)", declaration.strip())
            names[node_of_marker[marker]].add(name[1] or name[2])
    return names


class Library(unittest.TestCase):
    def test_soname(self):
        for name, path in libraries.items():
            with self.subTest(name):
                dynamic = run(build.readelf, "--dynamic", "--wide", path)
                self.assertEqual(re.findall(r"\(SONAME\).*\[(.*)\]", dynamic), sonames[name])

    def test_needed_libraries(self):
        for name, path in libraries.items():
            with self.subTest(name):
                dynamic = run(build.readelf, "--dynamic", "--wide", path)
                needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic))
                self.assertIn("libc.so.6", needed)
                self.assertLessEqual(needed, allowed_libraries[name])

    def test_undefined_symbols(self):
        for name, path in libraries.items():
            with self.subTest(name):
                for symbol in symbols(path, "--dynamic", "--undefined-only"):
                    if symbol.kind in "wv":
                        self.assertIn(symbol.name, start_file_names)
                    else:
                        self.assertRegex(symbol.version, f"^({allowed_versions[name]})$", symbol.name)

    # Every page that the loader fixes up is read-only afterwards, and nothing is bound later.
    def test_hardening(self):
        for name, path in libraries.items():
            with self.subTest(name):
                self.assertRegex(run(build.readelf, "--segments", "--wide", path), r"\bGNU_RELRO\b")
                self.assertRegex(run(build.readelf, "--segments", "--wide", path), r"GNU_STACK.* RW +0x")
                self.assertRegex(run(build.readelf, "--dynamic", "--wide", path), r"\(FLAGS_1\).*\bNOW\b")
                self.assertNotRegex(run(build.readelf, "--dynamic", "--wide", path), r"\bTEXTREL\b")

    def test_no_cxx_run_time(self):
        for name, path in libraries.items():
            with self.subTest(name):
                found = [symbol.name for symbol in symbols(path) if run_time_names.match(symbol.name)]
                self.assertEqual(found, [])
                self.assertNotIn(".gcc_except_table", run(build.readelf, "--sections", "--wide", path))

    # The one entry of .init_array and of .fini_array is that of the compiler's start files.
    def test_nothing_runs_at_load(self):
        for name, path in libraries.items():
            with self.subTest(name):
                sections = run(build.readelf, "--sections", "--wide", path)
                self.assertNotRegex(sections, r" \.(ctors|dtors|preinit_array)\b")
                address = {symbol.name: symbol.address for symbol in symbols(path)}
                for section, function in ((".init_array", "frame_dummy"),
                                          (".fini_array", "__do_global_dtors_aux")):
                    size = re.search(rf" \{section} +\w+ +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+)", sections)
                    self.assertEqual(int(size[1], 16), build.pointer_size, section)
                    dump = run(build.readelf, "--hex-dump=" + section, path)
                    words = re.search(r"0x[0-9a-f]+ ((?:[0-9a-f]+ )+)", dump)[1].replace(" ", "")
                    entry = int.from_bytes(bytes.fromhex(words), "little")
                    self.assertEqual(entry, address[function], section)

    # A call of one of our functions to another is direct, so nobody can preempt it and it costs no
    # table, but for the memory functions, which a program may take over. Variables may stand in the
    # global offset table: a program that reads one directly has a copy of its own, which the library
    # must see.
    def test_own_calls_are_direct(self):
        for name, path in libraries.items():
            with self.subTest(name):
                functions = {symbol.name for symbol in symbols(path, "--dynamic", "--defined-only")
                             if symbol.kind in "Tti"}
                relocations = run(build.readelf, "--relocs", "--wide", path)
                indirect = set(re.findall(r"R_\w+ +[0-9a-f]+ +(\w+)@?", relocations))
                self.assertEqual(functions & indirect - memory_functions, set())

    # A table that the library read by its told name would be replaced by whatever a program defines
    # under that name, so it reads own_NAME (table.h). What may refer to told names: calls that hand a
    # table out, and rows of exported tables, which the library in turn does not read either.
    def test_constant_tables_are_read_by_their_own_names(self):
        tables = {table.name: table for table in project.exported_data() if table.is_constant}
        own_addresses = {symbol.address for symbol in symbols(build.zrvcomn)
                         if symbol.name.startswith("own_")}
        referred = set()
        for relocation in project.relocations(build.zrvcomn):
            if relocation.name not in tables:
                continue
            holders = [table for table in tables.values()
                       if table.address <= relocation.address < table.address + table.size]
            for holder in holders:
                self.assertNotIn(holder.address, own_addresses,
                                 f"{holder.name} points to {relocation.name} and is read (see "
                                 "COMN_PUBLISH_LINKED_TABLE)")
            if not holders:
                referred.add(relocation.name)
        self.assertEqual(referred, handed_out)

    # Each variable that a program could take the place of is told with its consequences.
    def test_variables_are_told(self):
        variables = {variable.name for variable in project.exported_data() if not variable.is_constant}
        self.assertIn("seed", variables)
        text = (source_dir / "ARCHITECTURE.md").read_text()
        linkage = text.partition("## Linkage\n")[2].partition("\n## ")[0]
        told = set(re.findall(r"^\| `(\w+)` \|", linkage, flags=re.M))
        self.assertEqual(told, variables)

    def test_exports_equal_the_map(self):
        for name, path in libraries.items():
            with self.subTest(name):
                exported = {node: set() for node in parse_map(maps[name])}
                for symbol in symbols(path, "--dynamic", "--defined-only"):
                    if symbol.kind != "A":  # the nodes themselves
                        self.assertIn(symbol.version, exported, symbol.name)
                        exported[symbol.version].add(symbol.name)
                for node, names in parse_map(maps[name]).items():
                    self.assertEqual(exported[node], set(names), node)

    def test_headers_equal_the_map(self):
        headers = {"libzrvcomn": sorted((source_dir / "include").glob("*.h")),
                   "libzrvintl": [source_dir / "platform/zrvintl/zrvintl.h"],
                   "libzrvunic": [source_dir / "platform/zrvunic/zrvunic.h"],
                   "libvelssfs": [source_dir / "platform/velssfs/velssfs.h"],
                   "libvelcrypto": [source_dir / "platform/velcrypto/velcrypto_exports.h"]}
        nodes = {"libzrvcomn": {"ZRV_API": "ZRVCOMN_16", "ZRV_PRIVATE": "ZRVCOMN_PRIVATE"},
                 "libzrvintl": {"ZRV_API": "ZRVINTL_1"},
                 "libzrvunic": {"ZRV_API": "ZRVUNIC_1"},
                 "libvelssfs": {"ZRV_API": "VELSSFS_1"},
                 "libvelcrypto": {"ZRV_API": "VELCRYPTO_1"}}
        for name in libraries:
            with self.subTest(name):
                in_map = parse_map(maps[name])
                in_headers = declared(headers[name], nodes[name])
                self.assertEqual(set(in_map), set(in_headers))
                for node in in_map:
                    self.assertGreater(len(in_headers[node]), 0)
                    self.assertEqual(in_headers[node], set(in_map[node]), node)

    # Internal names are told from the contract by their prefix.
    def test_internal_names_are_private(self):
        contract = parse_map(maps["libzrvcomn"])["ZRVCOMN_16"]
        internal = [name for name in contract if re.match(r"(com|comn|cfg|lm|mm)__", name)]
        self.assertEqual(internal, [])

    def test_map_is_sorted(self):
        for node, names in parse_map(maps["libzrvcomn"]).items():
            self.assertEqual(names, sorted(set(names)), node)


if __name__ == "__main__":
    project.main()
