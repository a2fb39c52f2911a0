#!/usr/bin/env bash
# kill.sh PROGRAM: changes the texts, kills the program while it replaces totals.txt, and checks that
# the file is the old table or the new one. It does this 30 times.
set -euo pipefail
broken=0
for i in {1..30}; do
    "$1" texts >old.txt
    echo "line $i" >>texts/log.UTF-8
    "$1" texts >new.txt
    cp old.txt totals.txt
    "$1" texts totals.txt &
    sleep "0.00$((RANDOM % 10))"
    kill -9 $!
    wait $! || true
    cmp -s totals.txt old.txt || cmp -s totals.txt new.txt || broken=$((broken + 1))
done 2>/dev/null
echo "30 kills, $broken broken tables"
