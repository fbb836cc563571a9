# shellcheck shell=bash
# The eighteen steps of the story: each does something with the sample, and proves what came of it. To be sourced by demo.sh.

# --- 1 to 4: before anything is changed --------------------------------------------------------------------------------

facts_are_logged() { # as the registry and the system have them; without rights; and as another Windows
    local version build pack
    registry 64 'HKLM\Software\Microsoft\Windows NT\CurrentVersion' "$demo/windows.reg"
    value() { sed -n "s/^\"$1\"=\"\\(.*\\)\"\$/\\1/p" "$demo/windows.reg" | head -n 1; }
    version=$(value CurrentVersion) build=$(value CurrentBuildNumber) pack=$(value CSDVersion)
    setup 0 check "$small" "$target" &&
        logs "Windows: $version.$build${pack:+ $pack} Client" "Windows 11: no" "64-bit Windows: yes" "workstation: yes" \
            "computer: $(scripts/wine.sh hostname | tr -d '\r')" "\\$(id -un)" "administrator: yes" \
            "program: $(windows "$root/build/mingw/bin/setup.exe")" "[check] [$(windows "$small")]" || return 1
    KelProcessNotAdmin=1 setup 1 check "$small" "$target" &&
        logs "administrator: no" && says 'Open the command prompt with "Run as administrator"' || return 1
    use_prefix versions && scripts/wine.sh winecfg -v win10 && setup 0 check "$small" "$target" && logs "Windows: 10.0." &&
        [ ! -e "$target" ] && note "Windows $version.$build, and as Windows 10; with and without rights"
}

manifest_is_read_in_order() { # its order is turned round: the files come the other way round
    local turned=$demo/small/turned
    copy_of_small turned &&
        jq '.files |= (to_entries | reverse | from_entries)' "$small/manifest.json" >"$turned/manifest.json" &&
        setup 0 install "$turned" "$demo/turned" &&
        diff <(jq -r '.files | keys_unsorted[]' "$turned/manifest.json" | grep -v '\.msi$') \
            <(grep -v '^#' "$demo/turned/$list_name" | cut -c 67-) &&
        setup 0 uninstall "$demo/turned" || return 1
    broken_manifest 'head -c 300' && broken_manifest 'sed s/{/[/' && broken_manifest 'sed 1s/^/\xEF\xBB\xBF/' &&
        broken_manifest 'sed 2s/^/@/' && note "$(jq '.files | length' "$small/manifest.json") files; four broken ones refused"
}

broken_manifest() { # COMMAND: damages it; nothing but an error may come out
    local file=$demo/small/turned/manifest.json
    # shellcheck disable=SC2086 # the command has words
    $1 "$small/manifest.json" >"$file" || return 1
    echo "after $1:"
    ! python3 -c 'import json, sys; json.load(open(sys.argv[1], encoding="utf-8"))' "$file" 2>/dev/null &&
        setup 1 check "$demo/small/turned" "$demo/turned" && says "manifest.json is not JSON" && [ ! -s "$output.out" ]
}

tampered_payload_is_refused() { # one byte of one file; sha256sum finds the same one
    local place=$demo/small/tampered file
    copy_of_small tampered && file=$(find "$place/Größe" -type f -name 'Größe*' -printf 'Größe/%f') &&
        snapshot "$demo/small" >"$demo/before" || return 1
    printf 'X' | dd of="$place/$file" bs=1 seek=3 conv=notrunc status=none
    jq -r '.files | to_entries[] | "\(.value)  \(.key)"' "$place/manifest.json" >"$demo/sums"
    (cd "$place" && LC_ALL=C sha256sum --check --quiet "$demo/sums") >"$demo/failed" 2>/dev/null
    diff - "$demo/failed" <<<"$file: FAILED" &&
        setup 1 install "$place" "$target" && [ ! -e "$target" ] &&
        says "The file $(windows "$place/$file") was changed" "$(sha256sum <"$place/$file" | cut -d ' ' -f 1)" \
            "$(sha256sum <"$small/$file" | cut -d ' ' -f 1)" || return 1
    cp -p "$small/$file" "$place/$file" && setup 0 check "$place" "$target" && snapshot "$demo/small" | diff "$demo/before" - &&
        is_not_installed && note "$file"
}

installed_versions_are_found() { # in a prefix of its own, where a newer version is installed; then its entry is broken
    local version key
    version=$(msiinfo export "$newer/server/orchard.msi" Property | tr -d '\r' | sed -n 's/^ProductVersion\t//p')
    use_prefix versions && scripts/wine.sh msiexec /i "$(windows "$newer/server/orchard.msi")" /qn &&
        setup 1 check "$small" "$target" && says "Orchard Server $version is installed, which is newer than 1.0.0." || return 1
    key="Installer\\Products\\$(packed_code "$newer")"
    registry 64 "HKLM\\Software\\Classes\\$key" "$demo/export.reg" && [ -s "$demo/export.reg" ] &&
        scripts/wine.sh reg delete "HKLM\\Software\\Classes\\$key" /f /reg:64 && setup 0 check "$small" "$target" &&
        says "Warning: Windows Installer's database is damaged. The product is unadvertised or uninstalled (1605)." \
            "Unknown key HKEY_CLASSES_ROOT\\$key" && note "$version; then $key broken"
}

# --- 5 to 7: files and the package ---------------------------------------------------------------------------------------

list_name=installed-files.sha256

install_everything() {
    make_users_file && setup 0 install "$payload" "$target" --set SERVERPORT=8090 --set "SITENAME=$site" \
        --set "SITESFILE=$(windows "$sites")" && cp "$setup_log" "$demo/install.log" && files_are_staged
}

files_are_staged() {
    rm -rf "$expected" && cp -rp "$payload" "$expected" && rm -r "$expected/server" "$expected/manifest.json" &&
        python3 scripts/demo_check.py expect "$payload" "$expected" "$(windows "$target")" &&
        same_tree && same_times && same_read_only_files && list_is_right && nothing_else_changed &&
        note "$(find "$expected" -type f | wc -l) files as diff, sha256sum and find want them"
}

same_tree() { # each byte of each file, each name, each empty folder
    diff -r --exclude=server.xml "$expected" "$target" >"$demo/difference" # that one: see its own step
    diff - "$demo/difference" <<END
Only in $target: $list_name
Only in $target: server
Only in $target: state.json
END
}

same_times() { # of all files that were copied and not configured
    times() {
        (cd "$1" && find . -type f ! -path './templates/*' ! -path './server/*' ! -name settings.ini ! -name start.env \
            ! -name app.properties ! -name server.xml ! -name manifest.json ! -name state.json ! -name "$list_name" \
            -printf '%P %T@\n' | sed 's/\.[0-9]*$//' | sort)
    }
    diff <(times "$payload") <(times "$target") && [ "$(times "$target" | wc -l)" -gt 3000 ]
}

same_read_only_files() {
    protected() { (cd "$1" && find . -type f ! -perm /222 | sort); }
    diff <(protected "$payload") <(protected "$target") && [ "$(protected "$target" | wc -l)" -eq 3 ]
}

list_is_right() { # sha256sum knows the format of the list, and checks every file in it
    (cd "$target" && sha256sum --check --strict --quiet "$list_name") || return 1
    local listed present
    listed=$(grep -vc '^#' "$target/$list_name")
    present=$(find "$target" -type f ! -name "$list_name" ! -name state.json ! -path "$target/server/*" | wc -l)
    [ "$listed" -eq "$present" ] || fail "$listed files are listed, $present are there"
}

nothing_else_changed() { # the payload is as it was gathered, and no temporary file is left anywhere
    snapshot "$payload" | diff "$demo/payload.before" - || return 1
    find "$demo" -path "$demo/prefixes" -prune -o -name '*_Tmp*' -print | diff /dev/null -
}

package_is_installed() { # as its files and Windows Installer's own records tell; and a damaged one with its whole exit code
    local options
    options="SERVERPORT=\"8090\" SITENAME=\"$site\" SITESFILE=\"$(windows "$sites")\" INSTALLDIR=\"$(windows "$target")\\server\""
    grep -qF "$options" "$demo/install.log" && grep -qE 'ended with 0 ' "$demo/install.log" &&
        diff <(files_in "$payload/server/orchard.msi") <(ls "$target/server") &&
        registry 64 "$products_key\\$(packed_code "$payload")\\InstallProperties" "$demo/export.reg" &&
        grep -q '^"DisplayVersion"="1.0.0"$' "$demo/export.reg" && use_prefix failing && damaged_package &&
        note "a damaged one: $(grep -oE 'failed with [0-9]+' "$output")"
}

files_in() { # PACKAGE
    msiinfo export "$1" File | tail -n +4 | cut -f 3 | sed 's/.*|//' | sort
}

damaged_package() {
    copy_of_small damaged && head -c 5000 "$small/server/orchard.msi" >"$demo/small/damaged/server/orchard.msi" &&
        jq --arg sum "$(sha256sum <"$demo/small/damaged/server/orchard.msi" | cut -d ' ' -f 1)" \
            '.files["server/orchard.msi"] = $sum' "$small/manifest.json" >"$demo/small/damaged/manifest.json" &&
        setup 1 install "$demo/small/damaged" "$demo/damaged" && says "failed with 16" "Nothing was installed" &&
        [ ! -e "$demo/damaged" ] && is_not_installed
}

package_is_configured() { # by its custom action, from what the user said
    local path
    path=$(windows "$target")\\server
    server_is_configured 8090 && users_file "$site=8090\r\n" | cmp - "$sites" &&
        [ "$(stat -c %A "$sites")" = -r--r--r-- ] && [ ! -e "$sites.before-orchard" ] &&
        has_values 64 'HKLM\Software\Orchard Server' "Port=dword:00001f9a" "Site=$site" "Directory=$path\\" &&
        has_no_key 32 'HKLM\Software\Orchard Server' && note "server.ini, welcome.html, the user's sites.ini, registry"
}

server_is_configured() { # PORT: server.ini and welcome.html, byte for byte
    python3 scripts/demo_check.py server examples/package/files "$target/server" "$(windows "$target")\\server" "$1" "$site"
}

# --- 8 to 14: what setup configured --------------------------------------------------------------------------------------

same_bytes() { # NAME...: those that were worked out in Python, not those of the payload
    local name
    for name in "$@"; do
        cmp "$expected/$name" "$target/$name" || return 1
        ! cmp -s "$payload/$name" "$target/$name" || { fail "$name was not configured"; return 1; }
    done
}

settings_are_right() {
    same_bytes settings.ini && [ "$(stat -c %A "$target/settings.ini")" = -r--r--r-- ] &&
        python3 scripts/demo_check.py ini "$payload/settings.ini" "$target/settings.ini" "$(windows "$target")"
}

# shellcheck disable=SC2016 # what is in single quotes is for the other shell
environment_is_right() { # a real shell sources the file; all that is not ours is as it was
    values() { tr -d '\r' <"$1" >"$demo/start.sh" && env -i sh -ec '. "$1"; set' sh "$demo/start.sh" | grep -v '^APP_'; }
    same_bytes start.env && values "$payload/start.env" >"$demo/values.payload" &&
        values "$target/start.env" >"$demo/values.target" && diff "$demo/values.payload" "$demo/values.target" || return 1
    [ "$(wc -l <"$demo/values.target")" -gt 5 ] || { fail "the shell knows only few variables"; return 1; }
    diff - <(env -i sh -ec '. "$1"; exec env' sh "$demo/start.sh" | grep '^APP_' | sort) <<END || return 1
APP_HOME=Z:$target
APP_LANGUAGES=de,en,fr
APP_MODULES=core,documents
APP_VERSION=1.0
END
    use_prefix failing && malformed_environment && note "a malformed pair and a cut one refused"
}

properties_are_right() {
    same_bytes app.properties &&
        python3 scripts/demo_check.py properties "$payload/app.properties" "$target/app.properties" "$(windows "$target")"
}

xml_is_right() {
    local file=$target/server.xml
    xmllint --noout "$file" && python3 scripts/demo_check.py xml "$payload/server.xml" "$file" "$(windows "$target")" &&
        [ "$(xmllint --xpath 'string(/Server/Service/Connector/@home)' "$file")" = "$(windows "$target")" ] || return 1
    use_prefix failing && broken_xml &&
        note "$(xmllint --xpath 'count(//*)' "$file") elements; a broken one refused with its line"
}

receipt_is_right() {
    local id
    id=$(jq -r .id "$target/state.json")
    jq -e --arg target "$(windows "$target")" --arg site "$site" --arg sites "$(windows "$sites")" \
        --argjson files "$(jq '.files | length' "$payload/manifest.json")" '
        keys_unsorted == ["product", "version", "id", "user", "target", "files", "options"]
        and .product == "Orchard Server" and .version == "1.0.0" and .target == $target and .files == $files
        and (.user | type) == "string"
        and .options == {SERVERPORT: "8090", SITENAME: $site, SITESFILE: $sites}' "$target/state.json" &&
        python3 scripts/demo_check.py uuid "$id" && note "id $id"
}

templates_are_filled_in() {
    local templates
    mapfile -t templates < <(cd "$expected" && find templates -type f)
    same_bytes "${templates[@]}" && ! grep -rlE '@prefix@|@VERSION@' "$target/templates" && note "${#templates[@]} files"
}

entry_is_right() { # VERSION PAYLOAD: among the installed programs, in both views; shown to the user once
    local place program common
    place=$(windows "$target")
    program=$(windows "$root/build/mingw/bin/setup.exe")
    common=("DisplayName=Orchard Server" "DisplayVersion=$1" "Publisher=Orchard Company" "InstallLocation=$place"
        "UninstallString=\"$program\" uninstall \"$place\"" "PackageProductCode=$(product_code "$2")"
        "NoModify=dword:00000001" "NoRepair=dword:00000001")
    has_values 64 "$uninstall_key" "${common[@]}" &&
        has_values 32 "$uninstall_key" "${common[@]}" "SystemComponent=dword:00000001"
}

# --- 15 to 18: later -----------------------------------------------------------------------------------------------------

server_is_upgraded() { # one option is given, the others stay
    local id
    id=$(jq -r .id "$target/state.json")
    setup 0 upgrade "$newer" "$target" --set SERVERPORT=8091 && says "Upgraded to 2.0.0." &&
        diff <(files_in "$newer/server/orchard.msi") <(ls "$target/server") && ls "$target/server" | grep -q 2.0.0 &&
        server_is_configured 8091 && entry_is_right 2.0.0 "$newer" && only_one_package &&
        jq -e --arg site "$site" --arg sites "$(windows "$sites")" --arg id "$id" '.version == "2.0.0" and .id != $id
            and .options == {SERVERPORT: "8091", SITENAME: $site, SITESFILE: $sites}' "$target/state.json" || return 1
    # Wine lists the survivor of an upgrade only once it is installed again
    scripts/wine.sh msiexec /i "$(windows "$newer/server/orchard.msi")" REINSTALL=ALL /qn
    setup 1 upgrade "$payload" "$target" && says "Orchard Server 2.0.0 is installed, which is newer than 1.0.0." &&
        logs "installed version: 2.0.0" && (cd "$target" && sha256sum --check --strict --quiet "$list_name") && note "one entry, old files gone, options kept"
}

only_one_package() { # in Windows Installer's database: the newer one
    registry 64 "$products_key" "$demo/products.reg" &&
        [ "$(grep -c '^"DisplayName"="Orchard Server Core"$' "$demo/products.reg")" -eq 1 ] &&
        grep -qF "\\Products\\$(packed_code "$newer")\\InstallProperties" "$demo/products.reg" &&
        ! grep -qF "$(packed_code "$payload")" "$demo/products.reg"
}

failing_action_is_rolled_back() { # no such port: the package's last action refuses what the one before it wrote
    local options=(--set SERVERPORT=99999 --set "SITESFILE=$(windows "$sites")")
    use_prefix failing && make_users_file && cp -p "$sites" "$demo/sites.before" &&
        setup 1 install "$small" "$demo/rolled back" "${options[@]}" && says "failed with 1603" "Nothing was installed" &&
        grep -aq 'Orchard Server: SERVERPORT is 99999; it must be a number' "$setup_log.msi.txt" &&
        [ ! -e "$demo/rolled back" ] && is_not_installed && cmp "$demo/sites.before" "$sites" &&
        [ "$(stat -c %A "$sites")" = -r--r--r-- ] && [ ! -e "$sites.before-orchard" ] || return 1
    # without that last action the file is edited: so there was something to take back
    cp "$small/server/orchard.msi" "$demo/unchecked.msi" &&
        msibuild "$demo/unchecked.msi" -q "DELETE FROM InstallExecuteSequence WHERE Action = 'CheckServer'" &&
        scripts/wine.sh msiexec /i "$(windows "$demo/unchecked.msi")" SERVERPORT=99999 "SITESFILE=$(windows "$sites")" /qn &&
        grep -q '^Orchard=99999' "$sites" && note "1603, and the user's file has its bytes again"
}

nsis_installer_works() {
    local name='C:\Program Files\Orchard Server (NSIS)' place i
    use_prefix nsis && place="$KELINS_WINEPREFIX/drive_c/Program Files/Orchard Server (NSIS)" &&
        makensis -V2 -DPLUGINS="$root/build/mingw/bin/nsis" -DFILES="$root/examples/package/files" \
            -DOUTPUT="$demo/orchard-nsis.exe" examples/nsis/orchard.nsi &&
        x86_64-w64-mingw32-objdump -f "$demo/orchard-nsis.exe" | grep -q 'file format pei-x86-64' &&
        scripts/wine.sh "$demo/orchard-nsis.exe" /S &&
        python3 scripts/demo_check.py nsis examples/package/files "$place" "$name" 8092 'Gemüse & Obst' || return 1
    diff - <(iconv -f utf-16le -t utf-8 "$place/install.txt" | tr -d '\r') <<END || return 1
port: ok
home: ok
site: ok
page: ok
digest: $(sha256sum <"$place/server.ini" | cut -d ' ' -f 1)
no key: failed: Key is empty
no file: failed: Failed to read $name\\missing.txt
END
    scripts/wine.sh "$place/uninstall.exe" /S
    for ((i = 0; i < 100; ++i)); do [ -e "$place" ] && sleep 0.1; done # it goes on in a copy of itself
    [ ! -e "$place" ] && note "amd64 stub; two failures in the plugin, told and survived"
}

everything_is_removed() { # but what is the user's
    local code
    registry 64 "$uninstall_key" "$demo/entry.reg" &&
        code=$(sed -n 's/^"PackageProductCode"="\(.*\)"$/\1/p' "$demo/entry.reg") &&
        change_installation && uninstall_after_changes && is_not_installed && [ ! -e "$target/server" ] || return 1
    printf '@echo off\r\nstart /wait msiexec /x %s /qn\r\necho code %%errorlevel%%\r\nexit /b 0\r\n' "$code" >"$demo/again.bat"
    scripts/wine.sh cmd /c "$(windows "$demo/again.bat")" | tr -d '\r' >"$demo/again"
    diff - "$demo/again" <<<"code 1605" && note "the user's own files are left; removing the package again gives 1605"
}
