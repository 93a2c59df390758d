#!/usr/bin/env bash
# What the recorder costs: the further wall time of a report on the largest topology with the recorder's library in between,
# and with a recording, for each request. recorder.sh [BUILD-FOLDER]; ends with 1 above the bound.
# shellcheck source-path=SCRIPTDIR source=support.sh
. "$(dirname "$0")/support.sh" "$@"

"$bench/topology.pl" 4 240 64 >largest.json
extra+=(ZEBSIM_SCENARIO=largest.json)
record "$zebcli" -pdinfo -aAll
requests=$(wc -l <trace)
between="$build/recorder/lib/zebcli/recorder"
real="$build/simulator/libstorelib.so"

read -r alone _ < <("${clean[@]}" "${extra[@]}" "$build/bench/bench_measure" 15 $log "$zebcli" -pdinfo -aAll)
read -r passed _ < <("${clean[@]}" "${extra[@]}" "LD_LIBRARY_PATH=$between" "ZEBREC_LIBRARY=$real" \
  "$build/bench/bench_measure" 15 $log "$zebcli" -pdinfo -aAll)
each=$(compute "($passed - $alone) / $requests" %.2f)
printf 'a forwarded request: %s us (%s requests, %s us alone, %s us in between), bound %s\n' \
  "$each" "$requests" "$alone" "$passed" "$most_forwarding"

start=$(date +%s%N)
"${clean[@]}" "${extra[@]}" "$build/recorder/sbin/zebcli-record" recording.file --library "$real" -- \
  "$zebcli" -pdinfo -aAll >/dev/null
printf 'a recorded request: %s us, %s bytes in the file\n' \
  "$(compute "(($(date +%s%N) - $start) / 1000 - $alone) / $requests" %.2f)" "$(wc -c <recording.file)"
[ "$(compute "$each > $most_forwarding" %d)" = 0 ]
