#!/usr/bin/env bash
# session_test.sh PAGE FILES PROGRAM...: runs the commands of a page's console blocks and checks that
# they print what the page shows. The commands run in a directory with copies of FILES. The programs
# are in PATH. If a PROGRAM is a directory, the commands find it under the name "build". SESSION_EDIT
# is a sed script that edits the page first.
set -euo pipefail
page=$1 files=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin" "$work/files"
cp -r "$files"/. "$work/files"
for program in "$@"; do
    if [ -d "$program" ]; then ln -sT "$program" "$work/files/build"; continue; fi
    printf '#!/bin/sh\nexec "%s" "$@"\n' "$program" >"$work/bin/$(basename "$program")"
done
chmod +x "$work"/bin/*
cd "$work/files"
export PATH=$work/bin:$PATH LC_ALL=C
# shellcheck disable=SC2016  # a fence, not a command
sed "${SESSION_EDIT:-}" "$page" | sed -n '/^```console$/,/^```$/p' | sed '/^```/d' >"$work/shown"
while IFS= read -r line; do
    [[ $line == '$ '* ]] || continue
    printf '%s\n' "$line"
    bash -c "${line#??}" 2>&1 || true
done <"$work/shown" >"$work/printed"
[ "$(grep -c '^\$ ' "$work/shown")" -gt 3 ] || { echo "FAILED: $page has too few commands in its console blocks"; exit 1; }
diff "$work/shown" "$work/printed" || { echo "FAILED: the commands print other lines than $page shows"; exit 1; }
