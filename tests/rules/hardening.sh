#!/usr/bin/env bash
# Reads back from a built program that it is hardened. hardening.sh PROGRAM OBJECT-FOLDER
set -u
program=$1
objects=$2
failed=0

# has WHAT PATTERN TEXT / lacks WHAT PATTERN TEXT
has() { grep -qE -- "$2" <<<"$3" || { echo "not hardened: $1"; failed=1; }; }
lacks() { grep -qE -- "$2" <<<"$3" && { echo "not hardened: $1"; failed=1; }; }

headers=$(readelf --wide --file-header --program-headers "$program")
dynamic=$(readelf --wide --dynamic "$program")
symbols=$(readelf --wide --dyn-syms "$program")
has 'position independent' 'Type: +DYN' "$headers"
has 'relocations read-only' GNU_RELRO "$headers"
has 'bound at start' 'BIND_NOW|Flags:.*NOW' "$dynamic"
has 'no executable stack' 'GNU_STACK.* RW ' "$headers"
has 'stack protector' __stack_chk_fail "$symbols"
has 'fortified calls' '__(snprintf|vsnprintf|printf|fgets|memcpy|memset)_chk' "$symbols"
lacks 'standard library linked in' 'NEEDED.*(libstdc\+\+|libgcc_s)' "$dynamic"
while IFS= read -r object; do
  # The start-up objects of the distribution lack the note, so the linked program cannot carry it; ours must.
  has "control-flow protection in $object" 'IBT, SHSTK' "$(readelf --wide --notes "$object")"
done < <(find "$objects" -name '*.o')
exit $failed
