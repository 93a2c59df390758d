#!/usr/bin/env bash
# clang-tidy with the list of .clang-tidy over the tool. clang_tidy.sh BUILD-FOLDER, of a build that joins its files
# (CMAKE_UNITY_BUILD). Returns 77 where it is not installed.
set -u
cd "$(dirname "$0")/../.." || exit 2
command -v clang-tidy >/dev/null || { echo "left out: clang-tidy is not installed"; exit 77; }
build=$1
joined=$(mktemp -d)
trap 'rm -rf "$joined"' EXIT

# join UNITY-FILE: the files that it includes as one text. The headers are then read once for all of them, and all is looked
# into as it would be alone, which what is included is not.
join() {
  sed -n 's/^#include "\(.*\)"$/\1/p' "$1" | while IFS= read -r file; do
    printf '#line 1 "%s"\n' "$file"
    cat "$file"
  done
}
count=0
while IFS= read -r unity; do
  count=$((count + 1))
  join "$unity" >"$joined/$count.cpp"
done < <(find "$build" -name 'unity_*_cxx.cxx' -not -path '*/simulator/*' -not -path '*/bench/*')
[ "$count" -gt 10 ] || { echo "no joined files in $build"; exit 2; }

# The analyzer looks into calls only so far as its shallow mode does, which takes a third of the time.
settings=(-std=c++20 -D_GLIBCXX_ASSERTIONS "-DZEB_VERSION=\"0\"" -I. "-I$build/zebstat/made"
  -Xclang -analyzer-config -Xclang mode=shallow)
# The largest first. One at a time: the analyzer mistakes va_lists when it is given several.
find "$joined" -name '*.cpp' -printf '%s %p\n' | sort -rn | cut -d ' ' -f 2 |
  xargs -I FILE -P 2 clang-tidy --config-file=.clang-tidy --quiet FILE -- "${settings[@]}" 2>&1 |
  grep -v "warnings generated" | awk -v joined="$joined/" '
    # FOLDER/3.cpp:17:5: error ... becomes FILE:2:5: error ...
    function placed(path, number,    line, at, name, start) {
      while (at < number && (getline line < path) > 0 && ++at)
        if (sub(/^#line 1 /, "", line)) {
          name = line
          start = at
        }
      close(path)
      gsub(/"/, "", name)
      return name ":" number - start
    }
    index($0, joined) == 1 { split($0, part, ":"); $0 = placed(part[1], part[2]) substr($0, length(part[1] part[2]) + 2) }
    { print }'
exit "${PIPESTATUS[3]}"
