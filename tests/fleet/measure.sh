#!/usr/bin/env bash
# Prints what many machines with the metrics of a scenario cost one Prometheus; no test, the figures are for doc/fleet.md.
# usage: measure.sh SOURCE_FOLDER BUILD_FOLDER SCENARIO MACHINES SECONDS   (the scenario "built_in" is that of the simulator)
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need prometheus prometheus-node-exporter python3 unshare
in_namespaces --net -- "$@"
simulated_machines "$1" "$2"
make_host any "$3"
on_host any zebstat metrics >"$scratch/metrics" || true
mkdir "$scratch/textfile"
mount --bind "$scratch/textfile" /var/lib/prometheus/node-exporter
python3 -B "$(dirname -- "$0")/measure.py" "$source" "$scratch" "$scratch/metrics" "$4" "$5"
