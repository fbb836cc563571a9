#!/usr/bin/env bash
# Runs a Windows test program like scripts/wine.sh, and fails when Wine's server ended meanwhile: its programs then end
# in the midst of their work, and Wine gives 0 as their exit code.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
prefix=${KELINS_WINEPREFIX:-$root/build/wineprefix}

server() { # its process id, by the lock that it holds; nothing where none runs
    local folder device inode lock
    folder=/tmp/$(cat "$prefix/wineserver" 2>/dev/null) || return 0
    read -r device inode < <(stat -c '%D %i' "$prefix")
    lock=$folder/$(printf 'server-%s-%x' "$device" "$inode")/lock # as the server names it
    inode=:$(stat -c %i "$lock" 2>/dev/null) || return 0
    awk -v inode="$inode" 'substr($6, length($6) - length(inode) + 1) == inode { print $5; exit }' /proc/locks
}

before=$(server)
status=0
"$root/scripts/wine.sh" "$@" || status=$?
if [ -n "$before" ] && [ "$before" != "$(server)" ]; then
    echo "Wine's server ended while this program ran: ${1##*/} may have done only part of its work." >&2
    exit 70
fi
exit $status
