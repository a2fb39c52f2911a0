#!/usr/bin/env bash
# tutorial_test.sh PAGE FILES BUILD LIBRARY TOOL...: runs the sessions of the tutorial with the
# programs in BUILD. Step 5 needs a gdb that can trace processes and has Python. Step 6 needs
# FILES/build6.
set -euo pipefail
page=$1 files=$2 build=$3 library=$4
shift 4
HOME=$(mktemp -d)
trap 'rm -rf "$HOME"' EXIT
export HOME
ln -s "${library%/*/*}" "$HOME/qbl"
echo "add-auto-load-safe-path ${library%/*}" >"$HOME/.gdbinit"
edit=
[[ $(gdb -batch -ex 'python print("yes")' -ex start "$build/tally4" 2>&1 </dev/null) == *yes*'main ('* ]] ||
    edit='/^## 5/,/^## 6/{/^## 6/!d};'
[ -d "$files/build6" ] || edit+="/^## 6/,\$d"
SESSION_EDIT=$edit "${0%/*}/session_test.sh" "$page" "$files" "$build" "$@"
