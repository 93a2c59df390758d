#!/usr/bin/env bash
# Debian's own checker of packages finds nothing wrong with ours.
# usage: test-lintian.sh BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need cpack dpkg-shlibdeps file lintian

! grep -q '^ZEB_SANITIZE:BOOL=ON' "$1/CMakeCache.txt" || left_out 'a build with sanitizers is not packaged'
scratch_folder
(cd "$1" && cpack -G DEB -B "$scratch/packages") >"$scratch/output" 2>&1 || fail 'cpack fails' "$scratch/output"
# The tool's home is /opt, with its site files as configuration files; and these packages are not Debian's own.
meant=dir-or-file-in-opt,non-etc-file-marked-as-conffile,initial-upload-closes-no-bugs
lintian --allow-root --tag-display-limit 0 --fail-on warning --suppress-tags "$meant" "$scratch"/packages/*.deb \
  >"$scratch/output" 2>&1 || fail 'lintian complains' "$scratch/output"
