# shellcheck shell=bash
# Sourced by scripts/setup: installing by apt without touching what is there, and taking
# 32-bit libraries as files where they cannot be installed. $log holds apt's last words.
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
apt=(apt-get -q -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -o Dpkg::Use-Pty=0)
how=(install -y --no-install-recommends --no-remove)
updated=0

# How this user becomes root, in $as_root; fails if there is no way.
find_root() {
  as_root=()
  [ "$(id -u)" != 0 ] || return 0
  command -v sudo >/dev/null || return 1
  as_root=(sudo env "DEBIAN_FRONTEND=$DEBIAN_FRONTEND" "LC_ALL=$LC_ALL")
  sudo -n true 2>/dev/null || { [ -t 0 ] && sudo true; }
}

# The index of one suite and architecture may be broken for days, and the update then fails
# although all others are in place: what can be installed decides, not its status.
apt_update() {
  [ $updated = 0 ] || return 1
  updated=1
  say "reading the package lists"
  "${as_root[@]}" "${apt[@]}" update </dev/null >"$log" 2>&1 || {
    say "some lists could not be read, going on with the others:"
    apt_errors
  }
}
apt_errors() { { sed -n '/unmet dep/,$p' "$log"; grep -E '^(E|Err|W):' "$log"; } | head -n 8 | cut -c1-160 | sed 's/^/    /'; }

# try_install KEEP PACKAGE...: only packages that are not there yet. Some depend on an exact
# version of one that is, and that one then has to move with them: this is said, and with KEEP
# refused.
try_install() {
  local keep=$1 moved
  shift
  "${apt[@]}" -s "${how[@]}" "$@" </dev/null >"$log" 2>&1 || return 1
  moved=$(awk '$1 == "Inst" && $3 ~ /^\[/ {printf " %s", $2}' "$log")
  if [ -n "$moved" ] && [ "$keep" = keep ]; then
    echo "E: refused, because these would change:$moved" >>"$log"
    return 1
  fi
  [ -z "$moved" ] || say "a new package demands a newer version of:$moved"
  say "installing $*"
  "${as_root[@]}" "${apt[@]}" "${how[@]}" "$@" </dev/null >"$log" 2>&1
}
apt_install() { try_install "$@" || { apt_update && try_install "$@"; }; }

add_i386() {
  grep -qx i386 < <(dpkg --print-foreign-architectures) && return
  say "adding the i386 architecture"
  "${as_root[@]}" dpkg --add-architecture i386 || return 1
  updated=0
}

# unpack PACKAGE...: their files under $deps, which needs no root and no agreement of versions.
unpack() {
  local tmp package deb
  tmp=$(mktemp -d) || return 1
  [ "$(id -u)" != 0 ] || apt+=(-o APT::Sandbox::User=root)
  for package in "$@"; do
    say "unpacking $package under ${deps#"$root/"}"
    rm -f "$tmp"/*.deb
    (cd "$tmp" && "${apt[@]}" download "$package") </dev/null >"$log" 2>&1 || break
    mkdir -p "$deps"
    for deb in "$tmp"/*.deb; do dpkg-deb -x "$deb" "$deps" || break 2; done
    : >"$deps/.have-$package"
  done
  rm -rf "$tmp" "${deps:?}/usr/share"
  [ -e "$deps/.have-${!#}" ]
}
