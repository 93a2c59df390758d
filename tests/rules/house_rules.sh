#!/usr/bin/env bash
# What must never appear in the sources, and what to write instead. Prints each finding with its place; ends with 1 on any.
set -u
cd "$(dirname "$0")/../.." || exit 2

tool=(main commands log console storelib facts zebstat)
found=0

# rule MESSAGE PATTERN [allowed file ...]: the pattern may stand in no source of the tool but the allowed ones.
rule() {
  local message=$1 pattern=$2 hits
  shift 2
  hits=$(grep -rnEH --include='*.cpp' --include='*.h' -- "$pattern" "${tool[@]}" | grep -vE '^[^:]+:[0-9]+: *//')
  for allowed in "$@"; do
    hits=$(printf '%s\n' "$hits" | grep -v "^$allowed:")
  done
  [ -z "$hits" ] && return
  found=1
  printf '%s:\n%s\n\n' "$message" "$hits"
}

com=main/zebcli_cmd_com
rule 'Unbounded or unchecked C routine; write the bounded one (snprintf, sprintf_s, strcpy_s, from_chars)' \
  '(^|[^[:alnum:]_])(sprintf|vsprintf|strcpy|strncpy|strcat|strncat|gets|atoi|atol|strtok|scanf|sscanf|alloca)\('
rule 'Printing past the message and report routines; use CliLogging or Report' \
  '(^|[^[:alnum:]_])(printf|puts|fputs|putchar|fwrite|vprintf|fprintf)\(|std::c(out|err)' \
  log/zebcli_log.cpp $com/text/report.cpp $com/input/prompts.cpp $com/input/dialogue.cpp commands/zebcli_cmd_ld/progress.cpp commands/zebcli_cmd_pd/hot_spare.cpp
rule 'Another call of the library'"'"'s entry point; send through request_path' \
  '(pfnProcessLibCommand(MR|IR|IR2)|ProcessLibCommandCall) *\(' \
  storelib/dll_mod.cpp storelib/dll_mod.h storelib/common/StoreLib/request_path.cpp \
  storelib/common/StoreLib/controller.cpp storelib/common/StoreLib/passthrough.cpp
rule 'Terminal mode outside its owners; ask through the dialogue' '(^|[^[:alnum:]_])tc[gs]etattr\(' \
  main/terminal.cpp console/xltcli_kbhit.cpp zebstat/terminal.cpp
rule 'Reading standard input outside the dialogue; use Answer' '(^|[^[:alnum:]_])stdin([^[:alnum:]_]|$)' $com/input/dialogue.cpp
rule 'File locks belong to the command log' '(^|[^[:alnum:]_])flock\(' log/raidctl.cpp
rule 'An offset into a record outside its declaration' 'offsetof' storelib/records/wire_record.h
views='A raw count of a wire table; walk the table through its view'
rule "$views" '(\.|->)(spanDepth|pathCount|(image|pendingImage)ComponentCount|freeCount|spareCount|pdCount|ldCount|arrayCount)( *[^ =a-zA-Z]| *==|$)' \
  storelib/records/views.h storelib/common/StoreLib/configuration_write.h 'commands/zebcli_cmd_ld/creation/[^:]*' facts/collect_lds.cpp
rule "$views" 'min[^;]*(\.|->)(count|numDrives)([^a-zA-Z]|$)|(\.|->)(count|numDrives)([^a-zA-Z][^;]*)?; *\+\+' \
  storelib/records/views.h $com/model/lookup.cpp 'commands/zebcli_cmd_ld/creation/[^:]*'
rule 'A label with blanks counted by hand; use report.field("Label", ...), which knows the column' \
  'report\.[a-z]+\("([^"]*  +|%s *): '
rule 'Memory from new; use a standard container or a block with a deleter' '(^|[^[:alnum:]_])new [A-Za-z_]'
rule 'An exception; return a code' '(^|[^[:alnum:]_])(throw|catch|try)([^[:alnum:]_]|$)' zebstat/options.cpp

# The files of a unit speak in its own name.
for unit in ctrl=Ctrl ld=Ld pd=Pd; do
  others=$(grep -rnoE 'k(Com|Ctrl|Ld|Pd)Source' "commands/zebcli_cmd_${unit%=*}" | grep -v "k${unit#*=}Source")
  [ -z "$others" ] && continue
  found=1
  printf 'A record under another unit'"'"'s name:\n%s\n\n' "$others"
done

layers() {
  local message=$1 folder=$2 pattern=$3 hits
  hits=$(grep -rnE --include='*.cpp' --include='*.h' -- "^#include \"($pattern)" "$folder")
  [ -z "$hits" ] && return
  found=1
  printf '%s:\n%s\n\n' "$message" "$hits"
}
layers 'log/ knows nothing of the other parts' log 'main|commands|storelib|console|facts|zebstat|simulator'
layers 'storelib/ knows only log/' storelib 'main|commands|console|facts|zebstat|simulator'
layers 'The shared helpers know no command' main/zebcli_cmd_com 'commands|facts|zebstat|simulator'
layers 'facts/ knows the shared helpers and storelib/' facts 'main/[^z]|commands|console|zebstat|simulator'
layers 'zebstat/ knows facts/ and what that knows' zebstat 'main/(terminal|command_table)|commands|console|simulator'
layers 'zebcli knows nothing of its companion' commands 'facts|zebstat'
layers 'Of the rooms input, text, model, base each knows only those behind it' $com/base "$com/(input|text|model)"
layers 'Of the rooms input, text, model, base each knows only those behind it' $com/model "$com/(input|text)"
layers 'Of the rooms input, text, model, base each knows only those behind it' $com/text "$com/input"
layers 'The recorder knows the records and nothing else of the tool' recorder 'main|commands|console|log/|storelib/[^r]|facts|zebstat|simulator'
layers 'The simulator knows the records and nothing else of the tool' simulator 'main|commands|console|log/|storelib/[^r]'

# Each record states its layout and stands in the list of all.
while read -r record; do
  grep -qE "^ZEB_WIRE_RECORD\($record, " storelib/records/*.h && grep -qE "each\($record\)" storelib/records/all.h && continue
  found=1
  printf 'A record without a layout, or missing in storelib/records/all.h: %s\n' "$record"
done < <(sed -nE 's/^struct (_[A-Z0-9_]+) \{$/\1/p' storelib/records/*.h)

long=$(find "${tool[@]}" -name '*.cpp' -exec awk '
  FNR == 1 { start = 0 }
  !start && /^( {4})?[A-Za-z~].*\(/ && !/[;}]$| = / && !/^ *(namespace|class|struct|enum|union|extern|if|for|while|switch|do|else)/ {
    start = FNR; match($0, /^ */); close_at = sprintf("%" RLENGTH "s}", "") }
  start && index($0, close_at) == 1 { if (FNR - start >= 60) print FILENAME ":" start ": " FNR - start + 1 " lines"; start = 0 }' {} +)
if [ -n "$long" ]; then
  found=1
  printf 'A function of more than 60 lines; give its steps names:\n%s\n\n' "$long"
fi

unfinished=$(grep -rnE --include='*.cpp' --include='*.h' --include='*.sh' '\b(TODO|FIXME|XXX)\b' "${tool[@]}" simulator tests \
  | grep -v house_rules.sh)
if [ -n "$unfinished" ]; then
  found=1
  printf 'Left undone:\n%s\n' "$unfinished"
fi
exit $found
