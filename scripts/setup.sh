#!/bin/bash
# Installs what is missing of the given package lists (scripts/packages/LIST.txt):
#
#   scripts/setup.sh LIST...
#
# A line is a package, and perhaps a command: where that is there already, whoever brought it, the
# package is not needed.
#
# Silent, and without touching the network, when nothing is missing. Waits for another apt that is
# at work. Needs root or sudo only when there is something to install. On a system without apt it
# says what is needed and lets the caller go on.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
patience=600  # seconds to wait for another apt

wanted=()
for list in "$@"; do
    while read -r package command; do
        [ -n "${package%%#*}" ] || continue
        [ -n "$command" ] && command -v "$command" >/dev/null && continue
        wanted+=("$package")
    done <"$here/packages/$list.txt"
done

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "setup: no apt here; needed are these or their equals: ${wanted[*]}" >&2
    exit 0
fi

installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }
missing=()
for package in "${wanted[@]}"; do
    case " ${missing[*]-} " in *" $package "*) continue ;; esac
    installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "setup: missing: ${missing[*]}" >&2
        echo "setup: neither root nor sudo; as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Runs apt-get quietly; what it said is shown only when it failed. apt waits by itself for the lock
# of the package database, but not for that of the lists, so that one is waited for here.
apt() {
    local end=$((SECONDS + patience))
    until "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q \
        -o "DPkg::Lock::Timeout=$patience" -o Acquire::Retries=3 "$@" >"$log" 2>&1 </dev/null; do
        if ! grep -q 'Could not get lock' "$log" || [ $SECONDS -ge $end ]; then
            cat "$log" >&2
            echo "setup: apt-get $1 failed" >&2
            return 1
        fi
        sleep 2
    done
}

echo "setup: installing ${missing[*]}"
apt update
apt install -y --no-install-recommends "${missing[@]}"
echo "setup: done"
