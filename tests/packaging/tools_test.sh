#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# tools/run on a machine where everything is missing. Stand-ins play apt-get, sudo and the build, and
# fail as $FAULT says.
#
# usage: tools_test.sh TOOLS
set -u
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
failures=0

# stand_in NAME: what comes on standard input is run instead.
stand_in() {
    { printf '#!/bin/sh\n' && cat; } >"$place/bin/$1"
    chmod +x "$place/bin/$1"
}
mkdir -p "$place/bin" "$place/tree/samples" "$place/tree/build/release/bin"
cp -R "$1" "$place/tree/tools"
touch "$place/tree/samples/one.ichat"
for command in bash sh sed grep cat rm mkdir dirname basename mktemp locale env tail tr sleep; do
    ln -s "$(command -v "$command")" "$place/bin/"
done
stand_in dpkg-query </dev/null
stand_in id <<<'echo 1000'
stand_in cmake <<<'[ "$FAULT" != configuring ] || { echo "no such compiler"; exit 1; }'
stand_in ninja <<<'echo "ninja: no work to do."'
stand_in sudo <<<'[ "$FAULT" != password ] || { echo "sudo: 3 incorrect attempts" >&2; exit 1; }
                  "$@"'
stand_in apt-get <<'STAND_IN'
case "$FAULT $*" in
    lists*update*) echo 'E: Failed to fetch the lists'; exit 100 ;;
    *--assume-no*)
        echo '1 upgraded, 12 newly installed, 0 to remove and 3 not upgraded.'
        echo 'Need to get 3 MB/9,041 kB of archives.'
        echo 'After this operation, 40.5 MB of additional disk space will be used.'
        exit 1
        ;;
    lock*update* | lock*satisfy*)
        if [ ! -e "$0.waited" ]; then
            : >"$0.waited"
            echo 'E: Could not get lock /l. It is held by process 7 (dpkg)' >&2
            exit 100
        fi
        ;;
    space*satisfy*) echo "E: You don't have enough free space" >&2; exit 100 ;;
esac
case $* in *satisfy*', qt6-svg-plugins | libqt6svg6, '*) : >"$0.satisfied" ;; esac
STAND_IN
stand_in vell <<<'echo "shows $*"'
mv "$place/bin/vell" "$place/tree/build/release/bin/"

failed() {
    printf 'FAILED: %s\n' "$1"
    failures=$((failures + 1))
}
# row STATUS FAULT EXPECTED ARGUMENT…: the command ends with that status and says that.
row() {
    local expected_status=$1 fault=$2 expected=$3 output status=0
    shift 3
    output=$(env -u DISPLAY -u WAYLAND_DISPLAY FAULT="$fault" PATH="$place/bin" TMPDIR="$place" \
        "$place/tree/tools/run" "$@" 2>&1 </dev/null) || status=$?
    [[ $status = "$expected_status" && $output = *"$expected"* ]] && return
    failed "${fault:-no fault} $*: $status instead of $expected_status, or no '$expected' in: $output"
}
row 0 '' 'opens the transcripts named' --help
row 1 '' 'there is no file no such' 'no such'
row 0 '' '12 packages, 3 MB to download, 40.5 MB on the disk'
row 0 '' 'shows --render'
row 1 password $'3 incorrect attempts\nsudo was refused'
row 0 lists 'Failed to fetch the lists'
row 0 lock 'Waiting for another program: Could not get lock /l. It is held by process 7 (dpkg)'
row 1 space "You don't have enough free space"
row 1 configuring 'no such compiler'
[ -e "$place/bin/apt-get.satisfied" ] || failed 'alternatives were not left to apt-get'
rm "$place/bin/sudo"
row 1 '' 'There is no sudo here to install them with. As root: apt-get update && apt-get'
[ -z "$(find "$place" -maxdepth 1 -name 'vell-setup*')" ] || failed 'a temporary file is left'

[ "$failures" -eq 0 ]
