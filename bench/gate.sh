#!/usr/bin/env bash
# Holds the instructions and the system calls of each command against those of its floor, and the requests of the companion
# against their bound; all repeat from run to run.
# Prints what misses its bound, or all of it with ZEB_BENCH_VERBOSE=1, and ends with 1 when anything does.
# gate.sh [BUILD-FOLDER]. Needs valgrind and strace.
# shellcheck source-path=SCRIPTDIR source=support.sh
. "$(dirname "$0")/support.sh" "$@"

# check NAME FIGURE BOUND
check() {
  local verdict=
  [ "$(compute "$2 > $3" %d)" = 0 ] || verdict=MISSED
  if [ -n "$verdict" ] || [ -n "${ZEB_BENCH_VERBOSE:-}" ]; then
    printf '%-48s %6s, bound %4s %s\n' "$1" "$2" "$3" "$verdict"
  fi
}

# gate NUMBER COMMAND-LINE: what is to be said about it, in result.NUMBER.
gate() {
  local folder=$1 words tool base tool_calls base_calls further text
  read -ra words <<<"$2"
  mkdir "$folder"
  cd "$folder"
  record "$zebcli" "${words[@]}"
  read -ra tool <<<"$(instructions "$zebcli" "${words[@]}")"
  read -ra base <<<"$(instructions "$floor" "$log" recording)"
  text=$(compute "$per_byte * $(wc -c <out) / ${base[1]}")
  tool_calls=$(system_calls "$zebcli" "${words[@]}")
  further=$(compute "$(records) - $usual_records" %d)
  base_calls=$(system_calls "$floor" "$log" recording)
  {
    check "$2: instructions / floor" "$(compute "${tool[0]} / ${base[0]}")" "$most_instructions"
    check "$2: without the library" "$(compute "${tool[1]} / ${base[1]}")" \
      "$(compute "$most_own + $text" %.1f)"
    # The floor leaves two records. A command with more targets, one that fails or changes something, leaves further
    # ones, and what each costs is set aside.
    check "$2: system calls - floor" $((tool_calls - base_calls)) \
      $((most_calls + (further > 0 ? further : 0) * calls_per_record))
  } >"../result.$folder"
}

# The same for the companion: how many requests it sends on the largest topology.
gate_companion() {
  mkdir companion
  cd companion
  "$bench/topology.pl" 4 240 64 >largest.json
  extra=(ZEBSIM_SCENARIO=largest.json)
  record "$zebstat" json
  check 'zebstat json, largest topology: requests' "$(wc -l <trace)" $most_companion_requests >../result.companion
}

(gate_companion) &
number=100
while IFS= read -r args; do
  [ "$(jobs -pr | wc -l)" -lt "$(nproc)" ] || wait -n
  number=$((number + 1))
  (gate $number "$args") &
done < <(commands)
wait
cat result.*
[ "$(find . -maxdepth 1 -name 'result.*' | wc -l)" -eq $(($(commands | wc -l) + 1)) ] || { echo "a measurement failed"; exit 1; }
! grep -q MISSED result.*
