#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Runs a command on a desktop of its own: an X server nobody sees, a window manager, a session bus
# with accessibility, an empty home. Answers 77, for "skipped", where something of that is missing.
# Stands in for the desktop's opener of addresses, too: they end up as lines in $OPENED.
#
# usage: with_desktop.sh COMMAND…
set -eu

for needed in Xvfb openbox dbus-run-session; do
    command -v "$needed" >/dev/null || { echo "skipped: no $needed here"; exit 77; }
done
ls /usr/share/dbus-1/services/org.a11y.Bus.service >/dev/null 2>&1 || {
    echo "skipped: no accessibility bus here"
    exit 77
}

place=$(mktemp -d)
server=
cleanup() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    rm -rf "$place"
}
trap cleanup EXIT
mkdir -m 700 "$place/home" "$place/run" "$place/bin"
OPENED=$place/opened
: >"$OPENED"
cat >"$place/bin/xdg-open" <<'OPENER'
#!/bin/sh
printf '%s\n' "$1" >>"$OPENED"
OPENER
chmod +x "$place/bin/xdg-open"

# The server says which display it took as soon as it can be used. It must not begin anew when its last
# client leaves: the next one would find it gone for a moment.
mkfifo "$place/display"
Xvfb -displayfd 3 -screen 0 1200x900x24 -nolisten tcp -noreset 3>"$place/display" 2>"$place/server.log" &
server=$!
if ! read -r display <"$place/display"; then
    cat "$place/server.log" >&2
    exit 1
fi

env -u WAYLAND_DISPLAY -u DBUS_SESSION_BUS_ADDRESS -u QT_QPA_PLATFORM -u XDG_CURRENT_DESKTOP \
    -u KDE_FULL_SESSION DISPLAY=":$display" PATH="$place/bin:$PATH" OPENED="$OPENED" \
    BROWSER= HOME="$place/home" XDG_RUNTIME_DIR="$place/run" \
    XDG_DATA_HOME="$place/home/.local/share" XDG_CONFIG_HOME="$place/home/.config" \
    XDG_CACHE_HOME="$place/home/.cache" XDG_SESSION_TYPE=x11 \
    GSETTINGS_BACKEND=memory GIO_USE_VFS=local LC_ALL=en_GB.UTF-8 TZ=UTC \
    QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 \
    dbus-run-session -- sh -c 'openbox & manager=$!
        status=0
        "$@" || status=$?
        kill "$manager" 2>/dev/null || true
        exit "$status"' sh "$@"
