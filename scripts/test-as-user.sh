#!/usr/bin/env bash
# Runs the Windows test programs once more as an ordinary user, in a copy of the Wine prefix: root may write read-only files,
# so what forgets to make them writable goes unseen as root. Needs root; build/mingw must be built.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
user=65534 # nobody
work=$(mktemp -d /tmp/kelins-user.XXXXXX) # a place that this user can reach, wherever the checkout is
export KELINS_WINEPREFIX=$work/prefix HOME=$work

as_user() {
    setpriv --reuid="$user" --regid="$user" --clear-groups "$@"
}

finish() {
    as_user "$work/scripts/wine-prefix.sh" stop || true
    rm -rf "$work"
}
trap finish EXIT

cp -a "$root/build/wineprefix" "$work/prefix"
rm -f "$work/prefix/wineserver" # names the folder of the running server, which is not this user's
cp -a "$root/scripts" "$work/scripts"
mkdir "$work/bin" "$work/results"
cp "$root"/build/mingw/bin/*.dll "$root"/build/mingw/bin/*.exe "$work/bin/"
chown -R "$user:$user" "$work"
chmod 755 "$work"
as_user "$work/scripts/wine-prefix.sh"

jobs=()
run() { # NAME PROGRAM FILTER: side by side with the others, as many as there are processors
    (cd "$work/results" && as_user "$work/scripts/wine-test.sh" "$work/bin/$2.exe" "--gtest_filter=$3" --gtest_brief=1 \
        "--gtest_output=xml:$1.xml") &
    jobs+=($!)
    while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do sleep 0.2; done
}

# Each in a process of its own, for the reasons that stand in tests/CMakeLists.txt.
run rewriting_sweep fault_sweep '*Sweep*/Write*:*Sweep*/ReplaceInLines*' # files that are read-only for this user
run dll_tests dll_tests '-*Isolated*:*ProcessBuilder*:*Registry*'
run internal_tests internal_tests '-*Isolated*'
run dll_tests_ProcessBuilder dll_tests '*ProcessBuilder*-*Isolated*'
run dll_tests_Registry dll_tests '*Registry*-*Isolated*'
status=0
for job in "${jobs[@]}"; do
    wait "$job" || status=1
done
rm -rf "$root/build/mingw-user" && mkdir -p "$root/build/mingw-user/results"
cp "$work"/results/*.xml "$root/build/mingw-user/results/"
exit $status
