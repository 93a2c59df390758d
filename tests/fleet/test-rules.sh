#!/usr/bin/env bash
# The alert rules are well formed, every alert fires when and only when it should, and none is without its test.
# usage: test-rules.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need promtool

scratch_folder
rules=$1/share/zebstat/prometheus/zeb.rules.yml
tests=$1/tests/fleet/zeb.rules.test.yml
promtool check rules "$rules" >"$scratch/output" 2>&1 || fail 'the rules are not well formed' "$scratch/output"
promtool test rules "$tests" >"$scratch/output" 2>&1 || fail 'the rules do not what they should' "$scratch/output"

# Each alert is seen firing (a row of its own with exp_alerts), seen quiet (a row without), and held back by maintenance.
alerts=0
while IFS= read -r alert; do
  alerts=$((alerts + 1))
  grep -q -- "- alertname: $alert\b" "$tests" || fail "$alert is never seen firing"
  grep -q -- "- {alertname: $alert, eval_time: [0-9]*m}" "$tests" || fail "$alert is never seen quiet"
  grep -q -- "alertname=\"$alert\"}'" "$tests" || fail "$alert is not tried in maintenance"
done < <(sed -nE 's/^ *- alert: //p' "$rules")
[ "$alerts" -gt 10 ] || fail "only $alerts alerts were found"

# Metrics that the rules ask for are those that zebstat, the exporter and Prometheus have.
grep -v '^ *#' "$rules" | grep -oE '\b(zeb|node)_[a-z_]+' | sort -u | while IFS= read -r metric; do
  case $metric in
    zeb_maintenance_until_timestamp_seconds | zeb_maintenance | node_textfile_mtime_seconds) continue ;;
  esac
  grep -rqF "\"$metric\"" "$1/zebstat" || fail "the rules ask for $metric, which zebstat does not write"
done

# doc/fleet.md has each alert with its severity and its patience.
awk '/- alert:/ { alert = $3; patience = "at once" } / for: / { patience = $2; sub("m$", " min", patience); sub("h$", " h", patience) }
  / severity: / { print "| `" alert "` | " $2 " | " patience " |" }' "$rules" | sort >"$scratch/wanted"
sed -nE 's/^(\| `Zeb[^|]*\|[^|]*\|[^|]*\|).*/\1/p' "$1/doc/fleet.md" | sort >"$scratch/got"
diff "$scratch/wanted" "$scratch/got" >"$scratch/difference" || fail 'doc/fleet.md (>) has other alerts (<)' "$scratch/difference"

# A drive is hot where zebstat says so.
limits=$({ LD_LIBRARY_PATH=$2/simulator "$2/zebstat/zebstat" check || true; } | grep -oE "temperature=[0-9;]*" | cut -d ";" -f 2-)
[ "$(sed -nE 's/.*celsius > ([0-9]+) .*/\1/p' "$rules" | paste -sd ';')" = "$limits" ] || fail "zebstat's temperatures are $limits"
