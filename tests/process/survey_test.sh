#!/usr/bin/env bash
# survey_test.sh SURVEY TREE: compares the figures of the example 'survey' with the figures of wc, and
# checks the example's report of unreadable files.
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

"$survey" -a "$work" "$tree/TavThread" "$tree/QBLCore" >"$out" || fail "survey exits with $?"
find "$work/a b" "$tree/TavThread" "$tree/QBLCore" -type f ! -name '.*' | sort >"$top/files"
count=0
while IFS= read -r file; do
    read -r lines words bytes _ <<<"$(wc -lwc "$file")"
    row=$(awk -v f="  $file" 'substr($0, length($0) - length(f) + 1) == f' "$out" | tail -n 1)
    read -r l w b _ <<<"$row"
    [ "$lines $words $bytes" = "$l $w $b" ] || fail "$file: wc counts $lines $words $bytes, survey prints: $row"
    count=$((count + 1))
done <"$top/files"
[ "$count" -gt 50 ] || fail "only $count files were compared, expected more than 50"
grep -q "total of $count files" "$out" || fail "survey counts another number of files than find ($count)"
read -r _ _ _ longest _ <<<"$(grep -F 'one-line' "$out")"
[ "$longest" = 300000 ] || fail "longest line is $longest, expected 300000"

status=0
"$survey" "$work/a b/numbers" "$work/absent" "$work/a b/empty/x" >"$out" || status=$?
[ "$status" = 1 ] || fail "survey exits with $status for unreadable files, expected 1"
[ "$(grep -c '<Exception Name="QBLSystemError" Error="2[0]*" Severity="Fatal">' "$out")" = 2 ] ||
    fail "survey does not report two QBLSystemErrors: $(cat "$out")"
grep -q "<MessageText>Cannot open $work/absent: No such file or directory</MessageText>" "$out" ||
    fail "survey does not report that $work/absent is missing"
grep -qE '<TraceInfo><Trace Text="examples/survey/main.cpp\([0-9]+\): QBLSystemError: QBL_THROW: FileTask::check"/>.*FileFigures.cpp.*Input::Input"/></TraceInfo>' "$out" ||
    fail "survey prints no back-trace: $(cat "$out")"
status=0
"$survey" >/dev/null 2>&1 || status=$?
[ "$status" = 2 ] || fail "survey exits with $status without operands, expected 2"
echo "$count files agree with wc"
