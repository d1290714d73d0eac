#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Runs a command in a desktop session of its own, with an empty home and a real address-book service,
# and checks that no process of it is left. Exits with 77 ("skipped") where there is no service.
set -eu

ls /usr/share/dbus-1/services/org.gnome.evolution.dataserver.AddressBook*.service \
    >/dev/null 2>&1 || exit 77
command -v dbus-run-session >/dev/null || exit 77

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
mkdir -m 700 "$place/home" "$place/run"

# Not exported: the processes of the session are known by this variable.
status=0
env -u DISPLAY -u WAYLAND_DISPLAY -u DBUS_SESSION_BUS_ADDRESS \
    HOME="$place/home" XDG_RUNTIME_DIR="$place/run" XDG_DATA_HOME="$place/home/.local/share" \
    XDG_CONFIG_HOME="$place/home/.config" XDG_CACHE_HOME="$place/home/.cache" \
    GSETTINGS_BACKEND=memory GIO_USE_VFS=local NO_AT_BRIDGE=1 QT_QPA_PLATFORM=offscreen \
    dbus-run-session -- "$@" || status=$?

for _ in $(seq 600); do
    left=$(grep -lzs "^XDG_RUNTIME_DIR=$place/run" /proc/[0-9]*/environ || true)
    [ -n "$left" ] || exit "$status"
    sleep 0.1
done
echo "left running: $left" >&2
exit 1
