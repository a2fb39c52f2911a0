#!/usr/bin/env bash
# modern_test.sh FOLDER SUMS: compares the output of the example 'modern' in two languages.
set -euo pipefail
cd "$1"
diff expected.txt <(for locale in C de_DE.UTF-8; do
  LC_ALL=$locale "$2" data 2>&1 >/dev/null | LC_ALL=C sort
  LC_ALL=$locale "$2" data 2>/dev/null && echo "sums reports no problem"
done) || { echo "FAILED: the output of $2 differs from $1/expected.txt"; exit 1; }
