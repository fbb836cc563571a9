#!/usr/bin/env bash
# Checks the layout (clang-format) of all our sources and lints the library (clang-tidy). "--fix" lays the sources out.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.h' '*.cpp' |
    while read -r file; do
        [ -f "$file" ] && ! git check-attr linguist-generated -- "$file" | grep -qE ': (set|true)$' && echo "$file"
    done)
if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
    exit 0
fi
clang-format --dry-run -Werror "${sources[@]}"
echo "layout: ${#sources[@]} files clean"

# The Windows sources are read with the cross compiler's own headers.
database=$root/build/mingw
cmake --preset mingw >/dev/null # always: a database of before a change would be read as it was
includes=()
while read -r folder; do
    includes+=("--extra-arg=-isystem$folder")
done < <(x86_64-w64-mingw32-g++-posix -xc++ -E -v /dev/null -o /dev/null 2>&1 |
    sed -n '/^#include </,/^End/s/^ //p' | grep -v '/12-posix/include\(-fixed\)\?$')
mapfile -t library < <(printf '%s\n' "${sources[@]}" | grep '^KelInsInfra/.*\.cpp$')
printf '%s\n' "${library[@]}" | xargs -P "$(nproc)" -n 4 \
    clang-tidy --quiet -p "$database" --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-nostdinc++ "${includes[@]}" \
    --extra-arg=-Wreserved-identifier --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-unused-command-line-argument 2> >(grep -vE 'warnings? (generated|treated)|^Suppressed|^Use -' >&2)
echo "lint: ${#library[@]} sources clean"
