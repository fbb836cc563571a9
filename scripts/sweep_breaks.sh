#!/usr/bin/env bash
# Shows that the sweeps can fail: plants a defect in the library, in a copy of the last commit, runs the row of the sweep
# that relies on the place, and sees that row fail. Each row is first seen to pass. Takes about a quarter of an hour.
#
#   scripts/sweep_breaks.sh                      all defects
#   scripts/sweep_breaks.sh fault-read kill-target   these
#
# Works in build/sweep-breaks, which stays for the next time. Exits 0 only when each row failed as it should.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
copy=$root/build/sweep-breaks
library=$copy/KelInsInfra
all=(fault-read fault-handle fault-code fault-status allocation-part allocation-lost allocation-end kill-target kill-early)

describe() { # NAME: source, the sed command that changes it, what that does, and the row of which sweep it must fail
    case $1 in
        fault-read) source=io/RewriteFile.cpp what='a failed read passes for the end of the file' row='*FaultSweep.*/WriteKey'
            change='s/    if (file.bad())$/    if (file.bad() \&\& content.empty())/' ;;
        fault-handle) source=io/FileDeletion.cpp what='a directory that cannot be asked about stays open' row='*FaultSweep.*/DeleteTree'
            change='s/^        pin.Reset();/        static_cast<void>(pin.Release());/' ;;
        fault-code) source=io/FileDeletion.cpp what="a text has another code than the system's" row='*FaultSweep.*/DeleteFile'
            change='s/KelInsException("DeleteFile - " + path, error)/KelInsException("DeleteFile - " + path, error - error)/' ;;
        fault-status) source=registry/RegistryValues.cpp what='a value that was not stored is passed over' row='*FaultSweep.*/SetValue*'
            change='/std::int32_t value)$/,/^}/s/if (status != ERROR_SUCCESS)/if (status == ERROR_INVALID_HANDLE)/' ;;
        allocation-part) source=io/StreamReading.cpp what='a part of a text passes for the whole' row='*AllocationSweep.*/InputStreamToString'
            change='s/^        throw; .*$/        text.clear();/' ;;
        allocation-lost) source=hash/SHA256.cpp what='a block has no owner' row='*AllocationSweep.*/Sha256OfStreamThatThrows'
            change='s/const std::unique_ptr<char\[\]> piece = std::make_unique<char\[\]>(kPieceSize);/char* const block = new char[kPieceSize]();\n    const std::span<char> piece(block, kPieceSize);/
                s/piece.get()/piece.data()/g; s/#include <memory>/#include <span>/
                s/^    } while (stream.gcount() > 0 .*/&\n    delete[] block;/' ;;
        allocation-end) source=foundation/StringEditing.cpp what='a missing block ends the process' row='*AllocationSweep.*/Split'
            change='s/^std::vector<std::string> SplitAt(.*)$/& noexcept/' ;;
        kill-target) source=io/RewriteFile.cpp what='the file is written in its place' row='*KillSweep.*/WriteKey*'
            change='s/^    WriteWhole(temporaryName, content, frame);$//; s/^    Copy(temporaryName, name);$/    WriteWhole(name, content, frame);/' ;;
        kill-early) source=io/RewriteFile.cpp what='the file is emptied before the temporary one is whole' row='*KillSweep.*/ReplaceInLines*'
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
    "$root/scripts/wine-prefix.sh" && cd "$copy" && cmake --preset mingw >build-log.txt 2>&1
}

run() { # PROGRAM ROW: builds and runs it; what is printed goes to build-log.txt and run-log.txt
    (cd "$copy" && cmake --build --preset mingw -j "$(nproc)" --target "$1" >build-log.txt 2>&1) || return 3
    (cd "$copy/build/mingw/results" && KELINS_WINEPREFIX=${KELINS_WINEPREFIX:-$root/build/wineprefix} timeout 600 \
        "$root/scripts/wine.sh" "../bin/$1.exe" "--gtest_filter=$2" </dev/null >"$copy/run-log.txt" 2>&1)
}

catches() { # NAME: whether the row passes without the defect, and fails with it
    local source change what row program
    describe "$1" || return 1
    git -C "$copy" checkout -q -- KelInsInfra
    if ! run "$program" "$row" || ! grep -q '\[  PASSED  \] [1-9]' "$copy/run-log.txt"; then
        echo "✗ $1: $row does not pass as it is; see build/sweep-breaks/*-log.txt"
        return 1
    fi
    sed -i "$change" "$library/$source"
    if git -C "$copy" diff --quiet; then
        echo "✗ $1: nothing in $source is what the defect changes"
        return 1
    fi
    run "$program" "$row"
    case $? in
        0) echo "✗ $1: $row does not fail when $what ($source)"; return 1 ;;
        3) echo "✗ $1: the library cannot be built with the defect; see build/sweep-breaks/build-log.txt"; return 1 ;;
        124) echo "✗ $1: $row came to no end"; return 1 ;;
    esac
    echo "✓ ${row//\*/} fails when $what ($source)"
    grep -aE 'killed at call|call [0-9]+.*:|after [0-9]+ allocations|terminate called' "$copy/run-log.txt" | head -n 1 | cut -c 1-180 | sed 's/^ */    /'
}

prepare || exit 1
status=0
for name in "${@:-${all[@]}}"; do catches "$name" || status=1; done
git -C "$copy" checkout -q -- KelInsInfra
exit $status
