#!/usr/bin/env bash
# The fact and the play for Ansible on twenty machines: the play shows what zebstat says of each, fails for those with a
# critical finding and no other, and a second run changes nothing.
# usage: test-health-play.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need ansible-playbook jq unshare
in_namespaces -- "$@"
simulated_machines "$@"

healthy=(controllers_one hot_spares raid_levels spans_two cachecade drive_copying_back)
for number in {01..15}; do
  make_host "db$number" "${healthy[$((10#$number % ${#healthy[@]}))]}"
done
make_host db16 drives_predict_failure # warnings
make_host db17 drive_foreign
# An operator's name for an LD is a text and no program.
jq '.controllers[0].lds[0].name = "{{ 6 * 7 }}"' "$source/simulator/scenarios/ld_degraded.json" >"$scratch/hostile.json"
make_host db18 "$scratch/hostile.json"
make_host db19 backup_unit_dead
make_host db20 hot_spares # a drive will fail, with the spares released
inventory >"$scratch/inventory"
# One has its facts where every machine has them, in an /etc of its own.
sed -i '/^db02 /s/ zebstat_facts=[^ ]*//' "$scratch/inventory"
cp -a /etc "$scratch/etc"
rm -rf -- "$scratch/etc/ansible"
mount --bind "$scratch/etc" /etc
on_host db20 zebcli -pdhsp -rmv '-pd[252:5,252:6]' -a0 >"$scratch/output" < <(yes) || fail 'no spare is released' "$scratch/output"
on_host db20 zebcli -pdoffline '-pd[252:3]' -a0 >"$scratch/output" < <(yes) || fail 'no drive is taken offline' "$scratch/output"

# run_play CHANGES HOST...: the play fails for these hosts and no other; what each host's zebstat finds is named, and a host
# that has no finding is ok.
run_play() {
  local changes=$1 host text failed
  shift
  if play "$source/share/zebstat/ansible/zebstat-health.yml"; then fail 'the play passes' "$scratch/output"; fi
  for host in db{01..20}; do
    failed=0
    case " $* " in *" $host "*) failed=1 ;; esac
    [ "$(recap "$host" failed)" = "$failed" ] || fail "$host: failed=$failed is wanted" "$scratch/output"
    [ "$(recap "$host" changed)" = "$changes" ] || fail "$host: changed=$changes is wanted" "$scratch/output"
    # What the play shows of the host, as lines
    awk -v host="[$host]" '/^TASK/ { task = $0 } task ~ /Show the health/ && /^ok: / { mine = $2 == host } mine' \
      "$scratch/output" | sed -nE 's/^        "(.*)",?$/\1/p' >"$scratch/shown"
    on_host "$host" zebstat json >"$scratch/json" 2>"$scratch/complaint" || true
    jq -r 'if has("health") then .health, .findings[].text else empty end' "$scratch/json" >"$scratch/wanted"
    [ -s "$scratch/wanted" ] || echo unknown >"$scratch/wanted"
    diff "$scratch/wanted" "$scratch/shown" >"$scratch/difference" || fail "$host: shown (>) is not what is (<)" "$scratch/difference"
    while IFS= read -r text; do
      [ "$failed" -eq 0 ] || grep -qF -- "$text" <(grep -A 2 "fatal: \[$host\]" "$scratch/output") ||
        fail "$host fails without naming: $text" "$scratch/output"
    done < <(jq -r '.findings[]? | select(.severity == "critical") | .text' "$scratch/json")
  done
}

run_play 2 db18 db19 db20
grep -qF "LD0 '{{ 6 * 7 }}' (RAID10) is degraded" "$scratch/output" || fail 'the name of an LD is not told as it stands' "$scratch/output"
[ "$(readlink /etc/ansible/facts.d/zeb.fact)" = "$source/share/zebstat/ansible/zeb.fact" ] || fail 'the fact is not in its place'
grep -q "LD1 'OS' (RAID1) is degraded" "$scratch/output" || fail 'the failure of the drive is not told' "$scratch/output"

# db20 is mended, db01 loses its library; nothing is changed by a further run.
on_host db20 zebcli -pdonline '-pd[252:3]' -a0 >"$scratch/output" < <(yes) || fail 'no drive is brought online' "$scratch/output"
sed -i "s#$build/simulator#/nowhere#" "$hosts/db01/python" "$hosts/db01/run"
run_play 0 db01 db18 db19
grep -q 'libstorelib.so cannot be used' "$scratch/output" || fail 'the missing library is not told' "$scratch/output"
