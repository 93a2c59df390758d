#!/usr/bin/env bash
# Replays the seeds of every fuzzer, then runs each of them, two at a time, and prints one table. Ends with 1 on a finding.
#   fuzz/run.sh [SECONDS-EACH] [FOLDER-OF-THE-PROGRAMS] [FUZZER...]
# Without the folder the fuzz preset is built first. What was learned stays in the folder (corpus/), and so does what was found
# (findings/, logs/) until it is mended. PROGRAM FINDING replays one.
set -uo pipefail
seconds=${1:-10}
root=$(cd "$(dirname "$0")/.." && pwd)
folder=${2:-$root/build/fuzz/fuzz}
if [ $# -lt 2 ]; then
  (cd "$root" && cmake --preset fuzz && cmake --build --preset fuzz) || exit 1
fi
mkdir -p "$folder"/{corpus,findings,logs}
folder=$(cd "$folder" && pwd)
export UBSAN_OPTIONS=print_stacktrace=1

# The folders with the seeds of a fuzzer; files that the project has anyway serve as seeds too.
seeds_of() {
  echo "$root/fuzz/seeds/$1"
  [ "$1" = scenario_fuzz ] && echo "$root/simulator/scenarios"
  [ "$1" = event_table_fuzz ] && echo "$root/share"
}

# findings_of NAME: the inputs on which it failed.
findings_of() { find "$folder/findings" -name "$1-*"; }

# run_one NAME: the seeds and the earlier findings one by one, then the search. Fails on any finding.
run_one() {
  local name=$1 program=$folder/$1 seeds options
  mapfile -t seeds < <(seeds_of "$name")
  options=(-timeout=30 -report_slow_units=30 "-artifact_prefix=$folder/findings/$name-")
  [ -f "$root/fuzz/$name.dict" ] && options+=("-dict=$root/fuzz/$name.dict")
  mkdir -p "$folder/corpus/$name"
  { find "${seeds[@]}" -maxdepth 1 -type f && findings_of "$name"; } |
    xargs -r -d '\n' "$program" "${options[@]}" >"$folder/logs/$name.seeds" 2>&1 || return 1
  rm -f "$folder/findings/$name-"*
  "$program" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 \
    "$folder/corpus/$name" "${seeds[@]}" >"$folder/logs/$name.log" 2>&1 </dev/null
}

# figure PATTERN FILE: the last number behind the pattern, or "-".
figure() { { grep -oE "$1 *[0-9]+" "$2" 2>/dev/null || echo -; } | tail -n 1 | grep -oE '[0-9]+$|-$'; }

names=("${@:3}")
if [ ${#names[@]} -eq 0 ]; then
  for source in "$root"/fuzz/*_fuzz.cpp; do
    names+=("$(basename "$source" .cpp)")
  done
fi
for name in "${names[@]}"; do
  rm -f "$folder/logs/$name".*
  [ "$(jobs -rp | wc -l)" -ge 2 ] && wait -n
  { run_one "$name" || touch "$folder/logs/$name.failed"; } &
done
wait

failed=()
printf '%-20s %8s %12s %12s %8s %8s\n' target seconds executions per-second coverage findings
for name in "${names[@]}"; do
  log=$folder/logs/$name.log
  found=$(findings_of "$name" | wc -l)
  if [ -e "$folder/logs/$name.failed" ]; then
    failed+=("$folder/logs/$name".*)
    [ "$found" -eq 0 ] && found='?'
  fi
  printf '%-20s %8s %12s %12s %8s %8s\n' "$name" "$seconds" "$(figure number_of_executed_units: "$log")" \
    "$(figure average_exec_per_sec: "$log")" "$(figure cov: "$log")" "$found"
done
[ ${#failed[@]} -eq 0 ] && exit 0
echo "The findings are in $folder/findings, their reports in $folder/logs:"
grep -hE 'ERROR:|runtime error:|does not hold:|No such file' "${failed[@]}" | sort -u | head -n 20
exit 1
