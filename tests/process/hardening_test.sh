#!/usr/bin/env bash
# hardening_test.sh LIBRARY TOOL...: checks the protection that the linker and the compiler add.
set -euo pipefail
for file in "$@"; do
  headers=$(readelf -Wl "$file") dynamic=$(readelf -Wd "$file") names=$(readelf -Ws "$file")
  notes=$(readelf -Wn "$file")
  check() { [[ $2 == *$3* ]] || { echo "FAILED: $file: $1"; exit 1; }; }
  check "no read-only relocations" "$headers" GNU_RELRO
  [[ $headers =~ GNU_STACK[^R]*RW\ \  ]] || { echo "FAILED: $file: executable stack"; exit 1; }
  check "symbols are bound lazily" "$dynamic" "NOW"
  check "no stack protector" "$names" __stack_chk_fail
  check "no note of the shadow stack" "$notes" SHSTK
  [[ $dynamic != *TEXTREL* ]] || { echo "FAILED: $file: relocations in the code"; exit 1; }
done
[[ $(readelf -Ws "$1") == *_chk@* ]] || { echo "FAILED: $1 calls no checked function"; exit 1; }
