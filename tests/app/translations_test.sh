#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Updates a copy of each translation from the sources: nothing may change, and nothing be missing.
#
# usage: translations_test.sh LUPDATE SOURCE
set -eu
lupdate=$1 source=$2
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
status=0
for translation in "$source"/i18n/*.ts; do
    name=$(basename "$translation")
    cp "$translation" "$copy/$name"
    "$lupdate" "$source/src" -I "$source/src" -ts "$copy/$name" -locations none -no-obsolete >"$copy/output" 2>&1
    if ! diff -u "$translation" "$copy/$name"; then
        echo "$name: run lupdate src -I src -ts i18n/$name -locations none -no-obsolete, and translate"
        status=1
    fi
    if grep -n 'type="unfinished"' "$translation"; then
        echo "$name: these are not translated"
        status=1
    fi
done
exit $status
