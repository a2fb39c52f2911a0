#!/usr/bin/env bash
# readme_test.sh README SOURCE PROGRAM: the README shows a part of the program as it is, and all
# that the program prints, without blanks at the ends of lines.
set -euo pipefail
readme=$1 source=$2 program=$3
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$readme" | sed '1d;$d'; }
part=$(block cpp)
[ -n "$part" ] || { echo "FAILED: $readme shows no program"; exit 1; }
[[ $(<"$source") == *"$part"* ]] || { echo "FAILED: $source has no such part: $part"; exit 1; }
cd "$(dirname "$program")"  # where its catalogue is
diff <(block text) <("$program" | sed 's/ *$//') || { echo "FAILED: $readme shows another output"; exit 1; }
