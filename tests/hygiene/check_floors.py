#!/usr/bin/env python3
"""check_floors.py LIBRARY_FOLDER: each folder includes only itself and the folders below it, no public header includes an
internal one or <windows.h>, and <windows.h> is included in one place alone."""

import pathlib
import re
import sys

BELOW = {  # folder: the folders it may include
    "foundation": set(),
    "io": {"foundation"},
    "config": {"io", "foundation"},
    "system": {"foundation", "io"},
    "registry": {"system", "foundation", "io"},
    "json": set(),
    "xml": set(),
    "hash": set(),
}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
WINDOWS_API = "foundation/internal/WindowsApi.h"


def complaints(root):
    sources = [p for p in sorted(root.rglob("*")) if p.suffix in (".h", ".cpp", ".l", ".yy")]
    if len(sources) < 10:
        yield f"{root}: only {len(sources)} sources found"
    for source in sources:
        name = source.relative_to(root).as_posix()
        folder = name.split("/")[0] if "/" in name else None
        public_header = source.suffix == ".h" and "/internal/" not in name
        for included in INCLUDE.findall(source.read_text()):
            if included == "windows.h" and name != WINDOWS_API:
                yield f"{name}: <windows.h> comes only through {WINDOWS_API}"
            if not included.startswith("KelInsInfra/"):
                continue
            target = included.removeprefix("KelInsInfra/")
            if public_header and "/internal/" in target:
                yield f"{name}: a public header includes the internal {target}"
            target_folder = target.split("/")[0] if "/" in target else None
            if folder and target_folder and target_folder != folder and target_folder not in BELOW[folder]:
                yield f"{name}: {folder} may not include {target_folder} ({target})"
        if source.suffix == ".cpp" and re.search(r"#\s*if.*_WIN32", source.read_text()):
            yield f"{name}: a source is portable or for Windows, never both"


found = list(complaints(pathlib.Path(sys.argv[1])))
print("\n".join(found) if found else "every include goes down")
sys.exit(1 if found else 0)
