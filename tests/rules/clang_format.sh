#!/usr/bin/env bash
# clang-format finds nothing to change in any source. Returns 77 where it is not installed.
set -u
cd "$(dirname "$0")/../.." || exit 2
command -v clang-format >/dev/null || { echo "left out: clang-format is not installed"; exit 77; }
find . \( -name .git -o -path './build*' \) -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format --dry-run -Werror
