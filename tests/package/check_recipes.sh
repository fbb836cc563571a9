#!/usr/bin/env bash
# check_recipes.sh BUILD_FOLDER: the recipes for vcpkg and Conan as far as they can be checked without either: syntax, versions, the port
# run with stand-ins for vcpkg's functions, and a configuration of the project with the options that the port gives.
set -euo pipefail
build=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$build/recipes
rm -rf "$work" && mkdir -p "$work/package"
port=$root/packaging/vcpkg/kelinsinfra

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$root/CMakeLists.txt")
PYTHONPYCACHEPREFIX=$work python3 - "$root" "$version" <<'PYTHON'
import ast, json, pathlib, re, sys
root, version = pathlib.Path(sys.argv[1]), sys.argv[2]
manifest = json.loads((root / "packaging/vcpkg/kelinsinfra/vcpkg.json").read_text())
assert manifest["version-semver"] == version, "the port's version"
assert f"## {version}" in (root / "CHANGELOG.md").read_text(), "the changelog does not know this version"
for recipe in root.glob("packaging/conan/**/conanfile.py"):
    tree = ast.parse(recipe.read_text(), str(recipe))
    assert any(isinstance(node, ast.ClassDef) for node in tree.body), recipe
pattern = re.search(r're.search\(r"(.*?)"', (root / "packaging/conan/conanfile.py").read_text()).group(1)
assert re.search(pattern, (root / "CMakeLists.txt").read_text()).group(1) == version, "the version that Conan finds"
PYTHON

cat >"$work/run.cmake" <<CMAKE
set(CURRENT_PORT_DIR "$port")
set(CURRENT_PACKAGES_DIR "$work/package")
set(PORT kelinsinfra)
function(vcpkg_find_acquire_program name)
    find_program(\${name} flex REQUIRED)
endfunction()
function(vcpkg_cmake_configure)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "SOURCE_PATH" "OPTIONS")
    file(WRITE "$work/options" "\${arg_OPTIONS}")
    file(WRITE "$work/source" "\${arg_SOURCE_PATH}")
endfunction()
foreach(name IN ITEMS vcpkg_cmake_install vcpkg_cmake_config_fixup vcpkg_fixup_pkgconfig vcpkg_install_copyright)
    cmake_language(EVAL CODE "function(\${name})\nfile(APPEND [[$work/calls]] \"\${name} \\\${ARGN}\\n\")\nendfunction()")
endforeach()
include("$port/portfile.cmake")
CMAKE
cmake -P "$work/run.cmake"
[ "$(wc -l <"$work/calls")" -eq 4 ] || { cat "$work/calls"; echo "the port does not call what it should"; exit 1; }
[ -f "$work/package/share/kelinsinfra/usage" ]

IFS=';' read -r -a options <"$work/options" || true
cmake -S "$(cat "$work/source")" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" "${options[@]}" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
! grep -q 'not used by the project' "$work/log" || { cat "$work/log"; echo "an option of the port has no meaning"; exit 1; }
! ninja -C "$work/build" -t targets all | grep -E '^(tests|examples)/' >/dev/null || { echo "the port would build tests"; exit 1; }
echo "recipes: vcpkg and Conan for $version"
