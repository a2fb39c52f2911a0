#!/usr/bin/env bash
# page_test.sh PAGE SOURCE PROGRAM: a page shows a program and what it prints, as they are.
set -euo pipefail
page=$1 source=$2 program=$3
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$page" | sed '1d;$d'; }
diff <(block cpp) "$source" || { echo "FAILED: $page shows another program than $source"; exit 1; }
diff <(block text) <("$program") || { echo "FAILED: $page shows another output"; exit 1; }
