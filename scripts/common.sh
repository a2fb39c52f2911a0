# shellcheck shell=bash
# Sourced by every script here: where the tree is, how to speak, what to make sure of.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
me=$(basename "$0")
# A stray value makes the linker take libraries of the wrong width.
unset LIBRARY_PATH

say() { printf '%s: %s\n' "$me" "$*"; }
die() {
  printf '%s: error: %s\n' "$me" "$*" >&2
  exit 1
}
usage() {
  printf 'usage: %s\n' "$*" >&2
  exit 2
}
# need GROUP...: installs what is missing of these groups of scripts/packages.txt.
need() { "$root/scripts/setup" --quiet "$@" || exit 1; }
