#!/usr/bin/env bash
# clang-tidy with the list of .clang-tidy over the tool. clang_tidy.sh BUILD-FOLDER. Returns 77 where it is not installed.
set -u
cd "$(dirname "$0")/../.." || exit 2
command -v clang-tidy >/dev/null || { echo "left out: clang-tidy is not installed"; exit 77; }
# One file at a time: the analyzer mistakes va_lists when it is given several. It looks into calls only so far as its
# shallow mode does, which takes a third of the time.
# The commands are those of g++, whose warnings it need not know.
shallow=(--extra-arg=-Wno-unknown-warning-option
  --extra-arg=-Xclang --extra-arg=-analyzer-config --extra-arg=-Xclang --extra-arg=mode=shallow)
find main commands log console storelib facts zebstat recorder -name '*.cpp' -print0 |
  xargs -0 -n 1 -P 2 clang-tidy -p "$1" --quiet "${shallow[@]}" 2>&1 | grep -v "warnings generated"
exit "${PIPESTATUS[1]}"
