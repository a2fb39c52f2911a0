#!/usr/bin/env bash
# output_test.sh EXPECTED PROGRAM: runs a program in its own directory and compares its output.
set -euo pipefail
expected=$1 program=$2
cd "$(dirname "$program")"
LC_ALL=C diff "$expected" <("$program") || { echo "FAILED: the output of $program differs from $expected"; exit 1; }
