#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Installs the programs below a folder of its own and asks the desktop's own tools about the result.
# What isn't installed on this machine is named and left out.
#
# usage: desktop_test.sh CMAKE BUILD SAMPLES
set -u
cmake=$1 build=$2 samples=$3
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
share=$stage/share
failures=0

# check NAME COMMAND…: silent when the command succeeds.
check() {
    local name=$1
    shift
    if ! command -v "$1" >/dev/null; then
        printf 'left out: %s (no %s here)\n' "$name" "$1"
    elif ! "$@" >"$stage/output" 2>&1; then
        printf 'FAILED: %s\n' "$name"
        cat "$stage/output"
        failures=$((failures + 1))
    fi
}

# types FILE: the file is a transcript to the desktop.
types() { gio info -a standard::content-type "$1" | grep -q 'application/x-ichat-transcript'; }
not() { ! "$@"; }
# What groff complains of, it prints; it succeeds all the same.
page() { ! command -v groff >/dev/null || [ -z "$(zcat "$1" | groff -man -ww -Tutf8 -z 2>&1)" ]; }
# completes PROGRAM EXPECTED WORD…: bash offers the text for the last word, split as bash splits.
completes() {
    bash -c '. "$1"; COMP_WORDS=("$2" "${@:4}"); COMP_CWORD=$(($# - 3)); compopt() { :; }
             "_${2//-/_}" "$2" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}"
             printf "%s\n" "${COMPREPLY[@]}" | grep -qFx -- "$3"' \
        - "$share/bash-completion/completions/$1" "$@"
}

check 'install' "$cmake" --install "$build" --prefix "$stage"
for file in bin/vell bin/vell-picture share/vell/Finder-Find-iChat-Files.savedSearch \
            share/man/man1/vell.1.gz; do
    check "$file is installed" test -s "$stage/$file"
done

id=dev.quillmark.vell
check 'desktop entry' desktop-file-validate "$share/applications/$id.desktop"
check 'metainfo' appstreamcli validate --no-net --pedantic "$share/metainfo/$id.metainfo.xml"
check 'desktop entry runs what is installed' \
    test -x "$stage/bin/$(sed -n 's/^TryExec=//p' "$share/applications/$id.desktop")"
check 'icon of the desktop entry' test -s "$share/icons/hicolor/scalable/apps/$id.svg"
for section in vell vell-export vell-find vell-picture; do
    check "manual page $section" page "$share/man/man1/$section.1.gz"
done

check 'MIME type' update-mime-database "$share/mime"
if command -v update-mime-database gio >/dev/null; then
    export XDG_DATA_HOME=$share GIO_USE_VFS=local
    mkdir "$stage/bare"
    for file in "$samples"/*.ichat; do
        name=$(basename "$file" .ichat)
        cp "$file" "$stage/bare/$name"
            check "type of $name by name and content" types "$file"
        check "type of $name by content" types "$stage/bare/$name"
    done
    printf 'torn' >"$stage/bare/torn.ichat"
    check 'type of a damaged file by name' types "$stage/bare/torn.ichat"
    printf 'bplist00\324\1\2\3\4 NSKeyedArchiver' >"$stage/bare/other archive"
    check 'another archive is none of ours' not types "$stage/bare/other archive"
fi

check 'completion of options' completes vell --render --r
check 'completion of formats' completes vell-export json --format j
check 'completion of formats after an equals sign' completes vell-export json --format = j
check 'completion of all formats' completes vell-export markdown --format =
check 'completion of short options' completes vell-export text -f te
for option in $("$stage/bin/vell-export" --help | grep -o -- '--[a-z0-9][a-z0-9-]*'); do
    check "bash completes $option" completes vell-export "$option" "$option"
    check "zsh completes $option" grep -q -- "$option[]=[}]" "$share/zsh/site-functions/_vell-export"
    check "the manual tells $option" \
        zgrep -q -e "${option//-/\\\\-}" "$share/man/man1/vell-export.1.gz"
done
check 'the sandbox keeps the network out' \
    not grep -q 'share=network' "$(dirname "$0")/../../packaging/$id.flatpak.json"

[ "$failures" -eq 0 ]
