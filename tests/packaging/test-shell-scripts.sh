#!/usr/bin/env bash
# Every shell script of the sources is clean for shellcheck.
# usage: test-shell-scripts.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need shellcheck

cd "$1"
scripts=()
while IFS= read -r -d '' file; do
  case $file in
    *.sh | *.bash) scripts+=("$file") ;;
    *) ! head -c 64 -- "$file" | grep -aqE '^#! ?/(usr/)?bin/(env )?(ba|da)?sh' || scripts+=("$file") ;;
  esac
done < <(find . \( -name .git -o -path './build*' \) -prune -o -type f -size -200k -print0)
[ ${#scripts[@]} -gt 5 ] || fail "only ${#scripts[@]} scripts were found"
shellcheck -x -P SCRIPTDIR "${scripts[@]}"
