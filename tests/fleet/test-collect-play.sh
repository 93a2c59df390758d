#!/usr/bin/env bash
# The Ansible play, run on this machine with a stand-in for zebcli: which reports let a host pass, and which fail it.
# usage: test-collect-play.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"
need ansible-playbook

play=$1/share/examples/zebcli-collect.yml
scratch_folder
cat >"$scratch/zebcli" <<'EOF'
#!/bin/sh
case $1 in
  -ldpdinfo) cat "$(dirname "$0")/report" ;;
  -ldpdprog) printf 'Controller : 0\r\n' ;;
esac
EOF
chmod +x "$scratch/zebcli"
printf '[raid]\nlocalhost ansible_connection=local ansible_become=false\n' >"$scratch/inventory"

run_play() {
  printf '%b\r\n' "$@" >"$scratch/report"
  (cd "$scratch" && HOME=$scratch ANSIBLE_LOCALHOST_WARNING=false ansible-playbook -i inventory "$play" \
    -e "zebcli_program=$scratch/zebcli" -e "zebcli_reports=$scratch/reports" \
    -e "ansible_python_interpreter=$(command -v python3)") >"$scratch/output" 2>&1
}

passes() {
  run_play "$@" || fail "the play fails on: $*" "$scratch/output"
}

fails_naming() {
  local wanted=$1
  shift
  ! run_play "$@" || fail "the play passes on: $*" "$scratch/output"
  grep -qF -- "$wanted" "$scratch/output" || fail "the play fails without naming '$wanted'" "$scratch/output"
}

passes '>LD0 (data, 278.875GB, OPTIMAL)' '>LD1 (more, 278.875GB, OPTIMAL(COPYBACK))'
cmp -s "$scratch/reports/localhost-ldpdprog.txt" <(printf 'Controller : 0\n') ||
  fail 'the progress report is not kept' "$scratch/output"
grep -q '^>LD1 ' "$scratch/reports/localhost-ldpdinfo.txt" || fail 'the LD report is not kept' "$scratch/output"
fails_naming 'LD1 (more' '>LD0 (data, 278.875GB, OPTIMAL)' '>LD1 (more, 278.875GB, DEGRADED(REBUILD))'
fails_naming 'LD0 (x, OPTIMAL)' '>LD0 (x, OPTIMAL), 278.875GB, OFFLINE)'
fails_naming 'No RAID controller' 'Error - No RAID controller is found.'
