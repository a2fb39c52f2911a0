#!/usr/bin/env bash
# picture_test.sh SVG FILES PROGRAM...: runs the commands of the session in a picture, and checks that
# they print what the picture shows. Each line of the session is a <text> of class "line".
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
