#!/usr/bin/env bash
# Makes the reference in build/docs/html, from the headers and the pages in docs/. Every warning of Doxygen is an error, so is a link of
# the pages that leads nowhere, and a function that they name but the headers do not have.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
"$root/scripts/install.sh"
rm -rf build/docs && mkdir -p build/docs
doxygen docs/Doxyfile
python3 docs/check_pages.py
echo "reference: build/docs/html/index.html, $(find build/docs/html -name '*.html' | wc -l) pages"
