#!/usr/bin/env bash
# Builds the library and its sample installer, lets it install, upgrade and remove a product under Wine (several thousand
# real files, a Windows Installer package with custom actions, registry, configuration files), and proves each step with
# tools that are not ours: diff, cmp, sh, sha256sum, jq, xmllint, reg export, msiinfo, Python. On a fresh Debian 12 it
# installs what is missing first (apt-get, as root or through sudo).
#
#   scripts/demo.sh              everything; leaves nothing but the build
#   scripts/demo.sh --step N     the story up to step N (1 to 18), and no further
#   scripts/demo.sh --only N     step N alone, with the installation that it looks at
#   scripts/demo.sh --keep       leaves an installation, payloads and prefixes in build/demo for a look
#   scripts/demo.sh --help       shows this text
#
# Works in build/ alone: your own Wine prefix is never touched. Exits 0 only when every step passed.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

keep=no
last_step=18
only_step=
cases=yes # what goes wrong, after the story
while [ $# -gt 0 ]; do
    case $1 in
        --keep) keep=yes ;;
        --step | --only)
            [[ ${2:-} =~ ^([1-9]|1[0-8])$ ]] || { echo "$1 needs a number from 1 to 18" >&2; exit 2; }
            cases=no
            if [ "$1" = --step ]; then last_step=$2; else only_step=$2; fi
            shift
            ;;
        -h | --help) sed -n '2,14s/^# \?//p' "${BASH_SOURCE[0]}"; exit 0 ;;
        *) echo "unknown option $1; see --help" >&2; exit 2 ;;
    esac
    shift
done

export LANG=C.UTF-8
unset LC_ALL KELINS_WINEPREFIX KelProcessNotAdmin
demo=$root/build/demo
logs=$root/build/logs
payload=$demo/payload       # thousands of files
newer=$demo/newer/payload   # the next version; its server is what counts
small=$demo/small/payload   # some dozen files, for the many cases
expected=$demo/expected     # what an installation must look like
target="$demo/It's Größe № 1/target" # a name to stumble over; its parent does not exist before
sites=$demo/sites.ini       # a user's own file that the package edits
site="Obst & Gemüse – 果物" # a user's option of the package
mkdir -p "$logs"
# shellcheck source=scripts/demo_lib.sh
source scripts/demo_lib.sh
# shellcheck source=scripts/demo_cases.sh
source scripts/demo_cases.sh

# --- preparation -----------------------------------------------------------------------------------------------------

install_packages() {
    if [ -x scripts/install.sh ]; then scripts/install.sh; fi
}

build() {
    cmake --preset mingw && cmake --build --preset mingw -j "$(nproc)" --target setup orchard_packages orchard_plugin &&
        note "build/mingw/bin/setup.exe"
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
    rm -rf "$demo" && mkdir -p "$demo" && python3 scripts/demo_payload.py gather "$payload" && mkdir "$payload/server" &&
        cp build/mingw/bin/orchard-1.0.0.msi "$payload/server/orchard.msi" && manifest_of "$payload" &&
        mkdir -p "$small/Größe/empty" && cp -p "$payload"/{settings.ini,start.env,app.properties,server.xml} "$small" &&
        cp -rp "$payload"/{templates,read-only,server} "$small" &&
        find "$payload/Sprachen – 言語" -maxdepth 1 -type f -exec cp -p {} "$small/Größe" \; && manifest_of "$small" &&
        mkdir -p "$demo/newer" && cp -rp "$small" "$newer" && cp build/mingw/bin/orchard-2.0.0.msi "$newer/server/orchard.msi" &&
        manifest_of "$newer" && snapshot "$payload" >"$demo/payload.before" &&
        note "$(find "$payload" -type f | wc -l) files, $(du -sh "$payload" | cut -f 1), longest path $(longest_path) characters"
}

longest_path() { # below the payload's own folder
    find "$payload" -printf '%P\n' | python3 -c 'import sys; print(max(len(line) - 1 for line in sys.stdin))'
}

make_users_file() { # read-only, with comments: whoever edits it has to care
    rm -f "$sites" && printf '; sites of this computer\r\n[Sites]\r\n; port of each\r\nOther site=81\r\n[End]\r\nx=1\r\n' >"$sites" &&
        chmod a-w "$sites"
}

# --- 1 to 4: before anything is changed --------------------------------------------------------------------------------

facts_are_logged() {
    local version build pack
    registry 64 'HKLM\Software\Microsoft\Windows NT\CurrentVersion' "$demo/windows.reg"
    value() { sed -n "s/^\"$1\"=\"\\(.*\\)\"\$/\\1/p" "$demo/windows.reg" | head -n 1; }
    version=$(value CurrentVersion) build=$(value CurrentBuildNumber) pack=$(value CSDVersion)
    setup 0 check "$(windows "$small")" "$(windows "$target")" &&
        logs "Windows: $version.$build${pack:+ $pack} Client" "Windows 11: no" "64-bit Windows: yes" "workstation: yes" \
            "computer: $(scripts/wine.sh hostname | tr -d '\r')" "\\$(id -un)" "administrator: yes" \
            "program: $(windows "$root/build/mingw/bin/setup.exe")" "[check] [$(windows "$small")]" || return 1
    KelProcessNotAdmin=1 setup 1 check "$(windows "$small")" "$(windows "$target")" &&
        logs "administrator: no" && says 'Open the command prompt with "Run as administrator"' || return 1
    use_prefix versions && scripts/wine.sh winecfg -v win10 && setup 0 check "$(windows "$small")" "$(windows "$target")" &&
        logs "Windows: 10.0." && [ ! -e "$target" ] && note "Windows $version.$build, and as Windows 10; with and without rights"
}

manifest_is_read_in_order() { # its order is turned round: the files come the other way round
    copy_of_small turned && jq '.files |= (to_entries | reverse | from_entries)' "$small/manifest.json" \
        >"$demo/small/turned/manifest.json" &&
        setup 0 install "$(windows "$demo/small/turned")" "$(windows "$demo/turned")" &&
        diff <(jq -r '.files | keys_unsorted[]' "$demo/small/turned/manifest.json" | grep -v '\.msi$') \
            <(grep -v '^#' "$demo/turned/$list_name" | cut -c 67-) &&
        setup 0 uninstall "$(windows "$demo/turned")" || return 1
    broken_manifest 'head -c 300' && broken_manifest 'sed s/{/[/' && broken_manifest 'sed 1s/^/\xEF\xBB\xBF/' &&
        broken_manifest 'sed 2s/^/@/' && note "$(jq '.files | length' "$small/manifest.json") files; four broken ones refused"
}

broken_manifest() { # COMMAND: damages it; nothing but an error may come out
    # shellcheck disable=SC2086 # the command has words
    $1 "$small/manifest.json" >"$demo/small/turned/manifest.json" || return 1
    echo "after $1:"
    ! python3 -c 'import json, sys; json.load(open(sys.argv[1], encoding="utf-8"))' "$demo/small/turned/manifest.json" 2>/dev/null &&
        setup 1 check "$(windows "$demo/small/turned")" "$(windows "$demo/turned")" && says "manifest.json is not JSON" &&
        [ ! -s "$output.out" ]
}

tampered_payload_is_refused() { # one byte of one file; sha256sum finds the same one
    local file
    copy_of_small tampered && file=$(find "$demo/small/tampered/Größe" -type f -name 'Größe*') && snapshot "$demo/small" >"$demo/before" || return 1
    printf 'X' | dd of="$file" bs=1 seek=3 conv=notrunc status=none
    jq -r '.files | to_entries[] | "\(.value)  \(.key)"' "$demo/small/tampered/manifest.json" >"$demo/sums" &&
        [ "$(cd "$demo/small/tampered" && LC_ALL=C sha256sum --check --quiet "$demo/sums" 2>/dev/null)" = "Größe/$(basename "$file"): FAILED" ] &&
        setup 1 install "$(windows "$demo/small/tampered")" "$(windows "$target")" &&
        says "The file $(windows "$file") was changed" "$(sha256sum <"$file" | cut -d ' ' -f 1)" \
            "$(grep "Größe/$(basename "$file")\$" "$demo/sums" | cut -d ' ' -f 1)" && [ ! -e "$target" ] || return 1
    cp -p "$small/Größe/$(basename "$file")" "$file" && setup 0 check "$(windows "$demo/small/tampered")" "$(windows "$target")" &&
        snapshot "$demo/small" | diff "$demo/before" - && is_not_installed && note "$(basename "$file")"
}

installed_versions_are_found() { # in a prefix of its own, where a newer version is installed; then its entry is broken
    local code packed
    use_prefix versions && scripts/wine.sh msiexec /i "$(windows "$newer/server/orchard.msi")" /qn &&
        setup 1 check "$(windows "$small")" "$(windows "$target")" &&
        says "Orchard Server $(msiinfo export "$newer/server/orchard.msi" Property | tr -d '\r' | sed -n 's/^ProductVersion\t//p') is installed, which is newer than 1.0.0." || return 1
    code=$(jq -r .package.productCode "$newer/manifest.json") && packed=$(python3 scripts/demo_check.py packed "$code")
    registry 64 "HKLM\\Software\\Classes\\Installer\\Products\\$packed" "$demo/export.reg" && [ -s "$demo/export.reg" ] &&
        scripts/wine.sh reg delete "HKLM\\Software\\Classes\\Installer\\Products\\$packed" /f /reg:64 &&
        setup 0 check "$(windows "$small")" "$(windows "$target")" &&
        says "Warning: Windows Installer's database is damaged. The product is unadvertised or uninstalled (1605)." \
            "Unknown key HKEY_CLASSES_ROOT\\Installer\\Products\\$packed" && note "2.0.0; then ...\\Products\\$packed broken"
}

# --- 5 to 7: files and the package ---------------------------------------------------------------------------------------

list_name=installed-files.sha256

install_everything() {
    make_users_file && setup 0 install "$(windows "$payload")" "$(windows "$target")" --set SERVERPORT=8090 \
        --set "SITENAME=$site" --set "SITESFILE=$(windows "$sites")" && cp "$setup_log" "$demo/install.log" && files_are_staged
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
    times() { (cd "$1" && find . -type f ! -path './templates/*' ! -path './server/*' ! -name settings.ini ! -name start.env \
        ! -name app.properties ! -name server.xml ! -name manifest.json ! -name state.json ! -name "$list_name" \
        -printf '%P %T@\n' | sed 's/\.[0-9]*$//' | sort); }
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
    snapshot "$payload" | diff "$demo/payload.before" - && [ -z "$(find "$demo" -path "$demo/prefixes" -prune -o -name '*_Tmp*' -print)" ]
}

package_is_installed() { # Windows Installer's own records, its files, and a failure with the whole exit code
    local packed
    packed=$(python3 scripts/demo_check.py packed "$(jq -r .package.productCode "$payload/manifest.json")")
    grep -qF "SERVERPORT=\"8090\" SITENAME=\"$site\" SITESFILE=\"$(windows "$sites")\" INSTALLDIR=\"$(windows "$target")\\server\"" "$demo/install.log" &&
        grep -qE 'ended with 0 ?.?$' "$demo/install.log" &&
        diff <(msiinfo export "$payload/server/orchard.msi" File | tail -n +4 | cut -f 3 | sed 's/.*|//' | tr -d '\r' | sort) <(ls "$target/server") &&
        registry 64 "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\Products\\$packed\\InstallProperties" "$demo/export.reg" &&
        grep -q '^"DisplayVersion"="1.0.0"$' "$demo/export.reg" || return 1
    use_prefix failing && copy_of_small damaged && head -c 5000 "$small/server/orchard.msi" >"$demo/small/damaged/server/orchard.msi" &&
        cp "$small/manifest.json" "$demo/small/damaged/manifest.json" &&
        jq --arg sum "$(sha256sum <"$demo/small/damaged/server/orchard.msi" | cut -d ' ' -f 1)" '.files["server/orchard.msi"] = $sum' \
            "$small/manifest.json" >"$demo/small/damaged/manifest.json" &&
        setup 1 install "$(windows "$demo/small/damaged")" "$(windows "$demo/damaged")" && says "failed with 16" "Nothing was installed" &&
        [ ! -e "$demo/damaged" ] && is_not_installed && note "a damaged one: $(grep -oE 'failed with [0-9]+' "$output")"
}

package_is_configured() { # by its custom action, from what the user said
    local path
    path=$(windows "$target")\\server
    python3 scripts/demo_check.py server examples/package/files "$target/server" "$path" 8090 "$site" &&
        printf '; sites of this computer\r\n[Sites]\r\n; port of each\r\nOther site=81\r\n%s=8090\r\n[End]\r\nx=1\r\n' "$site" | cmp - "$sites" &&
        [ "$(stat -c %A "$sites")" = -r--r--r-- ] && [ ! -e "$sites.before-orchard" ] &&
        has_values 64 'HKLM\Software\Orchard Server' "Port=dword:00001f9a" "Site=$site" "Directory=$path\\" &&
        has_no_key 32 'HKLM\Software\Orchard Server' && note "server.ini, welcome.html, the user's sites.ini, registry"
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
    same_bytes start.env && values "$payload/start.env" >"$demo/values.payload" && values "$target/start.env" >"$demo/values.target" &&
        diff "$demo/values.payload" "$demo/values.target" || return 1
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
    xmllint --noout "$target/server.xml" &&
        python3 scripts/demo_check.py xml "$payload/server.xml" "$target/server.xml" "$(windows "$target")" &&
        [ "$(xmllint --xpath 'string(/Server/Service/Connector/@home)' "$target/server.xml")" = "$(windows "$target")" ] || return 1
    use_prefix failing && broken_xml && note "$(xmllint --xpath 'count(//*)' "$target/server.xml") elements; a broken one refused with its line"
}

receipt_is_right() {
    jq -e --arg target "$(windows "$target")" --arg site "$site" --arg sites "$(windows "$sites")" \
        --argjson files "$(jq '.files | length' "$payload/manifest.json")" '
        keys_unsorted == ["product", "version", "id", "user", "target", "files", "options"] and .product == "Orchard Server"
        and .version == "1.0.0" and .target == $target and .files == $files and (.user | type) == "string"
        and .options == {SERVERPORT: "8090", SITENAME: $site, SITESFILE: $sites}' "$target/state.json" &&
        python3 -c 'import sys, uuid; u = uuid.UUID(sys.argv[1]); assert u.version == 4 and u.variant == uuid.RFC_4122 and str(u) == sys.argv[1]' \
            "$(jq -r .id "$target/state.json")" && note "id $(jq -r .id "$target/state.json")"
}

templates_are_filled_in() {
    local templates
    mapfile -t templates < <(cd "$expected" && find templates -type f)
    same_bytes "${templates[@]}" && ! grep -rlE '@prefix@|@VERSION@' "$target/templates" && note "${#templates[@]} files"
}

entry_is_right() { # VERSION PRODUCT_CODE: among the installed programs, in both views; shown to the user once
    local common=("DisplayName=Orchard Server" "DisplayVersion=$1" "Publisher=Orchard Company" "InstallLocation=$(windows "$target")"
        "UninstallString=\"$(windows "$root/build/mingw/bin/setup.exe")\" uninstall \"$(windows "$target")\""
        "PackageProductCode=$2" "NoModify=dword:00000001" "NoRepair=dword:00000001")
    has_values 64 "$uninstall_key" "${common[@]}" && has_values 32 "$uninstall_key" "${common[@]}" "SystemComponent=dword:00000001"
}

# --- 15 to 18: later -----------------------------------------------------------------------------------------------------

server_is_upgraded() {
    local old new id
    id=$(jq -r .id "$target/state.json")
    old=$(jq -r .package.productCode "$payload/manifest.json") new=$(jq -r .package.productCode "$newer/manifest.json")
    setup 0 upgrade "$(windows "$newer")" "$(windows "$target")" --set SERVERPORT=8091 && says "Upgraded to 2.0.0." &&
        diff - <(ls "$target/server") <<<$'release notes 2.0.0.txt\nserver.ini\nwelcome.html' &&
        python3 scripts/demo_check.py server examples/package/files "$target/server" "$(windows "$target")\\server" 8091 "$site" &&
        entry_is_right 2.0.0 "$new" && jq -e --arg site "$site" --arg sites "$(windows "$sites")" --arg id "$id" '
            .version == "2.0.0" and .id != $id and .options == {SERVERPORT: "8091", SITENAME: $site, SITESFILE: $sites}' "$target/state.json" &&
        registry 64 'HKLM\Software\Microsoft\Windows\CurrentVersion\Installer\UserData' "$demo/products.reg" &&
        [ "$(grep -c '^"DisplayName"="Orchard Server Core"$' "$demo/products.reg")" -eq 1 ] &&
        grep -qF "\\Products\\$(python3 scripts/demo_check.py packed "$new")\\InstallProperties" "$demo/products.reg" &&
        ! grep -qF "$(python3 scripts/demo_check.py packed "$old")" "$demo/products.reg" || return 1
    # Wine lists the survivor of an upgrade only once it is installed again
    scripts/wine.sh msiexec /i "$(windows "$newer/server/orchard.msi")" REINSTALL=ALL /qn
    setup 1 upgrade "$(windows "$payload")" "$(windows "$target")" && says "Orchard Server 2.0.0 is installed, which is newer than 1.0.0." &&
        (cd "$target" && sha256sum --check --strict --quiet "$list_name") && note "one entry, old files gone, options kept"
}

failing_action_is_rolled_back() { # SERVERPORT is no port: the package's last action refuses what the one before wrote
    use_prefix failing && make_users_file && cp -p "$sites" "$demo/sites.before" &&
        setup 1 install "$(windows "$small")" "$(windows "$demo/rolled back")" --set SERVERPORT=99999 --set "SITESFILE=$(windows "$sites")" &&
        says "failed with 1603" "Nothing was installed" && [ ! -e "$demo/rolled back" ] && is_not_installed &&
        cmp "$demo/sites.before" "$sites" && [ "$(stat -c %A "$sites")" = -r--r--r-- ] && [ ! -e "$sites.before-orchard" ] || return 1
    # the same by hand, without the last action: the file is edited, so there was something to take back
    cp "$small/server/orchard.msi" "$demo/unchecked.msi" && msibuild "$demo/unchecked.msi" -q "DELETE FROM InstallExecuteSequence WHERE Action = 'CheckServer'" &&
        scripts/wine.sh msiexec /i "$(windows "$demo/unchecked.msi")" SERVERPORT=99999 "SITESFILE=$(windows "$sites")" /qn &&
        grep -q '^Orchard=99999' "$sites" && note "1603, and the user's file has its bytes again"
}

nsis_installer_works() {
    local place
    use_prefix nsis && place="$KELINS_WINEPREFIX/drive_c/Program Files/Orchard Server (NSIS)" &&
        makensis -V2 -DPLUGINS="$root/build/mingw/bin/nsis" -DFILES="$root/examples/package/files" -DOUTPUT="$demo/orchard-nsis.exe" examples/nsis/orchard.nsi &&
        x86_64-w64-mingw32-objdump -f "$demo/orchard-nsis.exe" | grep -q 'file format pei-x86-64' &&
        scripts/wine.sh "$demo/orchard-nsis.exe" /S &&
        python3 scripts/demo_check.py nsis examples/package/files "$place" 'C:\Program Files\Orchard Server (NSIS)' 8092 'Gemüse & Obst' || return 1
    diff - <(iconv -f utf-16le -t utf-8 "$place/install.txt" | tr -d '\r') <<END || return 1
port: ok
home: ok
site: ok
page: ok
digest: $(sha256sum <"$place/server.ini" | cut -d ' ' -f 1)
no key: failed: Key is empty
no file: failed: Failed to read C:\\Program Files\\Orchard Server (NSIS)\\missing.txt
END
    scripts/wine.sh "$place/uninstall.exe" /S
    local i
    for ((i = 0; i < 100; ++i)); do [ -e "$place" ] && sleep 0.1; done # it goes on in a copy of itself
    [ ! -e "$place" ] && note "amd64 stub; two failures in the plugin, told and survived"
}

everything_is_removed() {
    local code
    registry 64 "$uninstall_key" "$demo/entry.reg" && code=$(sed -n 's/^"PackageProductCode"="\(.*\)"$/\1/p' "$demo/entry.reg")
    change_installation && uninstall_after_changes && is_not_installed && [ ! -e "$target/server" ] &&
        printf '@echo off\r\nstart /wait msiexec /x %s /qn\r\necho code %%errorlevel%%\r\nexit /b 0\r\n' "$code" >"$demo/again.bat" &&
        scripts/wine.sh cmd /c "$(windows "$demo/again.bat")" | tr -d '\r' | tee "$demo/again" && grep -qx 'code 1605' "$demo/again" &&
        note "the user's own files are left; removing the package again gives 1605"
}

# --- the demo --------------------------------------------------------------------------------------------------------

stop_servers() {
    leave_prefixes story versions failing nsis cases
    [ "$already" = yes ] || (unset KELINS_WINEPREFIX && scripts/wine-prefix.sh stop) >/dev/null 2>&1
}

echo "Orchard Server, installed, upgraded and removed by the sample installer; proved with tools that are not ours"
started=$SECONDS
needed "packages are there" install_packages
needed "library and sample are built" build
already=no
server_runs && already=yes
needed "Wine is ready, in a prefix of its own in build/" scripts/wine-prefix.sh
leave_prefixes story versions failing nsis cases # of a demo that was killed
trap stop_servers EXIT
prepared=$SECONDS
needed "payload gathered from installed packages" gather_payload
step 1 "system facts are logged; setup without an administrator's rights says so" story facts_are_logged
step 2 "manifest.json: read in its order; broken ones are told, and nothing else printed" story manifest_is_read_in_order
step 3 "SHA-256: a file tampered with is refused" story tampered_payload_is_refused
step 4 "installed versions: newer ones are found, a broken entry named with its place" story installed_versions_are_found
step 5 "setup install: thousands of files, long and foreign names, times, read-only" story install_everything
step 6 "msiexec: the package with the user's options, and whole exit codes" story package_is_installed
step 7 "custom action: INI, placeholders, registry from CustomActionData" story package_is_configured
step 8 "settings.ini: replaced, appended, prepended; comments and read-only kept" story settings_are_right
step 9 "start.env: a real shell reads it" story environment_is_right
step 10 "app.properties: an independent reader reads it" story properties_are_right
step 11 "server.xml: edited and printed anew" story xml_is_right
step 12 "state.json: the receipt, with its UUID" story receipt_is_right
step 13 "templates: every placeholder filled in" story templates_are_filled_in
step 14 "registry: the entry among the installed programs, in both views" story entry_is_right 1.0.0 "$(jq -r .package.productCode "$payload/manifest.json")"
step 15 "setup upgrade: the server's new version" story server_is_upgraded
step 16 "a failing custom action is rolled back" failing failing_action_is_rolled_back
step 17 "NSIS: the same library through a plugin" nsis nsis_installer_works
step 18 "setup uninstall: everything goes but what is the user's" story everything_is_removed
[ "$cases" = no ] || show_cases

if [ "$keep" = yes ]; then
    use_prefix story
    if [ ! -e "$target/$list_name" ]; then
        check "setup install, to be looked at" setup 0 install "$(windows "$payload")" "$(windows "$demo/kept")"
    fi
    echo "Left in build/demo: payloads, prefixes, and the installation in $(find "$demo/kept" "$target" -maxdepth 0 2>/dev/null | head -n 1)"
else
    stop_servers
    rm -rf "$demo"
fi

if [ "$failed" -gt 0 ]; then
    echo "FAILED: $failed of $checks."
    exit 1
fi
echo "Everything passed: $checks checks, $((SECONDS - started)) s, of which $((prepared - started)) s for packages, build and Wine."
