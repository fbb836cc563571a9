#!/usr/bin/env bash
# Shows that the sweeps can fail: plants a defect in the library, in a copy of the last commit, runs the row of the sweep
# that relies on the place, and sees that row fail. Each row is first seen to pass. Takes about ten minutes.
#
#   scripts/sweep_breaks.sh                          all defects
#   scripts/sweep_breaks.sh fault-read kill-target   these
#
# Works in build/sweep-breaks, which stays for the next time. Exits 0 only when each row failed as it should.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
copy=$root/build/sweep-breaks
library=$copy/KelInsInfra
export KELINS_WINEPREFIX=${KELINS_WINEPREFIX:-$root/build/wineprefix}
all=(fault-read fault-handle fault-code fault-status allocation-part allocation-lost allocation-end kill-target kill-early)

describe() { # NAME: source, the sed command that changes it, what that does, the row that fails, and what it says then
    case $1 in
        fault-read) source=io/RewriteFile.cpp row='*FaultSweep.*/WriteKey' says='the new content is nowhere'
            what='a failed read passes for the end of the file'
            change='s/    if (file.bad())$/    if (file.bad() \&\& content.empty())/' ;;
        fault-handle) source=registry/RegistryValues.cpp row='*FaultSweep.*/GetValueBelow' says=': handles'
            what='a key stays open when its value cannot be read'
            change='s/^    Read(\(OpenSubkey(.*)\).GetKey(), name, value, view);/    Key* const key = new Key(\1);\n    Read(key->GetKey(), name, value, view);\n    delete key;/' ;;
        fault-code) source=io/FileDeletion.cpp row='*FaultSweep.*/DeleteFile' says='unexpected text'
            what="a text has another code than the system's"
            change='s/KelInsException("DeleteFile - " + path, error)/KelInsException("DeleteFile - " + path, error - error)/' ;;
        fault-status) source=registry/RegistryValues.cpp row='*FaultSweep.*/SetValue' says='nobody was told'
            what='a value that was not stored is passed over'
            change='/std::int32_t value)$/,/^}/s/if (status != ERROR_SUCCESS)/if (status == ERROR_INVALID_HANDLE)/' ;;
        allocation-part) source=io/StreamReading.cpp row='*AllocationSweep.*/InputStreamToString' says='a part of the result'
            what='a part of a text passes for the whole'
            change='s/^        throw; .*$/        text.clear();/' ;;
        allocation-lost) source=hash/SHA256.cpp row='*AllocationSweep.*/Sha256OfStreamThatThrows' says='lost after'
            what='a block has no owner while a stream is read'
            change='s/const std::unique_ptr<char\[\]> piece = .*/char* const block = new char[kPieceSize]();\n    const std::span<char> piece(block, kPieceSize);/
                s/piece.get()/piece.data()/g; s/#include <memory>/#include <span>/
                s/^    } while (stream.gcount() > 0 .*/&\n    delete[] block;/' ;;
        allocation-end) source=foundation/StringEditing.cpp row='*AllocationSweep.*/Split' says='terminate called'
            what='a missing block ends the process'
            change='s/^std::vector<std::string> SplitAt(.*)$/& noexcept/' ;;
        kill-target) source=io/RewriteFile.cpp row='*KillSweep.*/WriteKey*' says='killed at call'
            what='the file is written in its place'
            change='/^    WriteWhole(temporaryName, content, frame);$/d
                s/^    Copy(temporaryName, name);$/    WriteWhole(name, content, frame);/' ;;
        kill-early) source=io/RewriteFile.cpp row='*KillSweep.*/ReplaceInLines*' says='killed at call'
            what='the file is emptied before the temporary one is whole'
            change='s/^    WriteWhole(temporaryName, content, frame);$/    SetReadOnly(name, false);\n    GetOutputFileStream(name, std::ios_base::out);\n&/' ;;
        *) echo "unknown defect $1" >&2; return 1 ;;
    esac
    case $1 in
        allocation-*) program=allocation_sweep ;;
        *) program=fault_sweep ;;
    esac
}

prepare() { # the copy, at the last commit; what was built there stays
    if [ ! -d "$copy/.git" ]; then
        git clone -q --shared "$root" "$copy" || return 1
    fi
    git -C "$copy" fetch -q origin HEAD && git -C "$copy" reset -q --hard FETCH_HEAD || return 1
    "$root/scripts/wine-prefix.sh" && (cd "$copy" && cmake --preset mingw >/dev/null)
}

build() {
    (cd "$copy" && cmake --build --preset mingw -j "$(nproc)" --target "$program") >"$log" 2>&1
}

run() {
    (cd "$copy/build/mingw/results" && "$root/scripts/wine-test.sh" "../bin/$program.exe" "--gtest_filter=$row") \
        >"$log" 2>&1 </dev/null
}

catches() { # NAME: whether the row passes without the defect, and fails with it, for that reason
    local source change what row says program log
    describe "$1" || return 1
    log=$copy/build/break-$1.log
    git -C "$copy" checkout -q -- KelInsInfra
    if ! build || ! run || ! grep -q '\[  PASSED  \] [1-9]' "$log"; then
        echo "✗ $1: ${row//\*/} does not pass as it is: see build/sweep-breaks/build/break-$1.log"
        return 1
    fi
    sed -i "$change" "$library/$source"
    if git -C "$copy" diff --quiet; then
        echo "✗ $1: $source has nothing that \"$change\" changes"
        return 1
    fi
    if ! build; then
        echo "✗ $1: cannot be built: see build/sweep-breaks/build/break-$1.log"
        return 1
    fi
    if ! run && grep -qaF "$says" "$log"; then
        echo "✓ ${row//\*/} fails when $what ($source)"
        grep -aF "$says" "$log" | head -n 1 | cut -c 1-180 | sed 's/^/    /'
    else
        echo "✗ ${row//\*/} does not tell that $what ($source): see build/sweep-breaks/build/break-$1.log"
        return 1
    fi
}

prepare || exit 1
status=0
for name in "${@:-${all[@]}}"; do catches "$name" || status=1; done
git -C "$copy" checkout -q -- KelInsInfra
exit $status
