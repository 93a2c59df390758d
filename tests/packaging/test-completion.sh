#!/usr/bin/env bash
# The completion: what it offers for a line, and what the Tab key does with it in an interactive shell.
# usage: test-completion.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"

completion=$1/packaging/zebcli.bash
scratch_folder
# shellcheck source=/dev/null
. "$completion"

# Outside of a real completion there is nothing whose options compopt could set. (That no blank follows "-pd[" shows at
# the prompt below.)
compopt() { :; }

# offers LINE WORD...: completing LINE offers exactly these words.
offers() {
  local line=$1 wanted got
  shift
  wanted=$(printf '%s\n' "$@" | sort)
  COMP_LINE=$line COMP_POINT=${#line} COMPREPLY=()
  _zebcli
  got=$(printf '%s\n' "${COMPREPLY[@]}" | sort)
  [ "$got" = "$wanted" ] || fail "'$line' offers: $got
wanted: $wanted"
}

offers 'zebcli -ld' -lde -ldc -lddel -ldpdinfo -ldsetprop -ldinit -ldcc -ldpdprog
offers 'zebcli -LD' ''
offers 'zebcli -?' '-?'
offers 'zebcli -v ' ''
offers 'zebcli -lde ' ''
offers 'zebcli -nosuch -' ''
offers 'zebcli -ctrlinfo ' -a0 -a1 -a2 -a3 -aAll
offers 'zebcli -ctrlinfo -aA' -aAll
offers 'zebcli -ctrlinfo -a0 ' ''
offers 'zebcli -ctrlinfo -a2,0,' -a2,0,1 -a2,0,3
offers 'zebcli -ldinit -start -' -Lall -a0 -a1 -a2 -a3 -aAll
offers 'zebcli -ldinit -L0,1 -st' -start -stop
offers 'zebcli -ldsetprop -name ' ''
offers 'zebcli -ldsetprop -name -w' ''
offers 'zebcli -ldsetprop -name backup -w' -wt -wb -wbcb
offers 'zebcli -ldsetprop -wt -name backup -w' ''
offers 'zebcli -pdhsp -p' '-pd['
offers 'zebcli -pdhsp -pd[32:' ''
offers 'zebcli -pdhsp -pd[32:5] -g' -ghs
offers 'zebcli -pdhsp -rmv -pd[32:5] -n' -nochk
offers 'zebcli -ctrlpr -e' -enblauto -enblman
offers 'zebcli -ctrlpr -setstarttime ' ''
offers 'zebcli -ctrlpr -setstarttime 0101203000 -s' -start -stop
offers 'zebcli -tstevt -err -' ''

# The companion's: word by word.
# shellcheck source=/dev/null
. "$1/packaging/zebstat.bash"
companion_offers() {
  local line=$1 wanted got
  shift
  read -ra COMP_WORDS <<<"$line"
  [[ $line != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMPREPLY=()
  _zebstat
  wanted=$(printf '%s\n' "$@" | sort)
  got=$(printf '%s\n' "${COMPREPLY[@]}" | sort)
  [ "$got" = "$wanted" ] || fail "'$line' offers: $got
wanted: $wanted"
}
companion_offers 'zebstat w' wait watch
companion_offers 'zebstat -a 0 js' json
companion_offers 'zebstat json --' --pretty --redact --help
companion_offers 'zebstat html --' --output --redact --help
companion_offers 'zebstat check --no-spare-is ' warning critical
companion_offers 'zebstat wait --for re' rebuild reconstruction
companion_offers 'zebstat wait --max ' ''

# types KEYS COMMAND_LINE: KEYS typed at a prompt run the command line. A stand-in for the tool writes down how it was
# called, which also shows that no Tab runs it.
need script
mkdir "$scratch/bin"
printf '#!/bin/sh\necho "zebcli $*" >>"%s/calls"\n' "$scratch" >"$scratch/bin/zebcli"
chmod +x "$scratch/bin/zebcli"
: >"$scratch/wanted"
types() {
  printf '%b\n' "$1" >>"$scratch/keys"
  printf '%s\n' "$2" >>"$scratch/wanted"
}

printf '%s\n' "PATH=$scratch/bin:\$PATH; bind 'set bell-style none'; . '$completion'" >"$scratch/keys"
types 'zebcli -ldpdi\t' 'zebcli -ldpdinfo'
types 'zebcli -ctrla\t-en\t-aA\t' 'zebcli -ctrlautorbld -enbl -aAll'
types 'zebcli -pdl\t-sto\t-p\t32:3] -a0' 'zebcli -pdlocate -stop -pd[32:3] -a0'
types 'zebcli -ldset\t-na\t-w\t -wbc\t' 'zebcli -ldsetprop -name -w -wbcb'
types 'zebcli -ldp\t\tx' 'zebcli -ldpdx'
echo exit >>"$scratch/keys"

timeout 60 script -qec 'bash --norc --noprofile -i' /dev/null <"$scratch/keys" >"$scratch/screen" 2>&1 || true
diff "$scratch/wanted" "$scratch/calls" >"$scratch/difference" ||
  { cat "$scratch/screen"; fail 'the Tab key completes to (>) instead of (<)' "$scratch/difference"; }
