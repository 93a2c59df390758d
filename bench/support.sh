# shellcheck shell=bash
# shellcheck disable=SC2034  # used by the scripts that source this
# What gate.sh and run.sh share. Sourced by them with the build folder as the first argument.
set -euo pipefail
export LC_ALL=C
bench=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "${1:-$bench/../build/release}" && pwd)
# shellcheck source=bounds.sh
. "$bench/bounds.sh"

# cannot REASON: ends as a test that is skipped, unless tests must run.
cannot() {
  echo "cannot measure here: $1" >&2
  [ -n "${ZEB_TESTS_MUST_RUN:-}" ] && exit 1
  exit 77
}
for needed in valgrind strace perl unshare; do
  command -v $needed >/dev/null || cannot "$needed is missing"
done

# A mount namespace of their own keeps the runs away from the command log and the site files of the machine: with nothing
# under the installation folder the log lies in the working directory.
if [ -z "${ZEB_BENCH_INSIDE:-}" ]; then
  own=(unshare --mount)
  [ "$(id -u)" -eq 0 ] || own=(unshare --map-root-user --mount)
  "${own[@]}" true || cannot 'no mount namespace'
  ZEB_BENCH_INSIDE=1 exec "${own[@]}" "$0" "$@"
fi
work=$(mktemp -d)
trap 'cd /; umount "$work"; rmdir "$work"' EXIT
mount -t tmpfs bench "$work" # no disk among the figures
if [ -d /opt/quorvel/zeb ]; then
  mount -t tmpfs empty /opt/quorvel/zeb
fi
cd "$work"

zebcli=$build/zebcli
zebstat=$build/zebstat/zebstat
floor=$build/bench/bench_floor
log=zebcli.log
# No time zone file is read: how many calls that takes, once per run, is a matter of the machine.
clean=(env -i "LD_LIBRARY_PATH=$build/simulator" PATH=/usr/bin:/bin TZ=UTC0)
extra=() # further variables of a run

# The command line of each kept request list, except those that need answers, the command that runs another program, and
# further words for what another word does already.
commands() {
  local list args
  for list in "$bench"/../tests/command/expected/requests/*.txt; do
    args=$(head -n 1 "$list")
    case $args in
      *'<answers' | -log | -help | '-?' | -ldc | -lddel | -lde | -snapshot | -sse) ;;
      *) printf '%s\n' "$args" ;;
    esac
  done
}

# run PROGRAM ARGUMENT...: a run that ends as zebcli and the floor end.
run() {
  local status=0
  "${clean[@]}" "${extra[@]}" "$@" </dev/null || status=$?
  [ $status -eq 0 ] || [ $status -eq 255 ]
}

# record PROGRAM ARGUMENT...: such a run. Leaves its trace, its output, and what the floor of that run replays.
record() {
  rm -f trace
  extra+=(ZEBSIM_TRACE=trace)
  run "$@" >out
  unset 'extra[-1]'
  "$bench/recording.pl" "$(wc -c <out)" <trace >recording
}

# instructions [-c] PROGRAM ARGUMENT...: how many it executes, in the three ways of work.pl; the third needs -c. Clock and
# process id stand still, so that the numbers repeat. Blocks are cleared and copied by plain stores: valgrind counts each
# byte of a string instruction as an instruction of its own, a processor does not.
plain_stores=glibc.cpu.x86_rep_stosb_threshold=1000000000:glibc.cpu.x86_rep_movsb_threshold=1000000000
instructions() {
  local callers=0
  if [ "$1" = -c ]; then
    callers=6
    shift
  fi
  rm -f "$log"
  run "GLIBC_TUNABLES=$plain_stores" "LD_PRELOAD=$build/bench/libbench_still_clock.so" \
    valgrind --quiet --tool=callgrind --callgrind-out-file=profile --separate-callers=$callers "$@" >/dev/null
  "$bench/work.pl" profile
}

# How many system calls a program makes, from its exec to its end.
system_calls() {
  rm -f "$log"
  run strace -f -o calls "$@" >out
  grep -cE '^[0-9]+ +[a-z_0-9]+\(' calls
}

# How many records the last run left in the log.
records() { grep -c '^\[.*\] pid=' "$log"; }

# compute EXPRESSION [FORMAT]
compute() { awk "BEGIN { printf \"${2:-%.2f}\", ($1) }"; }
