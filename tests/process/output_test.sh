#!/usr/bin/env bash
# output_test.sh EXPECTED PROGRAM: a program that is started where it lies prints what is expected.
set -euo pipefail
expected=$1 program=$2
cd "$(dirname "$program")"
LC_ALL=C diff "$expected" <("$program") || { echo "FAILED: other output than in $expected"; exit 1; }
