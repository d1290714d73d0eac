#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# A picture leaves the program by mouse and by clipboard and arrives in other programs byte for byte.
#
# usage: with_desktop.sh pictures_test.sh VELL PARTNER
set -u
vell=$1 partner=$2
work=$(mktemp -d)
processes=()

finish() {
    local i
    for ((i = ${#processes[@]} - 1; i >= 0; i--)); do
        kill "${processes[i]}" 2>/dev/null && wait "${processes[i]}" 2>/dev/null
    done
    rm -rf "$work"
}
trap finish EXIT

fail() {
    printf 'FAILED: %s\n' "$1"
    tail -n 30 "$work"/*.log
    exit 1
}
# until_ok SECONDS WHAT COMMAND…: tries until the command succeeds.
until_ok() {
    local end=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >"$work/answer" 2>/dev/null; do
        ((SECONDS < end)) || fail "$what"
        sleep 0.1
    done
}
# start NAME COMMAND…: runs in the background, with a log.
start() {
    local name=$1
    shift
    "$@" >"$work/$name.log" 2>&1 &
    processes+=($!)
}

export TMPDIR=$work/files
mkdir "$TMPDIR"
QT_QPA_PLATFORM=offscreen "$partner" make "$work/chat.ichat" "$work/field.png" >/dev/null ||
    fail 'no transcript'
until_ok 20 'no window manager' xdotool get_num_desktops

# The sanitizers' library wants to be loaded first, and stdbuf brings one of its own.
start vell env ASAN_OPTIONS=verify_asan_link_order=0 stdbuf -oL "$vell" "$work/chat.ichat"
start taker "$partner" take "$work/taken.png"
until_ok 20 'no window for pictures' xdotool search --onlyvisible --name '^taker$'
taker=$(head -n 1 "$work/answer")
until_ok 20 'no chat window' xdotool search --onlyvisible --name 'bob'
chat=$(head -n 1 "$work/answer")
xdotool windowmove "$taker" 900 600 windowmove "$chat" 20 20
placed() {
    local X=0 Y=0
    eval "$(xdotool getwindowgeometry --shell "$1" | grep -E '^[XY]=-?[0-9]+$')"
    ((X >= $2 && X < $2 + 60 && Y >= $3 && Y < $3 + 60))
}
until_ok 20 'the window for pictures stays where it was' placed "$taker" 900 600
until_ok 20 'the chat window stays where it was' placed "$chat" 20 20
active() { xdotool windowactivate "$chat" && [ "$(xdotool getactivewindow)" = "$chat" ]; }
until_ok 20 'the chat window is not active' active
# Twice the same: nothing moves any more.
still() {
    "$partner" find >"$work/place" && "$partner" find | cmp -s - "$work/place"
}
until_ok 20 'the picture is not on the screen' still
read -r x y <"$work/place"

# By mouse. The window that is dragged to is told of moves once it has answered the first one.
shift_by=0
over_taker() {
    shift_by=$(((shift_by + 7) % 40))
    xdotool mousemove $((980 + shift_by)) 700
    (($(grep -c moved "$work/taker.log") >= 3))
}
xdotool mousemove "$x" "$y" mousedown 1
for distance in 5 10 20 40 80; do
    xdotool mousemove $((x + distance)) "$y"
done
until_ok 20 'the other program has not seen the drag' over_taker
[ -z "$(ls -A "$TMPDIR")" ] || fail 'a file was written that nobody had asked for'
xdotool mouseup 1
until_ok 20 'nothing was dropped' grep -q taken "$work/taker.log"
cmp "$work/field.png" "$work/taken.png" || fail 'other bytes were dropped'
cmp "$work/field.png" "$work/taken.png.file" || fail 'the address is of another file'
grep -q '^ASK FOR: public.image$' "$work/vell.log" || fail 'no line for the drop'

# By clipboard.
windows() { xdotool search --onlyvisible --class '' 2>/dev/null | sort -u | wc -l; }
before=$(windows)
xdotool mousemove "$x" "$y" click 3
has_menu() { (($(windows) > before)); }
until_ok 20 'no context menu' has_menu
xdotool key Down Return
targets() {
    xclip -o -selection clipboard -t TARGETS >"$work/targets" && grep -q / "$work/targets"
}
until_ok 20 'nothing was copied' targets
data=$(grep -vxE 'TARGETS|MULTIPLE|TIMESTAMP|SAVE_TARGETS|DELETE' "$work/targets")
[ "$data" = image/png ] || fail "the clipboard holds: $data"
until_ok 20 'the clipboard does not answer' xclip -o -selection clipboard -t image/png
cmp "$work/field.png" "$work/answer" || fail 'other bytes were copied'
