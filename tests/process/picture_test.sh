#!/usr/bin/env bash
# picture_test.sh SVG FILES PROGRAM...: the session that a picture shows is what the commands print.
# Each line of the session is a <text> of class "line".
set -euo pipefail
svg=$1
shift
page=$(mktemp)
trap 'rm -f "$page"' EXIT
{
    echo '```console'
    sed -n 's/^<text class="line"[^>]*>\(.*\)<\/text>$/\1/p' "$svg" |
        sed 's/<[^>]*>//g; s/&lt;/</g; s/&gt;/>/g; s/&amp;/\&/g'
    echo '```'
} >"$page"
"$(dirname "$0")/session_test.sh" "$page" "$@"
