#!/usr/bin/env bash
# From a drive to an alert, with the programs of the distribution: zebstat, node exporter, Prometheus, the shipped rules.
# usage: test-alerts.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need prometheus prometheus-node-exporter python3 unshare
in_namespaces --net -- "$@"
simulated_machines "$@"
make_host db1 controllers_one 80 # a rebuild takes thirteen seconds
mkdir "$scratch/textfile"
mount --bind "$scratch/textfile" /var/lib/prometheus/node-exporter
python3 -B "$(dirname -- "$0")/alerts.py" "$source" "$hosts/db1" "$scratch" >"$scratch/output" 2>&1 ||
  fail 'the alerts are not what they should be' "$scratch/output"
