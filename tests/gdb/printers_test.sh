#!/usr/bin/env bash
# printers_test.sh SAMPLE LIBRARY: checks how gdb shows the objects of SAMPLE. gdb loads the printers
# together with the library. Exits with 77 ("skipped") if gdb cannot run the sample.
set -euo pipefail
sample=$1 folder=${2%/*}
skip() { echo "SKIPPED: $*"; exit 77; }
export LC_ALL=C.UTF-8
command -v gdb >/dev/null || skip "gdb not found: run ./dev setup test"
gdb -nx -batch -ex 'python print("yes")' 2>&1 | grep -qx yes || skip "this gdb has no Python"

expressions=(empty inlined wide reference heap back longer list none error coded uncoded messages buffer variants)
commands=()
for each in "${expressions[@]}"; do commands+=(-ex "print $each"); done
output=$(gdb -nx -batch -iex 'set debuginfod enabled off' -iex "add-auto-load-safe-path $folder" \
    -ex 'set print elements 60' -ex 'break lookHere' -ex run -ex up \
    "${commands[@]}" -ex 'echo locks\n' -ex 'info qbl-locks' \
    -ex 'set var tavFirstHeldMutex->heldAfter->heldAfter = tavFirstHeldMutex' -ex 'echo cyclic\n' \
    -ex 'info qbl-locks' "$sample" 2>&1 </dev/null) || true
[[ $output != *ptrace* ]] || skip "this machine does not allow gdb to trace programs"
diff <(sed -n 's/^\$[0-9]* = //p' <<<"$output" | sed 's/([0-9]*): /(LINE): /g') - <<'SHOWN' ||
""
"it's \"inline\""
"Straße 中😀"
"Straße 中😀"
"0123456789012345678901234567890123456789"
"once Unicode"
"012345678901234567890123456789012345678901234567890123456789"...
QBLList of 2 = {"it's \"inline\"", "Straße 中😀"}
QBLList of 0
QBLSystemError, code 2, Fatal: "Cannot open \"x\"." = {at = tests/gdb/Sample.cpp(LINE): QBLSystemError: QBL_RETHROW: , at = tests/gdb/Sample.cpp(LINE): QBLSystemError: QBL_THROW: }
QBLError, code "E<5>", Warning: "text"
QBLError, no code, Fatal: no text
QBLMessageSet of 2 = {QBLMessage 104 of "texts", Error = {[0] = Long 5, [1] = "disk", [2] = Double 0.5}, "plain"}
"bytes 12"
{Long -5, "text", no string, of no type}
SHOWN
    { echo "FAILED; gdb says:"; echo "$output"; exit 1; }
diff <(sed -n '/^locks$/,$ s/0x[0-9a-f]*/M/p' <<<"$output" | sed 's/LWP [0-9]*/LWP/; s/([0-9]*)$/(LINE)/') - <<'HELD' ||
mutex M: held by thread 3 "gdb_sample" (LWP)
mutex M: held by thread 1 "gdb_sample" (LWP), locked at tests/gdb/Sample.cpp(LINE)
mutex M: held by thread 3 "gdb_sample" (LWP)
mutex M: held by thread 1 "gdb_sample" (LWP), locked at tests/gdb/Sample.cpp(LINE)
The list is damaged: it leads back to mutex M.
HELD
    { echo "FAILED; gdb says:"; echo "$output"; exit 1; }
