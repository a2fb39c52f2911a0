#!/usr/bin/env bash
# lines_test.sh PAGE SOURCE PROGRAM [ARGUMENT...]: each line of a page's indented blocks is one of
# the source, a file or a folder of them, or of what the program prints, at whatever depth.
set -euo pipefail
page=$1 source=$2
shift 2
export LC_ALL=C
lines() { sed 's/^ *//;s/ *$//' | sort -u; }
# Whole programs, in fences, are another test's.
# shellcheck disable=SC2016  # a fence, not a command
shown=$(sed '/^```/,/^```$/d' "$page" | grep '^    ' | lines)
[ "$(wc -l <<<"$shown")" -gt 20 ] || { echo "FAILED: $page shows no program"; exit 1; }
odd=$(comm -23 <(echo "$shown") <({ find "$source" -name '*.?pp' -exec cat {} +; "$@"; } | lines))
[ -z "$odd" ] || { echo "FAILED: $page shows what is not there: $odd"; exit 1; }
