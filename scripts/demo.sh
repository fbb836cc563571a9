#!/usr/bin/env bash
# Builds the library and its sample installer, installs several thousand real files with it under Wine, removes them
# again, and proves each result with tools that are not ours: diff, cmp, find, sh, sha256sum, Python. On a fresh Debian 12
# it installs what is missing first (apt-get, as root or through sudo).
#
#   scripts/demo.sh              everything; leaves nothing but the build
#   scripts/demo.sh --keep       installs once more at the end and leaves payload and installation for a look
#   scripts/demo.sh --help       shows this text
#
# Works in build/ alone: your own Wine prefix is never touched. Exits 0 only when every step passed.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

keep=no
case ${1:-} in
    "") ;;
    --keep) keep=yes ;;
    -h | --help) sed -n '2,10s/^# \?//p' "${BASH_SOURCE[0]}"; exit 0 ;;
    *) echo "unknown option $1; see --help" >&2; exit 2 ;;
esac

export LANG=C.UTF-8
unset LC_ALL
demo=$root/build/demo
logs=$root/build/logs
payload=$demo/payload       # thousands of files
small=$demo/small/payload   # some dozen, for the many cases
expected=$demo/expected     # what an installation must look like
target="$demo/It's Größe № 1/target" # a name to stumble over; its parent does not exist before
output=$demo/output         # of the last setup
failed=0
step_number=0

# --- how a step is run and shown -------------------------------------------------------------------------------------

mkdir -p "$logs"
if [ -t 1 ]; then green=$'\e[32m' red=$'\e[31m' plain=$'\e[0m'; else green='' red='' plain=''; fi

step() { # TITLE COMMAND...: one line, with what the command noted in it
    local title=$1 log start=$SECONDS
    shift
    step_number=$((step_number + 1))
    log=$logs/demo-$(printf '%02d' "$step_number").log
    if "$@" >"$log" 2>&1 </dev/null; then
        printf '%s✓%s %s' "$green" "$plain" "$title"
        local note
        note=$(sed -n '$s/^note: //p' "$log")
        [ -n "$note" ] && printf ' (%s)' "$note"
        [ $((SECONDS - start)) -gt 1 ] && printf ' %d s' $((SECONDS - start))
        printf '\n'
        return 0
    fi
    failed=$((failed + 1))
    printf '%s✗ %s%s\n' "$red" "$title" "$plain"
    tail -n 25 "$log" | sed 's/^/    /'
    echo "    all of it: ${log#"$root"/}"
    return 1
}

needed() { # a step without which the others make no sense
    step "$@" || { echo "FAILED: the demo ends here."; exit 1; }
}

note() { # TEXT: shown beside the step's title
    echo "note: $*"
}

fail() { # MESSAGE: why a step failed
    echo "$*"
    return 1
}

# --- the programs ----------------------------------------------------------------------------------------------------

windows() { # PATH: as Wine shows it
    printf 'Z:%s' "${1//\//\\}"
}

setup() { # EXPECTED_EXIT_CODE ARGUMENT...: runs the sample; its output is printed and kept in $output
    local wanted=$1 code
    shift
    scripts/wine.sh build/mingw/bin/setup.exe "$@" >"$output" 2>&1
    code=$?
    cat "$output"
    [ "$code" -eq "$wanted" ] || fail "setup $* ended with $code, not with $wanted"
}

says() { # TEXT...: each stands in the last output
    local text
    for text in "$@"; do
        grep -qF -- "$text" "$output" || { fail "setup did not say: $text"; return 1; }
    done
}

server_runs() { # whether the prefix of this checkout has a server already: then it is not ours to stop
    local prefix=${KELINS_WINEPREFIX:-$root/build/wineprefix}
    [ -d "$prefix" ] && [ -S "/tmp/.wine-$(id -u)/server-$(stat -c %D "$prefix")-$(printf '%x' "$(stat -c %i "$prefix")")/socket" ]
}

# --- preparation -----------------------------------------------------------------------------------------------------

install_packages() {
    if [ -x scripts/install.sh ]; then scripts/install.sh; fi
}

build() {
    cmake --preset mingw && cmake --build --preset mingw -j "$(nproc)" --target setup && note "build/mingw/bin/setup.exe"
}

manifest() { # the program holds the manifest that we wrote: read with binutils
    x86_64-w64-mingw32-objcopy -O binary --only-section=.rsrc build/mingw/bin/setup.exe "$demo/resources" || return 1
    local text
    for text in '<longPathAware' 'level="asInvoker"' '{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}' '{35138b9a-5d96-4fbd-8e2d-a2440225f93a}'; do
        grep -qF -- "$text" "$demo/resources" || { fail "the manifest lacks $text"; return 1; }
    done
    x86_64-w64-mingw32-objdump -p build/mingw/bin/setup.exe >"$demo/imports" && grep -q 'DLL Name: KelInsInfra.dll' "$demo/imports"
}

gather_payload() {
    rm -rf "$demo" && mkdir -p "$demo" && python3 scripts/demo_payload.py "$payload" &&
        mkdir -p "$small/Größe/empty" && cp -p "$payload"/{settings.ini,start.env,app.properties} "$small" &&
        cp -rp "$payload/templates" "$payload/read-only" "$small" &&
        find "$payload/Sprachen – 言語" -maxdepth 1 -type f -exec cp -p {} "$small/Größe" \; &&
        note "$(find "$payload" -type f | wc -l) files, $(du -sh "$payload" | cut -f 1), longest path $(longest_path) characters"
}

longest_path() { # below the payload's own folder
    find "$payload" -printf '%P\n' | python3 -c 'import sys; print(max(len(line) - 1 for line in sys.stdin))'
}

expect_installation() { # PAYLOAD TARGET: into $expected
    rm -rf "$expected" && cp -rp "$1" "$expected" && python3 scripts/demo_check.py expect "$1" "$expected" "$(windows "$2")"
}

# --- proofs about an installation ------------------------------------------------------------------------------------

list_name=installed-files.sha256

same_tree() { # diff sees each byte of each file, each name, each empty folder
    local difference
    difference=$(diff -r "$expected" "$target")
    [ "$difference" = "Only in $target: $list_name" ] || { fail "$difference"; return 1; }
    note "$(find "$expected" -type f | wc -l) files"
}

same_golden_bytes() {
    local file count=0
    for file in settings.ini start.env app.properties templates/*; do
        for each in "$expected"/$file; do
            each=${each#"$expected"/}
            cmp "$expected/$each" "$target/$each" || return 1
            cmp -s "$payload/$each" "$target/$each" && { fail "$each was not configured"; return 1; }
            count=$((count + 1))
        done
    done
    note "$count files"
}

same_times() { # of all files that were copied and not configured
    times() { (cd "$1" && find . -type f ! -path './templates/*' ! -path ./settings.ini ! -path ./start.env \
        ! -path ./app.properties ! -name "$list_name" -printf '%P %T@\n' | sed 's/\.[0-9]*$//' | sort); }
    times "$payload" >"$demo/times.payload"
    times "$target" >"$demo/times.target"
    diff "$demo/times.payload" "$demo/times.target" && note "$(wc -l <"$demo/times.target") files"
}

same_read_only_files() {
    protected() { (cd "$1" && find . -type f ! -perm /222 | sort); }
    diff <(protected "$payload") <(protected "$target") && [ "$(protected "$target" | wc -l)" -eq 2 ]
}

list_is_right() { # sha256sum knows the format of the list, and checks every file in it
    (cd "$target" && sha256sum --check --strict --quiet "$list_name") || return 1
    local listed present
    listed=$(grep -vc '^#' "$target/$list_name")
    present=$(find "$target" -type f ! -name "$list_name" | wc -l)
    [ "$listed" -eq "$present" ] || { fail "$listed files are listed, $present are there"; return 1; }
    note "$listed files"
}

# shellcheck disable=SC2016 # what is in single quotes is for the other shell
environment_works() { # a real shell sources the file; all that is not ours is as it was
    values() { tr -d '\r' <"$1" >"$demo/start.sh" && env -i sh -ec '. "$1"; set' sh "$demo/start.sh" | grep -v '^APP_'; }
    values "$payload/start.env" >"$demo/values.payload" && values "$target/start.env" >"$demo/values.target" || return 1
    diff "$demo/values.payload" "$demo/values.target" || return 1
    [ "$(wc -l <"$demo/values.target")" -gt 5 ] || { fail "the shell knows only few variables"; return 1; }
    diff - <(env -i sh -ec '. "$1"; exec env' sh "$demo/start.sh" | grep '^APP_' | sort) <<END
APP_HOME=Z:$target
APP_LANGUAGES=de,en,fr
APP_MODULES=core,documents
APP_VERSION=1.0
END
}

ini_works() {
    python3 scripts/demo_check.py ini "$payload/settings.ini" "$target/settings.ini" "$(windows "$target")"
}

properties_work() {
    python3 scripts/demo_check.py properties "$payload/app.properties" "$target/app.properties" "$(windows "$target")"
}

nothing_else_changed() { # the payload is as it was gathered, and no temporary file is left anywhere
    snapshot "$payload" | diff "$demo/payload.before" - && [ -z "$(find "$demo" -name '*_Tmp*')" ]
}

names_in() { # DIRECTORY: all names in it, in one line
    find "$1" -mindepth 1 -printf '%P\n' | sort | tr '\n' ' '
}

snapshot() { # DIRECTORY: names, kinds, permissions, times and contents of all in it
    (cd "$1" && find . -printf '%P %y %m %l\n' | sort && find . ! -type d -printf '%P %T@\n' | sort &&
        find . -type f -exec sha256sum {} + | sort)
}

# --- uninstalling ----------------------------------------------------------------------------------------------------

change_installation() { # what users do to an installation
    echo "my own notes" >"$target/Sprachen – 言語/my notes ü.txt" &&
        mkdir -p "$target/my folder/empty" && echo "mine" >"$target/my folder/mine.txt" &&
        printf 'Language=de\r\n' >>"$target/settings.ini" &&
        chmod u+w "$target/read-only/read-only.txt" && echo "changed" >"$target/read-only/read-only.txt" &&
        rm -rf "$target/templates" && rm "$target/start.env" &&
        mkdir -p "$demo/outside" && cp -r "$payload/cmake" "$demo/outside/cmake" && rm -rf "$target/cmake" &&
        ln -s "$demo/outside/cmake" "$target/cmake" && # a folder that was installed, and now leads elsewhere
        snapshot "$demo/outside" >"$demo/outside.before" &&
        cp -p "$target/settings.ini" "$demo/settings.changed"
}

only_users_files_left() {
    diff - <(cd "$target" && find . -mindepth 1 | sort) <<'END' || return 1
./Sprachen – 言語
./Sprachen – 言語/my notes ü.txt
./cmake
./my folder
./my folder/empty
./my folder/mine.txt
./read-only
./read-only/read-only.txt
./settings.ini
END
    cmp "$demo/settings.changed" "$target/settings.ini" &&
        [ "$(cat "$target/Sprachen – 言語/my notes ü.txt" "$target/my folder/mine.txt" "$target/read-only/read-only.txt")" = \
            $'my own notes\nmine\nchanged' ] &&
        snapshot "$demo/outside" | diff "$demo/outside.before" -
}

uninstall_after_changes() {
    setup 0 uninstall "$(windows "$target")" &&
        says "settings.ini (changed)" "read-only/read-only.txt (changed)" "my folder/mine.txt (added)" "my notes ü.txt (added)" &&
        only_users_files_left
}

uninstall_leaves_nothing() {
    local place=$demo/place
    mkdir -p "$place" && setup 0 install "$(windows "$small")" "$(windows "$place/new")" && [ -f "$place/new/$list_name" ] &&
        setup 0 uninstall "$(windows "$place/new")" && [ -z "$(ls -A "$place")" ] || return 1
    mkdir "$place/there" && setup 0 install "$(windows "$small")" "$(windows "$place/there")" &&
        setup 0 uninstall "$(windows "$place/there")" && [ "$(names_in "$place")" = "there " ] &&
        rm -r "$place"
}

uninstall_after_kill() { # an installation that was killed half-way
    local place=$demo/killed process i
    scripts/wine.sh build/mingw/bin/setup.exe install "$(windows "$payload")" "$(windows "$place")" >"$output" 2>&1 &
    process=$!
    for ((i = 0; i < 600; ++i)); do
        [ -f "$place/$list_name" ] && [ "$(grep -vc '^#' "$place/$list_name")" -ge 200 ] && break
        sleep 0.05
    done
    kill -9 "$process"
    wait "$process" 2>/dev/null
    [ "$(grep -vc '^#' "$place/$list_name")" -lt "$(find "$payload" -type f | wc -l)" ] || { fail "it was too fast to be killed"; return 1; }
    setup 0 uninstall "$(windows "$place")" || return 1
    local left
    left=$(find "$place" -type f 2>/dev/null | wc -l)
    [ "$left" -le 1 ] || { fail "$left files are left"; return 1; } # the one that was being copied
    rm -rf "$place"
    note "$left files left of $(grep -oE 'Uninstalling [0-9]+' "$output" | grep -oE '[0-9]+')"
}

tampered_list() { # LINE: the installation must stay as it is, and so must what the line points to
    local place=$demo/tampered
    printf '%s\n' "$1" >>"$place/target/$list_name"
    snapshot "$place" >"$demo/before"
    setup 1 uninstall "$(windows "$place/target")" && says "$list_name, was changed." "Nothing was removed." &&
        snapshot "$place" | diff "$demo/before" - && sed -i '$d' "$place/target/$list_name"
}

tampered_lists() {
    local place=$demo/tampered digest path
    mkdir -p "$place/target" && echo "not yours" >"$place/outside.txt" &&
        setup 0 install "$(windows "$small")" "$(windows "$place/target")" || return 1
    digest=$(sha256sum "$place/outside.txt" | cut -d ' ' -f 1)
    for path in ../outside.txt 'Größe/../../outside.txt' '..\outside.txt' "$place/outside.txt" "$(windows "$place/outside.txt")" \
        "Z:$place/outside.txt" C:/windows/win.ini C:outside.txt '//localhost/share/outside.txt' '\\.\C:' 'settings.ini:stream'; do
        tampered_list "$digest  $path" || return 1
    done
    for path in '# directory ..' "# directory $place" 'outside.txt' '' "${digest^^}  settings.ini"; do
        tampered_list "$path" || return 1
    done
    # a well-formed line may name what is inside, but only unchanged files go
    echo "$digest  my.txt" >>"$place/target/$list_name" && echo "mine" >"$place/target/my.txt" &&
        setup 0 uninstall "$(windows "$place/target")" && says "my.txt (changed)" &&
        [ "$(names_in "$place")" = "outside.txt target target/my.txt " ] && rm -r "$place" && note "16 lists"
}

# --- bad input -------------------------------------------------------------------------------------------------------

refused() { # EXIT_CODE TEXT ARGUMENT...: setup fails with that text, and nothing in the place of the cases changes
    local code=$1 text=$2
    shift 2
    snapshot "$demo/small" >"$demo/before"
    setup "$code" "$@" && says "$text" && snapshot "$demo/small" | diff "$demo/before" -
}

copy_of_small() { # NAME: a payload to be spoiled
    cp -rp "$small" "$demo/small/$1"
}

bad_command_lines() {
    local text="This tells what can be done: setup --help"
    refused 2 "$text" && refused 2 "$text" remove && refused 2 "$text" install "$(windows "$small")" &&
        refused 2 "$text" install a b c && refused 2 "$text" uninstall && refused 2 "$text" install "" b &&
        refused 0 "setup install <payload> <target>" --help
}

bad_payloads() {
    local place=$demo/small new=$demo/small/new
    mkdir -p "$place/bare" && copy_of_small without && rm "$place/without/app.properties" &&
        copy_of_small installation && touch "$place/installation/$list_name" || return 1
    refused 1 "does not exist." install "$(windows "$place/missing")" "$(windows "$new")" &&
        refused 1 "is not a folder." install "$(windows "$small/settings.ini")" "$(windows "$new")" &&
        refused 1 "holds no files." install "$(windows "$place/bare")" "$(windows "$new")" &&
        refused 1 "has no file app.properties." install "$(windows "$place/without")" "$(windows "$new")" &&
        refused 1 "is itself an installation" install "$(windows "$place/installation")" "$(windows "$new")" &&
        refused 1 "stands inside the target" install "$(windows "$small")" "$(windows "$place")" &&
        refused 1 "stands inside the target" install "$(windows "$small")" "$(windows "$small")" &&
        refused 1 "stands inside the payload" install "$(windows "$small")" "$(windows "$small/Größe/new")" &&
        refused 1 "stands inside the payload" install "$(windows "$small")" "$(windows "$place/missing/../PAYLOAD/x/y")"
}

bad_targets() {
    local place=$demo/small
    mkdir -p "$place/filled" "$place/installed" && echo "mine" >"$place/filled/mine.txt" &&
        setup 0 install "$(windows "$small")" "$(windows "$place/installed")" || return 1
    refused 1 "is not empty." install "$(windows "$small")" "$(windows "$place/filled")" &&
        refused 1 "is a file." install "$(windows "$small")" "$(windows "$place/filled/mine.txt")" &&
        refused 1 "CreateDirectory" install "$(windows "$small")" "$(windows "$place/filled/mine.txt/new")" &&
        refused 1 "Uninstall it first" install "$(windows "$small")" "$(windows "$place/installed")" &&
        refused 1 "There is no drive or share Q:" install "$(windows "$small")" 'Q:\new' &&
        refused 1 "Nothing is installed in" uninstall "$(windows "$place/filled")" &&
        refused 1 "Nothing is installed in" uninstall "$(windows "$place/missing")"
}

not_enough_space() { # a file with holes: larger than the disk has room for, and yet small
    local free result
    free=$(df --output=avail -B 1 "$demo" | tail -n 1)
    copy_of_small huge && truncate -s $((free + 1000000000)) "$demo/small/huge/huge.bin" || return 1
    # should it ever start copying that, it is stopped long before the disk is full
    (trap '' XFSZ; ulimit -f 100000; setup 1 install "$(windows "$demo/small/huge")" "$(windows "$demo/small/new")")
    result=$?
    rm -r "$demo/small/huge"
    [ "$result" -eq 0 ] && says "Not enough space on Z:" && [ ! -e "$demo/small/new" ]
}

malformed_environment() {
    copy_of_small malformed && copy_of_small cut || return 1
    sed -i 's/^export APP_MODULES$/export APP_MODULE/' "$demo/small/malformed/start.env"
    sed -i '$d' "$demo/small/cut/start.env"
    refused 1 'bad format: missing "export APP_MODULES" after line' install "$(windows "$demo/small/malformed")" "$(windows "$demo/small/new")" &&
        says "Nothing was installed" "Correct it in the payload." &&
        refused 1 'bad format: missing "export APP_LANGUAGES" at the end.' install "$(windows "$demo/small/cut")" "$(windows "$demo/small/new")"
}

names_in_two_cases() { # Windows does not tell them apart: the second must not overwrite the first
    copy_of_small twins && mkdir "$demo/small/twins/sub" && touch "$demo/small/twins/sub/"{twin,TWIN}.txt || return 1
    copy_of_small folders && mkdir "$demo/small/folders/"{twin,TWIN} || return 1
    refused 1 "exists already." install "$(windows "$demo/small/twins")" "$(windows "$demo/small/new")" &&
        says "Nothing was installed" &&
        refused 1 "exists already." install "$(windows "$demo/small/folders")" "$(windows "$demo/small/new")"
}

failure_half_way() { # the system lets no file grow beyond 2 MiB: Copy fails in the middle of the payload
    copy_of_small large && head -c 3000000 /dev/zero >"$demo/small/large/z.bin" || return 1
    snapshot "$demo/small" >"$demo/before"
    (trap '' XFSZ; ulimit -f 2048; setup 1 install "$(windows "$demo/small/large")" "$(windows "$demo/small/new/new")") &&
        says "z.bin" "Nothing was installed" && snapshot "$demo/small" | diff "$demo/before" -
}

interruption() { # Ctrl+C on a terminal
    snapshot "$demo/small" >"$demo/before"
    python3 scripts/demo_terminal.py interrupt scripts/wine.sh build/mingw/bin/setup.exe install "$(windows "$payload")" \
        "$(windows "$demo/small/new")" >"$output" 2>&1
    local code=$?
    cat "$output"
    [ "$code" -eq 1 ] && snapshot "$demo/small" | diff "$demo/before" -
}

progress_display() { # a bar on a terminal, lines elsewhere
    setup 0 install "$(windows "$small")" "$(windows "$demo/lines")" && says "Copying: 100 %, " &&
        ! grep -qE '\[#' "$output" && setup 0 uninstall "$(windows "$demo/lines")" || return 1
    python3 scripts/demo_terminal.py show scripts/wine.sh build/mingw/bin/setup.exe install "$(windows "$small")" \
        "$(windows "$demo/bar")" >"$output" 2>&1 && says '####] 100 %' && ! grep -q 'Copying: ' "$output" &&
        setup 0 uninstall "$(windows "$demo/bar")"
}

# --- the demo --------------------------------------------------------------------------------------------------------

echo "KelInsInfra: the sample installer, proved with tools that are not ours"
started=$SECONDS
needed "packages are there" install_packages
needed "library and sample are built" build
already=no
server_runs && already=yes
needed "Wine is ready, in a prefix of its own in build/" scripts/wine-prefix.sh
[ "$already" = yes ] || trap 'scripts/wine-prefix.sh stop >/dev/null 2>&1' EXIT
prepared=$SECONDS
needed "payload gathered from installed packages" gather_payload
snapshot "$payload" >"$demo/payload.before"
step "the program holds its manifest and uses the DLL" manifest

echo "Install"
needed "setup install" setup 0 install "$(windows "$payload")" "$(windows "$target")"
step "expected bytes worked out in Python" expect_installation "$payload" "$target"
step "diff -r: every file and folder is as it should be" same_tree
step "cmp: the configured files have their golden bytes" same_golden_bytes
step "find: times of the copied files are those of the payload" same_times
step "find: read-only files stayed read-only" same_read_only_files
step "sha256sum --check: the list of installed files is right" list_is_right
step "sh: start.env gives the right variables" environment_works
step "Python: settings.ini has the right keys, and all others" ini_works
step "Python: app.properties has the right properties, and all others" properties_work
step "the payload is untouched, nothing temporary is left" nothing_else_changed

echo "Uninstall"
step "a user adds, changes and deletes files" change_installation
step "setup uninstall leaves the user's files, and nothing else" uninstall_after_changes
step "an untouched installation goes without a trace" uninstall_leaves_nothing
step "a killed installation can be uninstalled" uninstall_after_kill
step "a tampered list of files leads nowhere" tampered_lists

echo "Bad input changes nothing"
step "command lines" bad_command_lines
step "payloads: missing, a file, empty, incomplete, in the target" bad_payloads
step "targets: filled, a file, below a file, installed, no drive" bad_targets
step "not enough space" not_enough_space
step "malformed start.env" malformed_environment
step "names that differ only in case" names_in_two_cases
step "a write error half-way is taken back" failure_half_way
step "Ctrl+C half-way is taken back" interruption
step "progress: a bar on a terminal, lines elsewhere" progress_display

if [ "$keep" = yes ]; then
    rm -rf "$demo/kept"
    needed "setup install, to be looked at" setup 0 install "$(windows "$payload")" "$(windows "$demo/kept")"
    echo "The payload is in build/demo/payload, the installation in build/demo/kept."
else
    rm -rf "$demo"
fi

if [ "$failed" -gt 0 ]; then
    echo "FAILED: $failed of $step_number steps."
    exit 1
fi
echo "Everything passed: $step_number steps, $((SECONDS - started)) s, of which $((prepared - started)) s for packages, build and Wine."
