#!/usr/bin/env bash
# page_test.sh PAGE SOURCE PROGRAM: checks that a page shows a program and its output unchanged.
set -euo pipefail
page=$1 source=$2 program=$3
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$page" | sed '1d;$d'; }
diff <(block cpp) "$source" || { echo "FAILED: the program in $page differs from $source"; exit 1; }
diff <(block text) <("$program") || { echo "FAILED: the output in $page differs from that of $program"; exit 1; }
