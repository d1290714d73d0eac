#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Started without a usable display, the program says so in one line and exits with 1.
#
# usage: display_test.sh VELL
set -u
status=0
for environment in DISPLAY= DISPLAY=:4711 WAYLAND_DISPLAY=gone 'DISPLAY=:4711 WAYLAND_DISPLAY=gone' \
    QT_QPA_PLATFORM=nonsense; do
    # shellcheck disable=SC2086
    said=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM XDG_RUNTIME_DIR=/nowhere \
        LC_ALL=C.UTF-8 $environment "$1" 2>&1)
    code=$?
    if [ $code -ne 1 ] || [[ "$said" == *$'\n'* || "$said" != 'vell: '*' --render '* ]]; then
        printf '%s: ended with %s and said:\n%s\n' "$environment" $code "$said"
        status=1
    fi
done
exit $status
