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
# shellcheck source=scripts/demo_story.sh
source scripts/demo_story.sh
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
    for text in '<longPathAware' 'level="asInvoker"' \
        '{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}' '{35138b9a-5d96-4fbd-8e2d-a2440225f93a}'; do
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

users_file() { # LINE: the user's own list of sites, with a line more at the end of its section
    printf '; sites of this computer\r\n[Sites]\r\n; port of each\r\nOther site=81\r\n%b[End]\r\nx=1\r\n' "$1"
}

make_users_file() { # read-only: whoever edits it has to care
    rm -f "$sites" && users_file "" >"$sites" && chmod a-w "$sites"
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
step 14 "registry: the entry among the installed programs, in both views" story entry_is_right 1.0.0 "$payload"
step 15 "setup upgrade: the server's new version" story server_is_upgraded
step 16 "a failing custom action is rolled back" failing failing_action_is_rolled_back
step 17 "NSIS: the same library through a plugin" nsis nsis_installer_works
step 18 "setup uninstall: everything goes but what is the user's" story everything_is_removed
[ "$cases" = no ] || show_cases

if [ "$keep" = yes ]; then
    use_prefix story
    if [ ! -e "$target/$list_name" ]; then
        check "setup install, to be looked at" setup 0 install "$payload" "$demo/kept"
    fi
    echo "Left in build/demo: payloads, prefixes, and an installation in kept/ or in the folder with the odd name."
else
    stop_servers
    rm -rf "$demo"
fi

if [ "$failed" -gt 0 ]; then
    echo "FAILED: $failed of $checks."
    exit 1
fi
echo "Everything passed: $checks checks, $((SECONDS - started)) s, of which $((prepared - started)) s for packages, build and Wine."
