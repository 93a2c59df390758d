#!/usr/bin/env bash
# Prints what the metrics of one machine come to, for the built-in scenario, the largest that is kept and the largest that
# is served; doc/fleet.md says the same.
# usage: test-scale.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need gzip perl unshare
in_namespaces -- "$@"
simulated_machines "$@"
kilobytes() { echo $((($(wc -c) + 500) / 1000)); }

# Columns of the table: scenario, controllers, drives, LDs, series, kB, kB on the wire
"$source/bench/topology.pl" 4 240 64 >"$scratch/largest"
for scenario in built_in maximum_fill "$scratch/largest"; do
  name=${scenario##*/}
  make_host "$name" "$scenario"
  on_host "$name" zebstat metrics >"$scratch/metrics" || [ $? -lt 3 ] || fail "$name has no metrics"
  count() { grep -c "^$1" "$scratch/metrics"; }
  row="| \`$name\` | $(count zeb_controller_info) | $(count zeb_physical_drive_info) | $(count zeb_logical_drive_info)"
  row="$row | $(count zeb_) | $(kilobytes <"$scratch/metrics") | $(gzip -c "$scratch/metrics" | kilobytes) |"
  echo "$row"
  grep -qxF -- "$row" "$source/doc/fleet.md" || fail 'doc/fleet.md has other figures'
done
