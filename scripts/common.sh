# shellcheck shell=bash
# Sourced by the scripts here: the path of the tree, messages, and installing packages.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
me=$(basename "$0")
# If the user has set LIBRARY_PATH, the linker may pick libraries of the wrong width.
unset LIBRARY_PATH

say() { printf '%s: %s\n' "$me" "$*"; }
die() {
  printf '%s: error: %s\n' "$me" "$*" >&2
  exit 1
}
# usage MISTAKE USAGE: says what is wrong with the command line, and how the command is used.
usage() {
  printf '%s: error: %s\nusage: %s\n' "$me" "$1" "$2" >&2
  exit 2
}
# need GROUP...: installs the missing packages of these groups of scripts/packages.txt.
need() { "$root/scripts/setup" --quiet "$@" || exit 1; }
