#!/usr/bin/env bash
# The play that collects reports, with zebcli and zebstat on simulated machines: which states let a host pass, which fail
# it, and what is kept.
# usage: test-collect-play.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need ansible-playbook unshare
in_namespaces -- "$@"
simulated_machines "$@"

make_host fine hot_spares
make_host copying drive_copying_back
make_host warned drives_predict_failure
make_host degraded ld_degraded
make_host offline ld_offline
make_host without controllers_none
inventory >"$scratch/inventory"
if play "$source/share/examples/zebcli-collect.yml" -e zebcli_program=zebcli -e zebstat_program=zebstat; then
  fail 'the play passes' "$scratch/output"
fi

while read -r host failed; do
  [ "$(recap "$host" failed)" = "$failed" ] || fail "$host: failed=$failed is wanted" "$scratch/output"
done <<'EOS'
fine 0
copying 0
warned 0
degraded 1
offline 1
without 1
EOS
for host in fine degraded; do
  for report in '-ldpdinfo -aAll' -ldpdprog; do
    # shellcheck disable=SC2086 # two words
    on_host "$host" zebcli $report | tr -d '\r' >"$scratch/wanted"
    tr -d '\r' <"$scratch/raid-reports/$host${report% *}.txt" | diff -B "$scratch/wanted" - >"$scratch/difference" ||
      fail "the report $report of $host is not kept" "$scratch/difference"
  done
done
says() {
  grep "\[$1\]" -A 8 "$scratch/output" | grep -qF -- "$2" || fail "$1 is not told: $2" "$scratch/output"
}
says degraded "ZEB CRITICAL - controller 0: LD0 'MAIL' (RAID10) is degraded"
says offline "ZEB CRITICAL - controller 0: LD0"
says warned 'ZEB WARNING - controller 0: PD'
says without 'Error - No RAID controller'
