#!/usr/bin/env bash
# Every path of the sources that a document names, or links to, is there.
# usage: test-documents.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"

scratch_folder
cd "$1"
# there DOCUMENT PATH: from the top, beside the document, or behind the folder that its sentence names
there() {
  [ -e "$2" ] || [ -e "$(dirname -- "$1")/$2" ] || [ -e "main/zebcli_cmd_com/$2" ]
}
paths=0
while IFS= read -r document; do
  while IFS= read -r path; do
    paths=$((paths + 1))
    there "$document" "$path" || echo "$document names $path, which is not there" >>"$scratch/complaints"
  done < <(
    # shellcheck disable=SC2016  # the backquotes are those of the documents
    grep -oE '`(\w+/[A-Za-z0-9_./-]+\.(cpp|h|sh|md|csv|json|yml)|(main|commands|storelib|log|console|facts|simulator|share|tests|setup|bench|fuzz|doc)/[A-Za-z0-9_./-]*)`' \
      "$document" | tr -d '`' | sort -u
    grep -oE '\]\([^):#]+' "$document" | cut -c 3- | sort -u
  )
done < <(find . \( -name .git -o -path './build*' \) -prune -o -name '*.md' -print)
[ "$paths" -gt 20 ] || fail "only $paths paths were found"
[ ! -s "$scratch/complaints" ] || fail 'documents name what is not there' "$scratch/complaints"
