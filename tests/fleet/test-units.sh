#!/usr/bin/env bash
# The service and its timer: well formed, well hardened, off until enabled; and what the service is allowed is enough.
# usage: test-units.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need systemd-analyze systemctl setpriv unshare
source=$1 build=$2
in_namespaces -- "$@"
scratch_folder
root=$scratch/root
DESTDIR=$root cmake --install "$build" --component companion >"$scratch/output" 2>&1 || fail 'cmake --install fails' "$scratch/output"
units=$root/usr/lib/systemd/system
service=$units/zebstat-metrics.service

DESTDIR=$scratch/elsewhere cmake --install "$build" --component companion --prefix /srv/raid >"$scratch/output" 2>&1 ||
  fail 'cmake --install --prefix fails' "$scratch/output"
grep -q '^ExecStart=/srv/raid/sbin/zebstat ' "$scratch/elsewhere/srv/raid/lib/systemd/system/zebstat-metrics.service" ||
  fail 'the service does not follow the prefix'

# Beside the machine's own units, and with the program where the package puts it.
mkdir "$scratch/units"
cp -- "$units"/zebstat-metrics.* "$scratch/units"
sed -i "s#^ExecStart=#ExecStart=$root#" "$scratch/units/zebstat-metrics.service"
systemd-analyze verify --man=no "$scratch"/units/zebstat-metrics.{service,timer} >"$scratch/output" 2>&1 ||
  fail 'systemd-analyze verify fails' "$scratch/output"
[ ! -s "$scratch/output" ] || fail 'systemd-analyze verify complains' "$scratch/output"
systemd-analyze security --offline=yes --no-pager --threshold=29 "$service" >"$scratch/output" 2>&1 ||
  fail 'the service is exposed to 3.0 or more' "$scratch/output"

# is WANTED UNIT
is() {
  local got
  got=$(systemctl --root="$root" is-enabled "$2" 2>&1) || true
  [ "$got" = "$1" ] || fail "$2 is $got, not $1"
}
is disabled zebstat-metrics.timer
is static zebstat-metrics.service
systemctl --root="$root" preset-all >"$scratch/output" 2>&1 || fail 'systemctl preset-all fails' "$scratch/output"
is disabled zebstat-metrics.timer
systemctl --root="$root" enable zebstat-metrics.timer >"$scratch/output" 2>&1 || fail 'the timer cannot be enabled' "$scratch/output"
is enabled zebstat-metrics.timer
[ -L "$root/etc/systemd/system/timers.target.wants/zebstat-metrics.timer" ] ||
  fail 'the timer is enabled elsewhere than the package cleans up'

# value KEY: of the service
value() {
  sed -n "s/^$1=//p" "$service"
}
# The command as it stands, with the service's capabilities, its mask and a system that is read-only but for one folder.
capabilities=$(value CapabilityBoundingSet | tr 'A-Z ' 'a-z,' | sed 's/cap_/+/g')
folder=$(value ReadWritePaths)
read -ra command < <(value ExecStart)
case ${command[3]} in "${folder#-}"/?*.prom) ;; *) fail "${command[3]} is not in ${folder#-}, or not what the exporter reads" ;; esac
mkdir "$scratch/textfile"
# run SCENARIO LIBRARY_FOLDER: prints the exit status
run() {
  local status=0
  # shellcheck disable=SC2016 # the inner shell expands them
  ZEBSIM_SCENARIO=$1 LD_LIBRARY_PATH=$2 unshare --mount --propagation private sh -c '
    mount --bind "$1" "$1" && mount -o remount,bind,ro / && umask "$2" && shift 2 && exec "$@"' inside \
    "$scratch/textfile" "$(value UMask)" setpriv --no-new-privs --bounding-set="-all,$capabilities" \
    "$root${command[0]}" "${command[@]:1:2}" "$scratch/textfile/zeb.prom" >"$scratch/output" 2>&1 || status=$?
  echo "$status"
}
success=" 0 $(value SuccessExitStatus) "
while read -r scenario wanted; do
  rm -f -- "$scratch/textfile/zeb.prom"
  status=$(run "$source/simulator/scenarios/$scenario.json" "$build/simulator")
  [ "$status" = "$wanted" ] || fail "$scenario ends with $status, not $wanted" "$scratch/output"
  [[ $success == *" $status "* ]] || fail "status $status is a failure of the service"
  [ "$(stat -c %a "$scratch/textfile/zeb.prom")" = 644 ] || fail "$scenario: the exporter cannot read the metrics"
done <<'EOS'
hot_spares 0
drives_predict_failure 1
ld_degraded 2
enclosure_silent 4
EOS
cp -- "$scratch/textfile/zeb.prom" "$scratch/old"
status=$(run "$source/simulator/scenarios/hot_spares.json" /nowhere)
[[ $success != *" $status "* ]] || fail "a run without a library, which ends with $status, is none of success"
cmp -- "$scratch/old" "$scratch/textfile/zeb.prom" || fail 'a run that fails does not leave the old file'
[ "$(ls -A "$scratch/textfile")" = zeb.prom ] || fail 'something is left beside the file'
