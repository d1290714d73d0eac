# SPDX-License-Identifier: MIT
#
# What tools/run, tools/test and .ci/run share: installing what is missing, configuring, and a
# locale that can hold any file name. Sourced by bash; sets $root to the top of the tree.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }

# A bare system has no locale: file names would lose everything beyond ASCII.
use_utf8() {
    [ "$(locale charmap 2>/dev/null)" = UTF-8 ] && return
    if [ -n "${LC_ALL-}" ]; then export LC_ALL=C.UTF-8; else export LC_CTYPE=C.UTF-8; fi
}

# listed PURPOSE…: the lines of tools/packages for these purposes, one package or "a|b" each.
listed() {
    local wanted=" $* " purpose package
    while read -r purpose package _; do
        [[ "$wanted" == *" $purpose "* ]] && printf '%s\n' "$package"
    done <"$root/tools/packages"
}

# missing ENTRY…: the entries of which no alternative is installed.
missing() {
    local installed entry alternative found
    # shellcheck disable=SC2048,SC2086
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' ${*//|/ } 2>/dev/null) || true
    for entry; do
        found=
        for alternative in ${entry//|/ }; do
            [[ $'\n'$installed$'\n' == *$'\ninstalled '$alternative$'\n'* ]] && found=yes
        done
        [ -n "$found" ] || printf '%s\n' "$entry"
    done
}

# known ENTRY: its first alternative that the package lists of this system offer.
known() {
    local alternative
    for alternative in ${1//|/ }; do
        apt-cache show --no-all-versions "$alternative" >/dev/null 2>&1 && break
    done
    printf '%s\n' "$alternative"
}

# need REASON PURPOSE…: installs what is missing for these purposes; silent when nothing is.
# Answers whether anything was installed in $installed_now.
need() {
    local reason=$1 entry names=() lacking sudo=()
    shift
    installed_now=
    if ! command -v dpkg-query >/dev/null; then
        say "This is neither Debian nor Ubuntu: taking it that the counterparts of tools/packages" \
            "($*) are installed."
        return
    fi
    mapfile -t lacking < <(mapfile -t entries < <(listed "$@") && missing "${entries[@]}")
    [ ${#lacking[@]} -gt 0 ] || return 0
    say "To $reason, ${#lacking[@]} packages are missing: ${lacking[*]//|/ or }"
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "There is no sudo here. As root: apt-get update && apt-get install ${lacking[*]%%|*}"
            exit 1
        fi
        sudo=(sudo)
        say "Installing them with sudo apt-get; it may ask for your password."
    else
        say "Installing them with apt-get."
    fi
    local apt=("${sudo[@]}" env LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive apt-get -qq)
    "${apt[@]}" update </dev/null >"$log" 2>&1 || say "The package lists could not be refreshed; trying those here."
    for entry in "${lacking[@]}"; do names+=("$(known "$entry")"); done
    if ! "${apt[@]}" -o Dpkg::Use-Pty=0 install -y --no-install-recommends "${names[@]}" \
        </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        say "Installing failed: the lines above say why."
        exit 1
    fi
    installed_now=yes
}

# configured PRESET: configures when that was never done, the presets changed or packages came.
configured() {
    local made=$root/build/$1/build.ninja
    [ -z "$installed_now" ] && [ "$made" -nt "$root/CMakePresets.json" ] && return
    (cd "$root" && cmake --preset "$1" >"$log" 2>&1) && return
    cat "$log" >&2
    say "Configuring failed: the lines above say why."
    exit 1
}

# built PRESET: builds, with progress on a terminal; silent when there is nothing to do.
built() {
    local folder=$root/build/$1
    [[ "$(ninja -C "$folder" -n 2>&1)" != *'no work to do.' ]] || return 0
    say "Building; the first time takes some minutes."
    if [ -t 2 ]; then
        cmake --build "$folder" >&2 || exit 1
    elif ! cmake --build "$folder" >"$log" 2>&1; then
        cat "$log" >&2
        exit 1
    fi
}

log=$(mktemp "${TMPDIR:-/tmp}/vell-setup.XXXXXX")
trap 'rm -rf "$log" "$log.runtime"' EXIT
