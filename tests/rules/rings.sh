#!/usr/bin/env bash
# No two objects of what is built here call each other in a ring. rings.sh BUILD-FOLDER, of a build file by file
set -u
cd "$1" || exit 2
edges=$(find CMakeFiles zebstat recorder simulator -name '*.o' -exec nm --print-file-name --extern-only {} + | awk '
  { object = $1; sub(/:.*/, "", object); sub(/CMakeFiles\/[^\/]*\.dir\//, "", object); sub(/^[a-z]+\/__\//, "", object)
    sub(/\.cpp\.o$/, "", object)
    kind = $(NF - 1); symbol = $NF }
  kind ~ /^[TDBR]$/ { home[symbol] = object }
  kind == "U" { uses[object, symbol] }
  END {
    for (use in uses) {
      split(use, part, SUBSEP)
      if (part[2] in home && home[part[2]] != part[1])
        print part[1], home[part[2]]
    }
  }' | sort -u)
[ "$(wc -l <<<"$edges")" -gt 500 ] || { echo "no calls found between the objects of $1"; exit 2; }
rings=$(tsort <<<"$edges" 2>&1 >/dev/null | sed 's/^tsort: //; s/^-: input contains a loop:$/A ring of objects:/')
[ -z "$rings" ] && exit 0
printf '%s\n' "$rings"
exit 1
