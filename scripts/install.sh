#!/usr/bin/env bash
# Installs what building, testing and measuring need on Debian 12, with apt-get (as root, or through sudo). Quick, and
# needs no rights, when everything is there.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

packages=(
    g++-mingw-w64-x86-64-posix cmake ninja-build # the product
    wine wine64                                  # where it runs here
    wixl msitools nsis                           # installation packages for tests and demo
    jq libxml2-utils                             # independent readers of JSON and XML
    flex bison libfl-dev                         # the JSON scanner and parser
    pkg-config doxygen                           # the packages of the SDK, their test, the reference
    g++ clang libclang-rt-14-dev                 # the portable part natively, with sanitizers
    googletest                                   # sources, built with each compiler
    clang-format clang-tidy python3 git          # checks
    valgrind                                     # counts instructions
    libssl-dev uuid-dev                          # independent answers, and peers to be measured against
    python3-cryptography-vectors                 # NIST's vectors for SHA-256
    nlohmann-json3-dev rapidjson-dev libpugixml-dev libtinyxml2-dev
    shared-mime-info iso-codes fontconfig-config docbook-xml adwaita-icon-theme # XML files that nobody here wrote
)

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and only root can install them: ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    export DEBIAN_FRONTEND=noninteractive
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; } \
        >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "apt-get could not install them; its whole output is in $log" >&2
        exit 1
    fi
    rm -f "$log"
fi

# Google Benchmark, as Debian's source package: no binary package serves the Windows build.
benchmark=$root/build/third_party/benchmark
if [ "${1:-}" = --benchmarks ] && [ ! -f "$benchmark/CMakeLists.txt" ]; then
    echo "Fetching the sources of Google Benchmark"
    "$root/scripts/fetch-source.sh" benchmark "$benchmark"
fi
