# shellcheck shell=bash
# Sourced. Functions that configure, build and test the presets of CMakePresets.json.

# Prints facts about the machine that a CMake cache stores and does not check again.
surroundings() {
  command -v ccache
  find "$root/.deps/i386" -maxdepth 1 -name '.have-*' 2>/dev/null | sort
}

# configure PRESET: configures a preset; prints nothing unless this fails. Discards the CMake cache if
# the facts that surroundings() prints have changed. Also discards the cache if configuring fails,
# because the cache may record a package as missing that scripts/setup has installed since then.
configure() {
  local log=$root/build/$1/configure.log seen=$root/build/$1/surroundings how=()
  mkdir -p "$root/build/$1"
  [ ! -e "$seen" ] || [ "$(surroundings)" = "$(cat "$seen")" ] || how=(--fresh)
  surroundings >"$seen"
  (cd "$root" && cmake "${how[@]}" --preset "$1") >"$log" 2>&1 && return
  (cd "$root" && cmake --fresh --preset "$1") >"$log" 2>&1 && return
  tail -n 30 "$log" >&2
  die "cannot configure preset $1: see above; the complete log is $log"
}

# build PRESET [TARGET...]: configures and builds. The build also runs programs that it has built.
build() {
  local preset=$1 run=()
  shift
  [[ $preset != *tsan ]] || run=(without_wide_aslr)
  configure "$preset"
  (cd "$root" && "${run[@]}" cmake --build --preset "$preset" -j "$(nproc)" ${1:+--target "$@"})
}

# This compiler's ThreadSanitizer supports address layouts with up to 28 random bits. Runs a command
# without address randomization if the kernel uses more random bits.
without_wide_aslr() {
  local bits
  bits=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null) || bits=28
  if [ "$bits" -gt 28 ] && setarch -R true 2>/dev/null; then setarch -R "$@"; else "$@"; fi
}

# run_tests PRESET [CTEST-ARGUMENT...]: runs the tests and writes build/PRESET/tests.xml.
run_tests() {
  local preset=$1 run=()
  shift
  [[ $preset != *tsan ]] || run=(without_wide_aslr)
  rm -f "$root/build/$preset/tests.xml"
  (cd "$root" && "${run[@]}" ctest --preset "$preset" -j "$(nproc)" \
    --output-junit "$root/build/$preset/tests.xml" "$@")
}

# test_counts PRESET: prints "N of M tests passed", and the number of skipped tests unless it is 0.
test_counts() {
  local xml=$root/build/$1/tests.xml all failed skipped
  [ -s "$xml" ] || { echo "the tests did not run"; return; }
  all=$(junit_count tests "$xml")
  failed=$(junit_count failures "$xml")
  skipped=$(($(junit_count skipped "$xml") + $(junit_count disabled "$xml")))
  echo "$((all - failed - skipped)) of $all tests passed$([ $skipped = 0 ] || echo ", $skipped skipped")"
}
junit_count() { grep -m1 -oE "\b$1=\"[0-9]+\"" "$2" | tr -dc '0-9'; }
