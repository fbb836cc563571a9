#!/usr/bin/env bash
# Shows that each step of the demo can fail: breaks the library at one place, in a copy of the last commit, runs the step
# of the demo that relies on it, and sees that step fail. Takes about half an hour.
#
#   scripts/demo_breaks.sh          all steps
#   scripts/demo_breaks.sh 4 11     these
#
# Works in build/demo-breaks, which stays for the next time. Exits 0 only when each step failed as it should.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
copy=$root/build/demo-breaks
library=$copy/KelInsInfra

describe() { # STEP: what is broken for it: a source, a sed command that changes it, and what that does
    case $1 in
        1) source=system/SystemFacts.cpp what='workstations are called servers'
            change='s/" Client" : " Server"/" Server" : " Client"/' ;;
        2) source=json/DriverParse.cpp what='syntax errors are accepted'
            change='s/parse() != 0)/parse() > 1)/' ;;
        3) source=hash/SHA256.cpp what='digests are padded wrongly'
            change='s/last\[waiting_\] = 0x80;/last[waiting_] = 0x81;/' ;;
        4) source=registry/PackedGuids.cpp what='GUIDs are not packed'
            change='s/return ReverseEachGroup(enclosed.substr(1, kDigits));/return enclosed.substr(1, kDigits);/' ;;
        5) source=io/FileChanges.cpp what='access and modification times are mixed up'
            change='s/times = {accessTime, modificationTime}/times = {modificationTime, 0 * accessTime}/' ;;
        6) source=system/ProcessBuilder.cpp what='exit codes lose their higher bytes'
            change='s/static_cast<std::int32_t>(exitCode)/static_cast<std::int32_t>(exitCode \& 0xFF)/' ;;
        7) source=registry/RegistryValues.cpp what='numbers are stored as bytes'
            change='s/0, REG_DWORD,/0, REG_BINARY,/' ;;
        8) source=config/IniLines.cpp what='Prepend appends'
            change='s/Join(assignment.value, oldValue, /Join(oldValue, assignment.value, /' ;;
        9) source=config/IniLines.cpp what='a missing export line is accepted'
            change='s/^\[\[noreturn\]\] void FailMissing/void FailMissing/; s/^    throw std::runtime_error(std::string(assignment.fileName) + ": bad/    if (place.empty()) &/' ;;
        10) source=config/JavaProperties.cpp what='colons are not escaped'
            change="/^    case ':':\$/d" ;;
        11) source=xml/Parser.cpp what='lines are counted from 0'
            change='s/throw Exception(message, 1 + /throw Exception(message, /' ;;
        12) source=hash/UuidText.cpp what='UUIDs say another version'
            change='s/+ 0x4000/+ 0x5000/' ;;
        13) source=io/LineReplacement.cpp what='only the first place in a file is replaced'
            change='s/if (mayBeInLine && /if (count == 0 \&\& mayBeInLine \&\& /' ;;
        14) source=registry/RegistryKeys.cpp what='one view stands for both'
            change='s/return KEY_WOW64_32KEY;/return KEY_WOW64_64KEY;/' ;;
        15) source=json/internal/Escapes.h what='escaped backslashes stay' # the only case of two characters
            change="/^    case '..':\$/d" ;;
        16) source=io/FileChanges.cpp what='SetReadOnly tells the opposite of what it did'
            change='s/return isReadOnly != readOnly && ::Set/return isReadOnly != readOnly \&\& !::Set/' ;;
        17) source=config/IniFile.cpp what='an empty key is accepted'
            change='s/if (key.empty())/if (key == "?")/' ;;
        18) source=io/FindFile.cpp what='no directory counts as empty'
            change='s/return FindFile(directory, Type::Directory | Type::File).End();/return directory.empty();/' ;;
    esac
}

prepare() { # the copy, at the last commit; what was built there stays
    if [ ! -d "$copy/.git" ]; then
        git clone -q --shared "$root" "$copy" || return 1
    fi
    git -C "$copy" fetch -q origin HEAD && git -C "$copy" reset -q --hard FETCH_HEAD || return 1
    if [ ! -d "$copy/build/wineprefix" ] && [ -d "$root/build/wineprefix" ]; then
        mkdir -p "$copy/build" && cp -a --reflink=auto "$root/build/wineprefix" "$copy/build/wineprefix"
    fi
}

fails() { # STEP: whether the demo fails there
    local step=$1 source change what
    describe "$step"
    git -C "$copy" checkout -q -- KelInsInfra && sed -i "$change" "$library/$source"
    if git -C "$copy" diff --quiet; then
        echo "✗ $step: $source has nothing that \"$change\" changes"
        return 1
    fi
    (cd "$copy" && scripts/demo.sh --only "$step") >"$copy/build/break-$step.log" 2>&1
    if grep -qE "^✗ *$step\. " "$copy/build/break-$step.log"; then
        echo "✓ $step fails when $what ($source)"
        grep -A 30 -E "^✗ *$step\. " "$copy/build/break-$step.log" | grep '^    ' | grep -v 'all of it:' | tail -n 3
    else
        echo "✗ $step does not fail when $what ($source): see build/demo-breaks/build/break-$step.log"
        return 1
    fi
}

prepare || exit 1
status=0
for step in "${@:-1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18}"; do
    for each in $step; do fails "$each" || status=1; done
done
git -C "$copy" checkout -q -- KelInsInfra
exit $status
