#!/usr/bin/env bash
# Builds the packages and tries them in a clean root: install, run against the simulator, upgrade, remove, purge.
# usage: tests/packaging/test-packages.sh BUILD_FOLDER
#
# The clean root is a minimal system of this machine's own Debian release, made by debootstrap from the package mirror
# that apt uses here, and kept as BUILD_FOLDER/clean-root.tar for the next time. Ends with 77, and a line that begins
# with "left out:", where that cannot be had.
set -euo pipefail
. "$(dirname -- "$0")/support.sh"

build=$(realpath -- "$1")
base=$build/clean-root.tar
scratch_folder
root=$scratch/root

# Packs the build into the folder $1; the other arguments go to cpack.
pack() {
  local folder=$1
  shift
  (cd "$build" && cpack -G DEB -B "$folder" "$@") >"$scratch/output" 2>&1 || fail 'cpack fails' "$scratch/output"
}

# Makes the kept base system, unless it is there.
make_base() {
  [ ! -s "$base" ] || return 0
  local suite mirror
  # shellcheck source=/dev/null
  suite=$(. /etc/os-release && echo "${VERSION_CODENAME-}")
  # shellcheck disable=SC2016 # apt-get's own variables
  mirror=$(apt-get indextargets --format '$(SITE) $(RELEASE)' 'Created-By: Packages' |
    awk -v suite="$suite" '$2 == suite { print $1; exit }')
  [ -n "$mirror" ] || left_out "apt has no mirror of the release '$suite'"
  eval "$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)"
  export http_proxy https_proxy
  debootstrap --variant=minbase "$suite" "$scratch/base" "$mirror" >"$scratch/output" 2>&1 ||
    left_out "debootstrap could not make a clean root: $(tail -n 1 "$scratch/output" | sed 's#://[^/ ]*#://...#g')"
  rm -rf -- "$scratch"/base/var/cache/apt/archives/*.deb "$scratch"/base/var/lib/apt/lists/*
  tar -C "$scratch/base" -cf "$base.new" . && mv -- "$base.new" "$base"
  rm -rf -- "$scratch/base"
}

inside() {
  # With /proc, as on any machine; it goes with the namespace.
  # shellcheck disable=SC2016 # the inner shell expands them
  unshare --mount --propagation private sh -c 'mount -t proc proc "$1/proc" && exec chroot "$@"' inside "$root" \
    /usr/bin/env -i LC_ALL=C HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@" \
    </dev/null >"$scratch/output" 2>&1
}

# must WHAT COMMAND...: the command succeeds inside; WHAT says what went wrong otherwise.
must() {
  local what=$1
  shift
  inside "$@" || fail "$what" "$scratch/output"
}

says() {
  grep -qF -- "$1" "$scratch/output" || fail "'$1' is missing" "$scratch/output"
}

has() {
  [ -e "$root/$1" ] || [ -L "$root/$1" ] || fail "/$1 is missing"
}

lacks() {
  if [ -e "$root/$1" ] || [ -L "$root/$1" ]; then fail "/$1 is left behind"; fi
}

# Every path of the clean root except those in which the system keeps its own books, and /opt, which goes with the last
# package in it.
list_files() {
  (cd "$root" && find . \( -path ./var/lib/dpkg -o -path ./var/cache -o -path ./var/log \) -prune -o ! -path ./opt -print | sort)
}

install_packages() {
  rm -rf -- "$root/packages"
  mkdir -- "$root/packages"
  cp -- "$1"/*.deb "$root/packages"
  must 'the packages cannot be installed' sh -c 'dpkg --force-confdef --install /packages/*.deb'
  rm -rf -- "$root/packages"
}

need cpack dpkg-shlibdeps file
! grep -q '^ZEB_SANITIZE:BOOL=ON' "$build/CMakeCache.txt" || left_out 'a build with sanitizers is not packaged'

echo '* the same build packed twice gives the same bytes, and the same files under another umask'
pack "$scratch/first"
pack "$scratch/again"
(umask 077 && pack "$scratch/private")
for package in "$scratch"/first/*.deb; do
  name=${package##*/}
  cmp -- "$package" "$scratch/again/$name" || fail "$name differs"
  cmp -- <(dpkg-deb --contents "$package") <(dpkg-deb --contents "$scratch/private/$name") ||
    fail "$name depends on the umask"
done
pack "$scratch/newer" -D CPACK_PACKAGE_VERSION=2.3.1

[ "$(id -u)" -eq 0 ] || left_out 'only root can make a clean root'
need debootstrap
make_base
mkdir -- "$root"
tar -C "$root" -xpf "$base"
list_files >"$scratch/before"

echo '* install'
install_packages "$scratch/first"
must 'zebcli-sim does not run' zebcli-sim -v
says 'Product Version  : 2.3'
has opt/quorvel/zeb/log/zebcli.log

echo '* the simulated library stands in nobody'"'"'s way'
if inside zebcli -v; then fail 'zebcli runs without a library' "$scratch/output"; fi
says 'Error - Failed to initialize.'
must 'zebcli does not run with the simulated library' \
  env LD_LIBRARY_PATH=/usr/lib/zebcli/simulator zebcli -ctrlinfo -aAll
says 'RAID Controller: 0'
says '### General Information ###'

echo '* the companion'
must 'zebstat does not print its schema' zebstat schema
says 'https://json-schema.org/draft/2020-12/schema'
if inside env LD_LIBRARY_PATH=/usr/lib/zebcli/simulator zebstat check; then fail 'all is well' "$scratch/output"; fi
says 'ZEB CRITICAL - '

echo '* its timer is off; one that an administrator enables is remembered until the package is purged'
timer=etc/systemd/system/timers.target.wants/zebstat-metrics.timer
metrics=var/lib/prometheus/node-exporter
lacks "$timer"
has usr/lib/systemd/system/zebstat-metrics.timer
mkdir -p -- "$root/${timer%/*}" "$root/$metrics"
ln -s /usr/lib/systemd/system/zebstat-metrics.timer "$root/$timer"
# shellcheck disable=SC2016  # for the shell in there to expand
must 'the command of the service writes no metrics' sh -c 'LD_LIBRARY_PATH=/usr/lib/zebcli/simulator \
  $(sed -n s/^ExecStart=//p /usr/lib/systemd/system/zebstat-metrics.service) || [ $? -eq 2 ]'

echo '* a scenario'
must 'zebcli-sim does not run a scenario' env \
  ZEBSIM_SCENARIO=/usr/share/zebcli-simulator/scenarios/drive_failed.json zebcli-sim -ldpdprog
says FAILED

echo '* the recorder: what is recorded is replayed, and a preview changes nothing'
library=/usr/lib/zebcli/simulator/libstorelib.so
must 'a report cannot be recorded' zebcli-record /root/recording --library $library -- zebcli -ctrlinfo -aAll
must 'a recording cannot be replayed' zebcli-replay /root/recording -- zebcli -ctrlinfo -aAll
says '### General Information ###'
must 'a preview fails' zebcli-preview --library $library -- zebcli -pdoffline '-pd[252:3]' -a0
says 'nothing was changed; 1 request was held back'
rm -- "$root/root/recording"
must 'the probe does not run' zebcli-probe --library $library
says 'no layout is contradicted'

echo '* upgrade'
echo '# changed by the administrator' >>"$root/opt/quorvel/zeb/zeb_config.csv"
cp -- "$root/opt/quorvel/zeb/log/zebcli.log" "$scratch/log"
install_packages "$scratch/newer"
must 'dpkg lost the package' dpkg-query --show zebcli zebcli-simulator zebstat zebcli-recorder
says 2.3.1
cmp -s -- "$scratch/log" "$root/opt/quorvel/zeb/log/zebcli.log" || fail 'the upgrade changes the command log'
grep -q administrator "$root/opt/quorvel/zeb/zeb_config.csv" || fail 'the upgrade overwrites a configuration file'
must 'the upgraded tool does not run' zebcli-sim -v
has "$timer"
has "$metrics/zeb.prom"

echo '* remove'
must 'the packages cannot be removed' dpkg --remove zebcli-recorder zebcli-simulator zebcli zebstat
has opt/quorvel/zeb/log/zebcli.log
has opt/quorvel/zeb/zeb_config.csv
has opt/quorvel/zeb/confpat1.csv
lacks opt/quorvel/zeb/zebcli
lacks usr/sbin/zebcli
lacks usr/lib/zebcli
has "$timer"
lacks "$metrics/zeb.prom"

echo '* purge'
must 'the packages cannot be purged' dpkg --purge zebcli-recorder zebcli-simulator zebcli zebstat
lacks opt/quorvel
lacks "$timer"
(cd "$root" && rmdir -p -- "$metrics" "${timer%/*}" 2>/dev/null) || true # the test's own folders
list_files >"$scratch/after"
diff "$scratch/before" "$scratch/after" >"$scratch/output" || fail 'files are left behind' "$scratch/output"
echo 'ok'
