#!/usr/bin/env bash
# lines_test.sh PAGE SOURCE PROGRAM: each line of a page's indented blocks is one of the program or
# of what it prints, at whatever depth.
set -euo pipefail
page=$1 source=$2 program=$3
export LC_ALL=C
lines() { sed 's/^ *//;s/ *$//' | sort -u; }
shown=$(grep '^    ' "$page" | lines)
[ "$(wc -l <<<"$shown")" -gt 20 ] || { echo "FAILED: $page shows no program"; exit 1; }
odd=$(comm -23 <(echo "$shown") <({ cat "$source"; "$program"; } | lines))
[ -z "$odd" ] || { echo "FAILED: $page shows what is not there: $odd"; exit 1; }
