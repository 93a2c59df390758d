#!/usr/bin/env bash
# clang-tidy with the list of .clang-tidy over the tool. clang_tidy.sh BUILD-FOLDER. Returns 77 where it is not installed.
set -u
cd "$(dirname "$0")/../.." || exit 2
command -v clang-tidy >/dev/null || { echo "left out: clang-tidy is not installed"; exit 77; }
find main commands log console storelib -name '*.cpp' -print0 | xargs -0 -n 8 -P 2 clang-tidy -p "$1" --quiet
