#!/usr/bin/env bash
# The man pages render without a warning, by both of the common formatters.
# usage: test-man-page.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need mandoc groff

scratch_folder
for page in "$1"/packaging/*.8; do
  mandoc -Tlint -W warning "$page" >"$scratch/complaints" 2>&1 || true
  groff -mdoc -ww -Tutf8 -z "$page" >>"$scratch/complaints" 2>&1 || true
  [ ! -s "$scratch/complaints" ] || fail "${page##*/} does not render cleanly" "$scratch/complaints"
done
