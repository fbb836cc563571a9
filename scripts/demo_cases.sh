# shellcheck shell=bash
# What users and the world do to installations, and what is wrong with what setup is given. To be sourced by demo.sh.

# --- uninstalling ----------------------------------------------------------------------------------------------------

change_installation() { # what users do to an installation
    echo "my own notes" >"$target/Sprachen – 言語/my notes ü.txt" &&
        mkdir -p "$target/my folder/empty" && echo "mine" >"$target/my folder/mine.txt" &&
        chmod u+w "$target/settings.ini" && printf 'Language=de\r\n' >>"$target/settings.ini" &&
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
    setup 0 uninstall "$target" &&
        says "settings.ini (changed)" "read-only/read-only.txt (changed)" "my folder/mine.txt (added)" "my notes ü.txt (added)" &&
        only_users_files_left
}

uninstall_leaves_nothing() {
    local place=$demo/place
    mkdir -p "$place" && setup 0 install "$small" "$place/new" && [ -f "$place/new/$list_name" ] &&
        setup 0 uninstall "$place/new" && [ -z "$(ls -A "$place")" ] || return 1
    mkdir "$place/there" && setup 0 install "$small" "$place/there" &&
        setup 0 uninstall "$place/there" && [ "$(names_in "$place")" = "there " ] &&
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
    [ "$(grep -vc '^#' "$place/$list_name")" -lt "$(find "$payload" -type f | wc -l)" ] ||
        { fail "it was too fast to be killed"; return 1; }
    setup 0 uninstall "$place" && is_not_installed || return 1
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
    setup 1 uninstall "$place/target" && says "$list_name, was changed." "Nothing was removed." &&
        snapshot "$place" | diff "$demo/before" - && sed -i '$d' "$place/target/$list_name"
}

tampered_lists() {
    local place=$demo/tampered digest path
    mkdir -p "$place/target" && echo "not yours" >"$place/outside.txt" &&
        setup 0 install "$small" "$place/target" || return 1
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
        setup 0 uninstall "$place/target" && says "my.txt (changed)" &&
        [ "$(names_in "$place")" = "outside.txt target target/my.txt " ] && rm -r "$place" && note "16 lists"
}

# --- bad input -------------------------------------------------------------------------------------------------------

refused() { # EXIT_CODE TEXT ARGUMENT...: setup fails with that text, and nothing in the place of the cases changes
    local code=$1 text=$2
    shift 2
    snapshot "$demo/small" >"$demo/before"
    setup "$code" "$@" && says "$text" && snapshot "$demo/small" | diff "$demo/before" -
}

bad_command_lines() {
    local text="This tells what can be done: setup --help"
    refused 2 "$text" && refused 2 "$text" remove && refused 2 "$text" install "$small" &&
        refused 2 "$text" install a b c && refused 2 "$text" uninstall && refused 2 "$text" install "" b &&
        refused 2 "$text" install a b --set port=1 && refused 0 "setup install <payload> <target>" --help
}

bad_payloads() {
    local place=$demo/small new=$demo/small/new
    mkdir -p "$place/bare" && copy_of_small without && rm "$place/without/app.properties" &&
        copy_of_small installation && touch "$place/installation/$list_name" || return 1
    refused 1 "does not exist." install "$place/missing" "$new" &&
        refused 1 "is not a folder." install "$small/settings.ini" "$new" &&
        refused 1 "holds no files." install "$place/bare" "$new" &&
        refused 1 "has no file app.properties." install "$place/without" "$new" &&
        refused 1 "is itself an installation" install "$place/installation" "$new" &&
        refused 1 "stands inside the target" install "$small" "$place" &&
        refused 1 "stands inside the target" install "$small" "$small" &&
        refused 1 "stands inside the payload" install "$small" "$small/Größe/new" &&
        refused 1 "stands inside the payload" install "$small" "$place/missing/../PAYLOAD/x/y"
}

bad_targets() {
    local place=$demo/small
    mkdir -p "$place/filled" && echo "mine" >"$place/filled/mine.txt" || return 1
    refused 1 "is not empty." install "$small" "$place/filled" &&
        refused 1 "is a file." install "$small" "$place/filled/mine.txt" &&
        refused 1 "CreateDirectory" install "$small" "$place/filled/mine.txt/new" &&
        refused 1 "There is no drive or share Q:" install "$small" 'Q:\new' &&
        refused 1 "Nothing is installed in" uninstall "$place/filled" &&
        refused 1 "Nothing is installed in" uninstall "$place/missing" &&
        refused 1 "Orchard Server is not installed in" upgrade "$newer" "$place/filled" || return 1
    setup 0 install "$small" "$place/installed" &&
        refused 1 "Uninstall it first" install "$small" "$place/installed" &&
        refused 1 "Orchard Server 1.0.0 is installed in $(windows "$place/installed")" install "$small" "$place/new" &&
        setup 0 uninstall "$place/installed" && is_not_installed
}

not_enough_space() { # a file with holes: larger than the disk has room for, and yet small
    local free result
    free=$(df --output=avail -B 1 "$demo" | tail -n 1)
    copy_of_small huge && truncate -s $((free + 1000000000)) "$demo/small/huge/huge.bin" || return 1
    # should it ever start copying that, it is stopped long before the disk is full
    (trap '' XFSZ; ulimit -f 100000; setup 1 install "$demo/small/huge" "$demo/small/new")
    result=$?
    rm -r "$demo/small/huge"
    [ "$result" -eq 0 ] && says "Not enough space on Z:" && [ ! -e "$demo/small/new" ]
}

malformed_environment() {
    copy_of_small malformed && copy_of_small cut || return 1
    sed -i 's/^export APP_MODULES$/export APP_MODULE/' "$demo/small/malformed/start.env"
    sed -i '$d' "$demo/small/cut/start.env"
    manifest_of "$demo/small/malformed" && manifest_of "$demo/small/cut" &&
        refused 1 'bad format: missing "export APP_MODULES" after line' install "$demo/small/malformed" "$demo/small/new" &&
        says "Nothing was installed" "Correct it in the payload." &&
        refused 1 'bad format: missing "export APP_LANGUAGES" at the end.' install "$demo/small/cut" "$demo/small/new"
}

broken_xml() { # xmllint finds the same line
    local file=$demo/small/broken/server.xml line
    copy_of_small broken && sed -i '0,/<\/Service>/s//<\/Servant>/' "$file" && manifest_of "$demo/small/broken" || return 1
    line=$(grep -n '</Servant>' "$file" | cut -d : -f 1)
    ! xmllint --noout "$file" 2>"$demo/xmllint" && grep "server.xml:$line: .*Service" "$demo/xmllint" &&
        refused 1 "Unexpected closing tag: Servant instead of Service (line $line)" \
            install "$demo/small/broken" "$demo/small/new" && says "Nothing was installed"
}

names_in_two_cases() { # Windows does not tell them apart: the second must not overwrite the first
    copy_of_small twins && mkdir "$demo/small/twins/sub" && touch "$demo/small/twins/sub/"{twin,TWIN}.txt || return 1
    copy_of_small folders && mkdir "$demo/small/folders/"{twin,TWIN} || return 1
    manifest_of "$demo/small/twins" || return 1
    refused 1 "exists already." install "$demo/small/twins" "$demo/small/new" &&
        says "Nothing was installed" &&
        refused 1 "exists already." install "$demo/small/folders" "$demo/small/new"
}

failure_half_way() { # the system lets no file grow beyond 2 MiB: Copy fails in the middle of the payload
    copy_of_small large && head -c 3000000 /dev/zero >"$demo/small/large/z.bin" && manifest_of "$demo/small/large" || return 1
    snapshot "$demo/small" >"$demo/before"
    (trap '' XFSZ; ulimit -f 2048; setup 1 install "$demo/small/large" "$demo/small/new/new") &&
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
    setup 0 install "$small" "$demo/lines" && says "Copying: 100 %, " &&
        ! grep -qE '\[#' "$output" && setup 0 uninstall "$demo/lines" || return 1
    python3 scripts/demo_terminal.py show scripts/wine.sh build/mingw/bin/setup.exe install "$(windows "$small")" \
        "$(windows "$demo/bar")" >"$output" 2>&1 && says '####] 100 %' && ! grep -q 'Copying: ' "$output" &&
        setup 0 uninstall "$demo/bar"
}

# --- in their order ----------------------------------------------------------------------------------------------------

show_cases() {
    use_prefix cases
    echo "And what goes wrong"
    check "the program holds its manifest and uses the DLL" manifest
    check "an untouched installation goes without a trace" uninstall_leaves_nothing
    check "a killed installation can be uninstalled" uninstall_after_kill
    check "a tampered list of files leads nowhere" tampered_lists
    check "command lines that are not understood" bad_command_lines
    check "payloads: missing, a file, empty, incomplete, in the target" bad_payloads
    check "targets: filled, a file, below a file, installed, no drive" bad_targets
    check "not enough space" not_enough_space
    check "names that differ only in case" names_in_two_cases
    check "a write error half-way is taken back" failure_half_way
    check "Ctrl+C half-way is taken back" interruption
    check "progress: a bar on a terminal, lines elsewhere" progress_display
    check "none of all this is registered any more" is_not_installed
}
