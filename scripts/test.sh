#!/usr/bin/env bash
# Installs what is missing, builds, and runs every check.
#
#   scripts/test.sh          everything: formatting, static analysis, all tests in the release build, with address and
#                            undefined-behaviour sanitizers, and with the thread sanitizer
#   scripts/test.sh --quick  all tests in the release build only
set -euo pipefail
cd "$(dirname "$0")/.."

quick=no
case "${1:-}" in
  "") ;;
  --quick) quick=yes ;;
  *) echo "usage: scripts/test.sh [--quick]" >&2; exit 2 ;;
esac

step() { printf '\n== %s (%d min)\n' "$1" $((SECONDS / 60)); }

# build_and_test <preset> [ctest options]
# Most tests wait for something, so that twice as many run as there are processors.
build_and_test() {
  local preset=$1
  shift
  step "$preset: build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  step "$preset: tests"
  ctest --preset "$preset" -j $((2 * $(nproc))) --no-tests=error "$@"
}

step "packages"
scripts/install-deps.sh

if [[ $quick == no ]]; then
  step "formatting"
  git ls-files '*.h' '*.c' '*.cpp' | xargs clang-format-14 --dry-run -Werror
fi

# The demo must show what it promises in under 15 lines, and leave no camera running.
check_demo() {
  local before lines images
  step "demo"
  before=$(pgrep -c -f arv-fake-gv-camera || true)
  scripts/demo.sh | tee build/demo.txt
  lines=$(wc -l <build/demo.txt)
  images=$(find build/demo -name '*.png' | wc -l)
  [[ $lines -lt 15 && $images -eq 22 ]] || { echo "the demo wrote $lines lines and $images images" >&2; exit 1; }
  [[ $(pgrep -c -f arv-fake-gv-camera || true) -le $before ]] || { echo "the demo left a camera running" >&2; exit 1; }
}

build_and_test release
check_demo

if [[ $quick == no ]]; then
  build_and_test asan
  # The libraries below the real producer are not instrumented, so the thread sanitizer cannot follow them: the tests over
  # the whole chain run without it, everything of ours runs with it.
  build_and_test tsan -LE integration

  step "static analysis"
  git ls-files 'src/*.cpp' 'platform/*.cpp' 'tools/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy-14 --quiet -p build/asan 2>/dev/null

  step "all checks passed"
fi
