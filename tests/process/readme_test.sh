#!/usr/bin/env bash
# readme_test.sh README SOURCE PROGRAM: checks that README shows a part of SOURCE unchanged, and the
# whole output of PROGRAM. Ignores spaces at the ends of output lines.
set -euo pipefail
readme=$1 source=$2 program=$3
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$readme" | sed '1d;$d'; }
part=$(block cpp)
[ -n "$part" ] || { echo "FAILED: $readme shows no program"; exit 1; }
[[ $(<"$source") == *"$part"* ]] || { echo "FAILED: $source has no such part: $part"; exit 1; }
cd "$(dirname "$program")"  # this directory has the program's catalogue
diff <(block text) <("$program" | sed 's/ *$//') || { echo "FAILED: $readme shows another output"; exit 1; }
