#!/usr/bin/env bash
# Makes the packages of the SDK in build/packages: a ZIP and a Windows installer, with their SHA-256 sums. Installs what is missing
# (Debian 12, apt-get) and builds the library first.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

log=$root/build/logs/package.log
mkdir -p "$root/build/logs"
step() { # TITLE COMMAND...
    printf '%-50s' "$1"
    shift
    if ! "$@" >"$log" 2>&1 </dev/null; then
        echo FAILED
        tail -n 30 "$log"
        exit 1
    fi
    echo ok
}

step "install what is missing" scripts/install.sh
step "make the reference" scripts/docs.sh
step "configure" cmake --preset mingw
step "build the library" cmake --build --preset mingw -j "$(nproc)" --target KelInsInfra KelInsInfraStatic
rm -rf build/packages
step "make the packages" cpack --config build/mingw/CPackConfig.cmake
rm -rf build/packages/_CPack_Packages
cd build/packages
sha256sum --check --quiet ./*.sha256
du -h -- * | sed 's|\t|  build/packages/|'
