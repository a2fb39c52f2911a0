#!/usr/bin/env bash
# survey_test.sh SURVEY TREE: the survey's figures against wc's, and its report of what it
# cannot read.
set -euo pipefail
survey=$1 tree=$2
top=$(mktemp -d)
trap 'rm -rf "$top"' EXIT
work=$top/tree out=$top/out
fail() { echo "FAILED: $*" >&2; exit 1; }
export LC_ALL=C

mkdir -p "$work/a b/deep" "$work/.hidden"
printf '' >"$work/a b/empty"
printf 'no line end' >"$work/a b/unended"
printf '\n\n \t\v\f\r\n' >"$work/a b/deep/blank"
printf 'hidden\n' >"$work/.hidden/file"
head -c 300000 /dev/zero | tr '\0' 'x' >"$work/a b/one-line"
seq 1 100000 >"$work/a b/numbers"
ln -s /dev/zero "$work/a b/link"

"$survey" -a "$work" "$tree/TavThread" "$tree/QBLCore" >"$out" || fail "status $?"
find "$work/a b" "$tree/TavThread" "$tree/QBLCore" -type f ! -name '.*' | sort >"$top/files"
count=0
while IFS= read -r file; do
    read -r lines words bytes _ <<<"$(wc -lwc "$file")"
    row=$(awk -v f="  $file" 'substr($0, length($0) - length(f) + 1) == f' "$out" | tail -n 1)
    read -r l w b _ <<<"$row"
    [ "$lines $words $bytes" = "$l $w $b" ] || fail "$file: wc says $lines $words $bytes: $row"
    count=$((count + 1))
done <"$top/files"
[ "$count" -gt 50 ] || fail "only $count files compared"
grep -q "total of $count files" "$out" || fail "counted other files than find"
read -r _ _ _ longest _ <<<"$(grep -F 'one-line' "$out")"
[ "$longest" = 300000 ] || fail "longest line $longest"

status=0
"$survey" "$work/a b/numbers" "$work/absent" "$work/a b/empty/x" >"$out" || status=$?
[ "$status" = 1 ] || fail "status $status for files that cannot be read"
[ "$(grep -c '<Exception Name="QBLSystemError" Error="2[0]*" Severity="Fatal">' "$out")" = 2 ] ||
    fail "errors not reported: $(cat "$out")"
grep -q "<MessageText>Cannot open $work/absent: No such file or directory</MessageText>" "$out" ||
    fail "no message text"
grep -qE '<TraceInfo><Trace Text="examples/survey/main.cpp\([0-9]+\): QBLSystemError: QBL_THROW: FileTask::check"/>.*FileFigures.cpp.*Input::Input"/></TraceInfo>' "$out" ||
    fail "no back-trace: $(cat "$out")"
status=0
"$survey" >/dev/null 2>&1 || status=$?
[ "$status" = 2 ] || fail "status $status without operands"
echo "$count files agree with wc"
