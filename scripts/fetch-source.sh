#!/usr/bin/env bash
# fetch-source.sh PACKAGE FOLDER: unpacks the upstream sources of a Debian source package, with package lists of its own:
# the machine's lists and sources stay as they are.
set -euo pipefail
package=$1
target=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/parts" "$work/lists/partial" "$work/archives/partial"

for file in /etc/apt/sources.list.d/*.sources; do
    if grep -q 'debian-archive-keyring' "$file" 2>/dev/null; then
        sed 's/^Types:.*/Types: deb-src/' "$file" >"$work/parts/$(basename "$file")"
    fi
done
if [ -z "$(ls "$work/parts")" ]; then # the older one-line form
    sed -n 's/^deb \(.*debian.*\)/deb-src \1/p' /etc/apt/sources.list >"$work/parts/sources.list"
fi

apt=(apt-get -qq -o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$work/parts"
    -o "Dir::State::lists=$work/lists" -o "Dir::Cache::archives=$work/archives"
    -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache=" -o "APT::Sandbox::User=")
"${apt[@]}" update
(cd "$work" && "${apt[@]}" source --download-only "$package")
rm -rf "$target"
mkdir -p "$target"
tar -xf "$work"/*.orig.tar.* -C "$target" --strip-components=1
