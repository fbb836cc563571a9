# shellcheck shell=bash
# What demo.sh and demo_cases.sh share: how a step is run and shown, prefixes, how the sample is run. To be sourced.

# --- steps -----------------------------------------------------------------------------------------------------------

if [ -t 1 ]; then green=$'\e[32m' red=$'\e[31m' plain=$'\e[0m' clear=$'\r\e[K'; else green='' red='' plain='' clear=''; fi
checks=0
failed=0

run_logged() { # LOG TITLE COMMAND...: on a terminal with a progress bar as soon as there is progress to show
    local log=$1 title=$2 process percent bar line status
    shift 2
    if [ ! -t 1 ]; then
        ("$@") >"$log" 2>&1 </dev/null
        return
    fi
    ("$@") >"$log" 2>&1 </dev/null &
    process=$!
    while kill -0 "$process" 2>/dev/null; do
        percent=$(tail -c 200 "$log" 2>/dev/null | grep -aoE '[0-9]+ %' | tail -n 1 | tr -d ' %')
        printf -v bar '%*s' $((${percent:-0} / 5)) ''
        printf -v line '… [%-20s] %s' "${bar// /#}" "$title"
        printf '%s%s' "$clear" "${line:0:$(($(tput cols 2>/dev/null || echo 80) - 1))}"
        sleep 0.2
    done
    wait "$process"
    status=$?
    printf '%s' "$clear"
    return $status
}

check() { # TITLE COMMAND...: one line, with what the command noted in it
    local title=$1 log start=$SECONDS
    shift
    checks=$((checks + 1))
    log=$logs/demo-$(printf '%02d' "$checks").log
    if run_logged "$log" "$title" "$@"; then
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

needed() { # a check without which the others make no sense
    check "$@" || { echo "FAILED: the demo ends here."; exit 1; }
}

step() { # NUMBER TITLE PREFIX COMMAND...: one step of the story, in that scenario's prefix
    is_wanted "$1" || return 0
    local number=$1 title=$2 prefix=$3
    shift 3
    use_prefix "$prefix"
    check "$(printf '%2d. %s' "$number" "$title")" "$@"
}

is_wanted() { # NUMBER: up to the last step; or that one alone, with the installation that it looks at
    if [ -z "$only_step" ]; then
        [ "$1" -le "$last_step" ]
    elif [ "$1" -eq 5 ]; then
        case $only_step in 1 | 2 | 3 | 4 | 16 | 17) false ;; esac
    else
        [ "$1" -eq "$only_step" ]
    fi
}

note() { # TEXT: shown beside the title
    echo "note: $*"
}

fail() { # MESSAGE: why a check failed
    echo "$*"
    return 1
}

# --- Wine ------------------------------------------------------------------------------------------------------------

use_prefix() { # NAME: a scenario's own copy of the prefix; made, and its server started, where need be
    export KELINS_WINEPREFIX=$demo/prefixes/$1
    [ -d "$KELINS_WINEPREFIX" ] && return 0
    mkdir -p "$demo/prefixes"
    cp -a --reflink=auto "$root/build/wineprefix" "$KELINS_WINEPREFIX"
    scripts/wine-prefix.sh >/dev/null 2>&1
}

leave_prefixes() { # [NAME...]: stops their servers, of all without a name; the prefixes stay
    local prefix
    for prefix in "${@/#/$demo/prefixes/}"; do
        [ -d "$prefix" ] && KELINS_WINEPREFIX=$prefix scripts/wine-prefix.sh stop >/dev/null 2>&1
    done
    return 0
}

server_runs() { # whether this checkout's own prefix has a server already: then it is not ours to stop
    local prefix=$root/build/wineprefix
    [ -d "$prefix" ] && [ -S "/tmp/.wine-$(id -u)/server-$(stat -c %D "$prefix")-$(printf '%x' "$(stat -c %i "$prefix")")/socket" ]
}

windows() { # PATH: as Wine shows it
    printf 'Z:%s' "${1//\//\\}"
}

registry() { # VIEW KEY FILE: reg export, as UTF-8; an empty file where there is no such key
    rm -f "$3.utf16"
    : >"$3"
    scripts/wine.sh reg export "$2" "$(windows "$3.utf16")" "/reg:$1" >/dev/null 2>&1 || return 0
    iconv -f utf-16 -t utf-8 "$3.utf16" | tr -d '\r' >"$3"
}

has_values() { # VIEW KEY NAME=VALUE...: exactly these, as reg export shows them ("name=dword:00000001" is a number)
    local view=$1 key=$2
    shift 2
    registry "$view" "$key" "$demo/export.reg" && python3 scripts/demo_check.py registry "$demo/export.reg" "$key" "$@"
}

has_no_key() { # VIEW KEY
    registry "$1" "$2" "$demo/export.reg" && [ ! -s "$demo/export.reg" ] || fail "$2 is still there ($1-bit view)"
}

# --- the sample ------------------------------------------------------------------------------------------------------

setup_log=$demo/setup.log # of the last setup
output=$demo/output       # what it said: on both streams together, and on each

setup() { # EXPECTED_EXIT_CODE ARGUMENT...: runs the sample; its output is printed and kept. Absolute paths become those of Wine
    local wanted=$1 argument arguments=() code
    shift
    for argument in "$@"; do
        case $argument in /*) argument=$(windows "$argument") ;; esac
        arguments+=("$argument")
    done
    rm -f "$setup_log" "$setup_log.msi.txt"
    { scripts/wine.sh build/mingw/bin/setup.exe "${arguments[@]}" --log "$(windows "$setup_log")" \
        2> >(tee "$output.error") > >(tee "$output.out"); } | tee "$output"
    code=${PIPESTATUS[0]}
    [ "$code" -eq "$wanted" ] || fail "setup $* ended with $code, not with $wanted"
}

says() { # TEXT...: each stands in the last output
    local text
    for text in "$@"; do
        grep -qF -- "$text" "$output" || { fail "setup did not say: $text"; return 1; }
    done
}

logs() { # TEXT...: each stands in the log of the last setup
    local text
    for text in "$@"; do
        grep -qF -- "$text" "$setup_log" || { cat "$setup_log"; fail "setup did not log: $text"; return 1; }
    done
}

uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Orchard Server'

products_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Installer\UserData\S-1-5-18\Products'

is_not_installed() { # nothing of the product is among the installed programs, nor in Windows Installer's database
    has_no_key 64 "$uninstall_key" && has_no_key 32 "$uninstall_key" && has_no_key 64 'HKLM\Software\Orchard Server' &&
        registry 64 "$products_key" "$demo/products.reg" && ! grep -q 'Orchard Server Core' "$demo/products.reg" ||
        fail "the product is still registered"
}

product_code() { # PAYLOAD: of its package, in braces
    jq -r .package.productCode "$1/manifest.json"
}

packed_code() { # PAYLOAD: the same as Windows Installer's registry keys spell it
    python3 scripts/demo_check.py packed "$(product_code "$1")"
}

# --- files -----------------------------------------------------------------------------------------------------------

names_in() { # DIRECTORY: all names in it, in one line
    find "$1" -mindepth 1 -printf '%P\n' | sort | tr '\n' ' '
}

snapshot() { # DIRECTORY: names, kinds, permissions, times and contents of all in it
    (cd "$1" && find . -printf '%P %y %m %l\n' | sort && find . ! -type d -printf '%P %T@\n' | sort &&
        find . -type f -exec sha256sum {} + | sort)
}

manifest_of() { # PAYLOAD: writes its manifest.json anew
    python3 scripts/demo_payload.py manifest "$1"
}

copy_of_small() { # NAME: a payload to be spoiled
    cp -rp "$small" "$demo/small/$1"
}
