# shellcheck shell=bash
# SPDX-License-Identifier: MIT
#
# What the commands of tools/ and .ci/run share: installing what is missing, configuring, building, and
# a locale that can hold any file name. Sourced by bash; sets $root to the top of the tree and $build to
# the folder for builds. --help prints the comment at the top of the command.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

say() { printf '%s\n' "$*" >&2; }
fail() {
    say "$@"
    exit 1
}

case ${1-} in
    -h | --help)
        sed -n '4,/^[^#]/s/^# \{0,1\}//p' "$0"
        exit
        ;;
esac

# A bare system has no locale; programs would mangle file names beyond ASCII.
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

# missing ENTRY…: the entries without an installed alternative.
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

# apt ARGUMENT…: apt-get, with its progress on a terminal. Its messages go to $log. Waits while
# another program holds a lock: apt-get's own option doesn't cover the lock of the package lists.
apt() {
    local command=(env LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive apt-get -y "$@")
    local attemptsLeft=300 holder
    while true; do
        if [ -t 2 ]; then
            "${sudo[@]}" "${command[@]}" -o Dpkg::Progress-Fancy=1 </dev/null >&2 2>"$log" && return
        else
            "${sudo[@]}" "${command[@]}" -q -o Dpkg::Use-Pty=0 </dev/null >"$log" 2>&1 && return
        fi
        holder=$(sed -n 's/^E[a-z]*: Could not get lock/Could not get lock/p' "$log")
        [ -n "$holder" ] && ((attemptsLeft-- > 0)) || return
        ((attemptsLeft < 299)) || say "Waiting for another program: $holder"
        sleep 2
    done
}

# extent DEPENDENCIES: how much apt would install for them, as far as it can tell. apt-get leaves
# temporary files behind when it stops early, hence the folder.
extent() {
    mkdir -p "$log.apt"
    TMPDIR=$log.apt LC_ALL=C.UTF-8 apt-get --assume-no -o Debug::NoLocking=1 \
        --no-install-recommends satisfy "$1" </dev/null 2>/dev/null | sed -nE 's/.* ([0-9]+) newly installed.*/\1 packages/p
            s/^Need to get ([0-9.,]+ .?B).*/, \1 to download/p
            s/^After this operation, ([0-9.,]+ .?B) of additional.*/, \1 on the disk/p' | tr -d '\n'
    rm -rf "$log.apt"
}

# need REASON PURPOSE…: installs what is missing for these purposes; silent when nothing is.
need() {
    local reason=$1 lacking sudo=() dependencies extent
    shift
    if ! command -v dpkg-query >/dev/null; then
        say "This is neither Debian nor Ubuntu: assuming that the counterparts of tools/packages" \
            "($*) are installed."
        return
    fi
    mapfile -t lacking < <(mapfile -t entries < <(listed "$@") && missing "${entries[@]}")
    [ ${#lacking[@]} -gt 0 ] || return 0
    say "To $reason, these packages are missing: ${lacking[*]//|/ or }"
    dependencies=$(printf '%s, ' "${lacking[@]//|/ | }")
    dependencies=${dependencies%, }
    if [ "$(id -u)" -ne 0 ]; then
        local by_hand="As root: apt-get update && apt-get --no-install-recommends satisfy '$dependencies'"
        command -v sudo >/dev/null || fail "There is no sudo here to install them with. $by_hand"
        say "Installing them with sudo apt-get; it may ask for your password."
        sudo true || fail "sudo was refused, so they can't be installed. $by_hand"
        sudo=(sudo)
    fi
    say "Refreshing the package lists …"
    if ! apt update -o APT::Update::Error-Mode=any; then
        grep '^[EW][a-z]*:' "$log" >&2 || true
        say "The package lists could not be refreshed, for the reason above: using the old ones."
    fi
    extent=$(extent "$dependencies")
    say "Installing ${extent:-them} …"
    apt --no-install-recommends satisfy "$dependencies" && return
    tail -n 20 "$log" >&2
    fail "Installing failed: the lines above say why."
}

# configured PRESET: configures the first time, and after the presets, the system's packages or the
# place of the checkout have changed.
configured() {
    local folder=$build/$1 fresh=()
    local made=$folder/build.ninja cache=$folder/CMakeCache.txt
    if [ -e "$cache" ] && ! grep -qFx "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache"; then
        fresh=(--fresh)
    elif [ "$made" -nt "$root/CMakePresets.json" ] && [ "$made" -nt /var/lib/dpkg/status ]; then
        return
    fi
    (cd "$root" && cmake "${fresh[@]}" --preset "$1" -B "$folder" >"$log" 2>&1) && return
    cat "$log" >&2
    fail "Configuring failed: the lines above say why."
}

# built PRESET: builds, with progress on a terminal; silent when there is nothing to do.
built() {
    local folder=$build/$1 plan steps
    plan=$(ninja -C "$folder" -n 2>&1) || true
    [[ $plan != *'no work to do.' ]] || return 0
    steps=$(sed -nE '$s/^\[[0-9]+\/([0-9]+)\].*/\1/p' <<<"$plan")
    [ "${steps:-0}" -lt 100 ] || say "Building; this takes some minutes."
    if [ -t 2 ]; then
        cmake --build "$folder" >&2 || exit 1
    elif ! cmake --build "$folder" >"$log" 2>&1; then
        tail -n 60 "$log" >&2
        fail "Building failed: the lines above say why."
    fi
}

build=$root/build
if ! mkdir -p "$build" 2>/dev/null || [ ! -w "$build" ]; then
    build=${XDG_CACHE_HOME:-${HOME-}/.cache}/vell/build
    mkdir -p "$build" 2>/dev/null && [ -w "$build" ] ||
        fail "Neither $root/build nor $build is writable: there is no place to build in."
    say "$root/build isn't writable: building in $build."
fi
log=$(mktemp "${TMPDIR:-/tmp}/vell-setup.XXXXXX")
trap 'rm -rf "$log" "$log".*' EXIT
