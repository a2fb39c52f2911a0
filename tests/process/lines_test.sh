#!/usr/bin/env bash
# lines_test.sh PAGE SOURCE PROGRAM [ARGUMENT...]: checks that each line in a page's indented blocks
# occurs in SOURCE (a file or a folder) or in the output of PROGRAM, whatever its indentation.
set -euo pipefail
page=$1 source=$2
shift 2
export LC_ALL=C
lines() { sed 's/^ *//;s/ *$//' | sort -u; }
# Ignores fenced blocks, because they show whole programs and page_test.sh checks those.
# shellcheck disable=SC2016  # a fence, not a command
shown=$(sed '/^```/,/^```$/d' "$page" | grep '^    ' | lines)
[ "$(wc -l <<<"$shown")" -gt 20 ] || { echo "FAILED: $page has only $(wc -l <<<"$shown") lines in indented blocks"; exit 1; }
odd=$(comm -23 <(echo "$shown") <({ find "$source" -name '*.?pp' -exec cat {} +; "$@"; } | lines))
[ -z "$odd" ] || { echo "FAILED: these lines of $page are neither in $source nor in the output: $odd"; exit 1; }
