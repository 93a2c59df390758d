#!/usr/bin/env bash
# Every row of the command table has its entry in the man page and in the completion, and neither has one more; every
# option of the usage text stands in both.
# usage: test-documented-commands.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"

source_folder=$1
scratch_folder
# shellcheck source=/dev/null
. "$source_folder/packaging/zebcli.bash"

# The words of the command table, one a line.
table_words() {
  sed -nE 's/^[[:space:]]*\{"([^"]+)",.*CliCmdExec.*/\1/p' "$source_folder/main/command_table.cpp"
}

# The heads of the outermost lists of the man page's section COMMANDS: a command word, then its options.
man_page_heads() {
  awk '/^\.Sh / { inside = ($2 == "COMMANDS"); next }
       inside && /^\.Bl / { ++depth }
       inside && /^\.El/ { --depth }
       inside && depth == 1 && sub(/^\.It Fl /, "") { sub(/^\\&/, ""); print }' "$source_folder/packaging/zebcli.8"
}

# The synopsis of the man page, each form on one line, with a blank around each word.
man_page_synopsis() {
  awk '/^\.Sh / { inside = ($2 == "SYNOPSIS") }
       inside && /^\.Nm/ { printf "\n " }
       inside && !/^\.Nm/ { printf "%s ", $0 }' "$source_folder/packaging/zebcli.8"
}

# The option words "-xyz" of the usage text, one a line behind its command word: "ldinit start". The text stands in the
# sources as string literals, of which one line may take several.
usage_options() {
  grep -rlZ '"zebcli -' "$source_folder/main" "$source_folder/commands" | xargs -0 -r grep -hoE '"([^"\\]|\\.)*"' |
    sed 's/^"//; s/"$//' | tr -d '\n' | sed 's/\\n/\n/g; s/zebcli -/\n&/g' | tr '{}|[]' ' ' |
    awk '$1 == "zebcli" {
      for (i = 3; i <= NF; ++i) if ($i ~ /^-[a-z]+$/) print substr($2, 2), substr($i, 2)
    }' | sort -u
}

# shellcheck disable=SC2154 # the completion has just made _zebcli_commands
printf "%s\n" "${!_zebcli_commands[@]}" | sort >"$scratch/completion"
table_words | sort >"$scratch/table"
[ -s "$scratch/table" ] || fail 'no row of the command table could be read'
man_page_heads | awk '{ print $1 }' | sort -u >"$scratch/man-page"
for where in man-page completion; do
  diff "$scratch/table" "$scratch/$where" >"$scratch/difference" ||
    fail "command table (<) and $where (>) differ" "$scratch/difference"
done

usage_options >"$scratch/options"
[ -s "$scratch/options" ] || fail 'no option of the usage text could be read'
while read -r command option; do
  row=${_zebcli_commands[$command]-}
  [ -n "$row" ] || continue # a command without a function: its options do nothing
  case " ${row//|/ } " in
    *" -$option "*) ;;
    *) fail "the completion of -$command lacks -$option" ;;
  esac
  man_page_synopsis | grep " $command " | grep -q " $option " ||
    fail "the synopsis of -$command in the man page lacks -$option"
done <"$scratch/options"
