#!/usr/bin/env python3
"""check_exports.py OBJDUMP DLL LIST [--write]: the DLL exports exactly the names in LIST, one demangled name a line.

With --write the list is written anew from the DLL: read the difference before committing it.
"""

import pathlib
import re
import subprocess
import sys

SHORTER = (
    ("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string"),
    ("std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >", "std::wstring"),
    ("[abi:cxx11]", ""),
)


def exported_names(objdump, dll):
    dump = subprocess.run([objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    _, _, table = dump.partition("[Ordinal/Name Pointer] Table")
    mangled = re.findall(r"^\s+\[\s*\d+\](?: \+base\[\s*\d+\])?\s+(?:[0-9a-f]{4} )?(\S+)$", table, re.MULTILINE)
    if not mangled:
        raise SystemExit(f"{dll}: no export table found")
    filt = objdump.replace("objdump", "c++filt")
    names = subprocess.run([filt], input="\n".join(mangled), check=True, capture_output=True, text=True).stdout
    for long, short in SHORTER:
        names = names.replace(long, short)
    return set(names.splitlines())  # the constructors of one class share a demangled name


def main():
    objdump, dll, list_file = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    actual = exported_names(objdump, dll)
    if "--write" in sys.argv:
        list_file.write_text("".join(f"{name}\n" for name in sorted(actual)))
        return 0
    expected = set(list_file.read_text().splitlines())
    for name in sorted(actual - expected):
        print(f"exported, but not in {list_file.name}: {name}")
    for name in sorted(expected - actual):
        print(f"in {list_file.name}, but not exported: {name}")
    print(f"{len(actual)} exported names")
    return 0 if actual == expected else 1


sys.exit(main())
