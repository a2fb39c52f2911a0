# shellcheck shell=bash
# Sourced by scripts/setup. Installs packages by apt without changing installed packages, and
# unpacks 32-bit libraries that cannot be installed. $log contains the output of the last apt run.
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
apt=(apt-get -q -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -o Dpkg::Use-Pty=0)
how=(install -y --no-install-recommends --no-remove)
updated=0

# Sets $as_root to the command prefix that runs a command as root. Fails if this user cannot
# become root.
find_root() {
  as_root=()
  [ "$(id -u)" != 0 ] || return 0
  command -v sudo >/dev/null || return 1
  as_root=(sudo env "DEBIAN_FRONTEND=$DEBIAN_FRONTEND" "LC_ALL=$LC_ALL")
  sudo -n true 2>/dev/null || { [ -t 0 ] && sudo true; }
}

# The index of a single suite and architecture may be broken for days. The update then fails
# although all other indexes are up to date. Its status is therefore ignored: the next install
# shows whether the packages are available.
apt_update() {
  [ $updated = 0 ] || return 1
  updated=1
  say "reading the package lists"
  "${as_root[@]}" "${apt[@]}" update </dev/null >"$log" 2>&1 || {
    say "warning: apt-get update failed for some package lists, continuing with the others:"
    apt_errors
  }
}
apt_errors() { { sed -n '/unmet dep/,$p' "$log"; grep -E '^(E|Err|W):' "$log"; } | head -n 8 | cut -c1-160 | sed 's/^/    /'; }

# try_install keep|move PACKAGE...: installs packages that are not installed yet. A new package may
# require a certain newer version of an installed package. With "move", apt upgrades the installed
# package too, and the script reports the upgrade. With "keep", the installation fails instead.
try_install() {
  local keep=$1 moved
  shift
  "${apt[@]}" -s "${how[@]}" "$@" </dev/null >"$log" 2>&1 || return 1
  moved=$(awk '$1 == "Inst" && $3 ~ /^\[/ {printf " %s", $2}' "$log")
  if [ -n "$moved" ] && [ "$keep" = keep ]; then
    echo "E: not installed, because apt would upgrade installed packages:$moved" >>"$log"
    return 1
  fi
  [ -z "$moved" ] || say "apt upgrades these packages, because a new package depends on it:$moved"
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

# unpack PACKAGE...: unpacks the files of packages under $deps. Needs no root, and the versions need
# not match the installed packages.
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
