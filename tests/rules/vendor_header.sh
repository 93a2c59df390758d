#!/usr/bin/env bash
# The comparison with a vendor's header accepts one that agrees and names the record that does not.
set -u
cd "$(dirname "$0")/../.." || exit 2
headers=tests/rules/vendor_header
failed=0

# compare COMPILER HEADER: the comparison's messages; its status.
compare() {
  "$1" -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I. "-DZEB_VENDOR_HEADER=\"$headers/$2\"" \
    tests/rules/vendor_header/compare.cpp 2>&1
}
# refused COMPILER HEADER MESSAGE: the only complaint about the header is this one.
refused() {
  local said
  if said=$(compare "$1" "$2"); then
    said='accepted it'
  elif [ "$(grep -c 'error:' <<<"$said")" = 1 ] && grep -q "error:.*$3" <<<"$said"; then
    return
  fi
  printf '%s, %s: wanted "%s", but the compiler\n%s\n' "$1" "$2" "$3" "$said"
  failed=1
}

for compiler in g++ clang++; do
  command -v "$compiler" >/dev/null || continue
  said=$(compare "$compiler" agrees.h) || { printf '%s, agrees.h:\n%s\n' "$compiler" "$said"; failed=1; }
  refused "$compiler" differs.h '_SL_LIB_VER_T has another size'
  refused "$compiler" foreign.h 'declares none of the records'
done
exit $failed
