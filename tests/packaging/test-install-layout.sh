#!/usr/bin/env bash
# What "cmake --install" lays down under DESTDIR: each file with its kind, permissions and link target.
# usage: test-install-layout.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need cmake

scratch_folder
(umask 077 && DESTDIR=$scratch/root cmake --install "$2") >"$scratch/output" 2>&1 ||
  fail 'cmake --install fails' "$scratch/output"

# The scenarios are not listed one by one: there is at least one, and each that is in the sources.
scenarios=usr/share/zebcli-simulator/scenarios
(cd "$1/simulator/scenarios" && ls -- *.json) >"$scratch/wanted"
ls "$scratch/root/$scenarios" >"$scratch/got"
cmp -s "$scratch/wanted" "$scratch/got" || fail 'the scenarios are not those of the sources' "$scratch/got"

# The folders that every system has are left out.
find "$scratch/root" -mindepth 1 ! -path "*/$scenarios/*" -printf '%y %04m %P %l\n' | sed 's/ $//' |
  grep -vE '^d .* (opt|usr|usr/(lib|sbin|share)|usr/lib/systemd(/system(-preset)?)?|usr/share/(doc|(man|bash-completion)(/[a-z0-9]+)?))$' |
  LC_ALL=C sort -k 3 >"$scratch/layout"
diff "$(dirname -- "$0")/layout.txt" "$scratch/layout" >"$scratch/difference" ||
  fail 'the layout differs: wanted (<), installed (>)' "$scratch/difference"
