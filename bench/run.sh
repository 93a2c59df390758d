#!/usr/bin/env bash
# Measures zebcli against its floor and prints one table, each figure with its bound. Takes some minutes, and a machine
# that does nothing else. run.sh [BUILD-FOLDER]. Needs valgrind and strace.
# shellcheck source-path=SCRIPTDIR source=support.sh
. "$(dirname "$0")/support.sh" "$@"

latency=1000 # microseconds a call
reports=(-ctrlinfo -ldpdinfo -pdinfo)
same_facts=("${reports[@]}" -ldpdprog -cbinfo -enclinfo) # that hold what zebstat json tells
missed=0

heading() { printf '| %-78s | %8s | %6s |\n' "$1" "$2" "$3"; }

# row WHAT FIGURE BOUND: BOUND is "=N" for exactly N, else the most that the figure may be; "-" for none.
row() {
  local note=
  case $3 in
    -) ;;
    =*) [ "$2" = "${3#=}" ] || note=' MISSED' ;;
    *) [ "$(compute "$2 > $3" %d)" = 0 ] || note=' MISSED' ;;
  esac
  [ -z "$note" ] || missed=1
  heading "$1" "$2" "$3$note"
}

# measure COUNT PROGRAM ARGUMENT...: medians of zebcli and the floor by turns, into wall, cpu and peak, [0] and [1].
measure() {
  local medians
  medians=$("${clean[@]}" "${extra[@]}" "$build/bench/bench_measure" "$1" "$log" "${@:2}")
  mapfile -t wall < <(cut -d' ' -f1 <<<"$medians")
  mapfile -t cpu < <(cut -d' ' -f2 <<<"$medians")
  mapfile -t peak < <(cut -d' ' -f3 <<<"$medians")
}

# compare COUNT ARGUMENT...: the same for a command and its floor.
compare() {
  local count=$1
  shift
  rm -f "$log"
  record "$zebcli" "$@"
  rm -f "$log"
  measure "$count" "$zebcli" "$@" -- "$floor" "$log" recording
}

# The requests that a report must send: C controllers of D drives, L LDs and A arrays without enclosures.
requests_due() {
  local c=4 d=240 l=64 a=8 once=0 more=0
  case $1 in
    -ctrlinfo) more=6 ;; # six records of the controller
    -ldpdinfo) once=1 ;; # which kind of controller it is
    -pdinfo) more=$((4 * d)) ;; # two log pages of each drive, each behind a look-up
  esac
  # Start, end and enclosure list; then of each controller five records, the drives behind a look-up each, LDs, arrays,
  # and what is the command's own.
  echo $((3 + once + c * (5 + 2 * d + l + a + more)))
}

largest() {
  "$bench/topology.pl" 4 240 64 >largest.json
  extra=(ZEBSIM_SCENARIO=largest.json)
  local report sent
  for report in "${reports[@]}"; do
    extra+=("ZEBSIM_LATENCY_US=0")
    record "$zebcli" "$report" -aAll
    sent=$(wc -l <trace)
    row "$report, largest topology: requests" "$sent" "=$(requests_due "$report")"
    extra[-1]="ZEBSIM_LATENCY_US=$latency"
    measure 3 "$zebcli" "$report" -aAll -- "$floor" "$log" recording
    row "$report, 1 ms a call: wall time / (requests x latency)" "$(compute "${wall[0]} / ($sent * $latency)" %.3f)" $most_latency
    row "  the floor's" "$(compute "${wall[1]} / ($sent * $latency)" %.3f)" -
    unset 'extra[-1]'
    compare 21 "$report" -aAll
    row "$report, instant: processor time - floor, ms" "$(compute "(${cpu[0]} - ${cpu[1]}) / 1000")" $most_report_cpu
  done
  extra=()
}

# zebstat on the same topology.
companion() {
  local report sent told=0
  extra=(ZEBSIM_SCENARIO=largest.json)
  for report in "${same_facts[@]}"; do
    record "$zebcli" "$report" -aAll
    told=$((told + $(wc -l <trace)))
  done
  record "$zebstat" json
  sent=$(wc -l <trace)
  row 'zebstat json, largest topology: requests' "$sent" $most_companion_requests
  row "  those of zebcli's ${#same_facts[@]} reports with the same facts" $told -
  extra+=("ZEBSIM_LATENCY_US=$latency")
  measure 3 "$zebstat" json -- "$floor" "$log" recording
  row 'zebstat json, 1 ms a call: wall time / (requests x latency)' \
    "$(compute "${wall[0]} / ($sent * $latency)" %.3f)" $most_latency
  row "  the floor's" "$(compute "${wall[1]} / ($sent * $latency)" %.3f)" -
  unset 'extra[-1]'
  measure 21 "$zebstat" json -- "$floor" "$log" recording
  row 'zebstat json, instant: processor time - floor, ms' "$(compute "(${cpu[0]} - ${cpu[1]}) / 1000")" \
    $most_companion_cpu
  extra=()
  measure 1000 "$zebstat" --version -- "$build/bench/bench_empty"
  row "zebstat --version, start to exit: wall time / an empty C++ program's" "$(compute "${wall[0]} / ${wall[1]}")" \
    $most_companion_start
}

# One easy creation from the first pattern, with every drive of the controller free.
creation() {
  [ -d /opt/quorvel/zeb ] || { mount -t tmpfs site /opt && mkdir -p /opt/quorvel/zeb; }
  cp "$bench/../share/confpat1.csv" /opt/quorvel/zeb
  echo '{"controllers": [{"maxPds": 240, "cacheBackup": {}, "drives": [{"repeat": 240}]}]}' >free.json
  printf '1\n1\ny\n' >answers
  extra=(ZEBSIM_SCENARIO=free.json BENCH_ANSWERS=answers)
  "${clean[@]}" "${extra[@]}" "$zebcli" -lde <answers >out
  grep -q 'has been created' out || { echo 'the creation to measure failed' >&2 && cat out >&2 && exit 1; }
  measure 21 "$zebcli" -lde
  row '-lde, 240 free drives: processor time, ms' "$(compute "${cpu[0]} / 1000")" $most_creation_cpu
  extra=()
}

# For each command a line of its own in built_in: the figures, then the command.
built_in() {
  local args words tool base ours theirs further
  while IFS= read -r args; do
    read -ra words <<<"$args"
    compare 1000 "${words[@]}"
    read -ra tool <<<"$(instructions "$zebcli" "${words[@]}")"
    read -ra base <<<"$(instructions "$floor" "$log" recording)"
    ours=$(system_calls "$zebcli" "${words[@]}")
    further=$(compute "$(records) - 2" %d)
    theirs=$(system_calls "$floor" "$log" recording)
    echo "$(compute "${tool[0]} / ${base[0]}") $(compute "${tool[1]} / ${base[1]}") $((ours - theirs))" \
      "$((ours - theirs - calls_per_record * further)) $(compute "${wall[0]} / ${wall[1]}") $args"
  done < <(commands) >built_in
  "$bench/topology.pl" 4 240 64 >largest.json
  extra=(ZEBSIM_SCENARIO=largest.json)
  while IFS= read -r args; do
    read -ra words <<<"$args"
    compare 5 "${words[@]}"
    echo "$(compute "(${peak[0]} - ${peak[1]}) / 1024") $args"
  done < <(commands) >memory
  extra=()
}

# worst WHAT FILE COLUMN FIRST-WORD-OF-THE-COMMAND BOUND: the row of the command with the largest figure.
worst() {
  local line
  line=$(sort -k "$3,$3" -g "$2" | tail -n 1)
  row "$1 (worst: $(cut -d' ' -f"$4-" <<<"$line"))" "$(cut -d' ' -f"$3" <<<"$line")" "$5"
}

# own CONTROLLERS DRIVES REPORT: instructions of the report outside library, look-ups and start.
own() {
  "$bench/topology.pl" "$1" "$2" 64 >grown.json
  extra=(ZEBSIM_SCENARIO=grown.json)
  local counted
  read -ra counted <<<"$(instructions -c "$zebcli" "$3" -aAll)"
  extra=()
  echo $((counted[2] - start))
}

growth() {
  local start=0 report whole counted
  read -ra counted <<<"$(instructions "$zebcli" -nonsense)"
  start=${counted[1]}
  for report in "${reports[@]}"; do
    whole=$(own 4 240 "$report")
    row "$report: growth of own time, 1 to 4 controllers, exponent" \
      "$(compute "log($whole / $(own 1 240 "$report")) / log(4)")" $most_growth
    row "$report: growth of own time, 24 to 240 drives, exponent" \
      "$(compute "log($whole / $(own 4 24 "$report")) / log(10)")" $most_growth
  done
}

command_log() {
  local ours theirs
  rm -f "$log"
  measure 1000 "$zebcli" -nonsense -- "$floor" "$log"
  row 'refused command word, start to exit: wall time / floor' "$(compute "${wall[0]} / ${wall[1]}")" $most_refusal
  ours=${wall[0]} theirs=${wall[1]}
  perl -e 'printf "%-199s\n", $_ for ("[2026/01/01 00:00:00.000] pid=12345") x 9999, "<END>"' >"$log"
  measure 1000 "$zebcli" -nonsense -- "$floor" -ring "$log"
  row 'first positioning in a full ring: time / reading the file once' \
    "$(compute "(${wall[0]} - $ours) / (${wall[1]} - $theirs)")" $most_positioning
  system_calls "$zebcli" -nonsense >/dev/null
  # What is between taking and leaving the lock, and both of these, for the second of the two records.
  row 'system calls per log record' "$(grep -n 'flock(' calls | tail -n 2 | cut -d: -f1 | paste -sd' ' |
    awk '{ print $2 - $1 + 1 }')" $most_calls_per_record
}

heading 'what' 'figure' 'bound'
heading "$(printf -- '-%.0s' {1..78})" '-------:' '-----:'
largest
companion
creation
built_in
worst 'each command: instructions / floor' built_in 1 6 $most_instructions
worst '  with the library taken out of both' built_in 2 6 $most_own_of_all
worst 'each command: system calls - floor, as many log records' built_in 4 6 $most_calls
worst '  with all log records' built_in 3 6 -
worst 'each command: wall time / floor, median of 1,000' built_in 5 6 $most_wall
worst 'each command, 4 controllers: peak resident memory - floor, MB' memory 1 2 $most_memory
growth
command_log
if [ -n "${ZEB_BENCH_VERBOSE:-}" ]; then
  echo
  echo 'instructions/floor, the same without the library, calls-floor, the same with two records, wall/floor, command:'
  cat built_in
fi
exit $missed
