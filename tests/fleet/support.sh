# shellcheck shell=bash
# What the scripts of this folder share, beside what those of tests/packaging do.
# shellcheck source=tests/packaging/support.sh
. "$(dirname -- "${BASH_SOURCE[0]}")/../packaging/support.sh"

# Starts the script again, with the same arguments, in namespaces of its own (options of unshare before --): with an empty
# /opt. What it started ends with it.
in_namespaces() {
  local options=()
  while [ "$1" != -- ]; do
    options+=("$1")
    shift
  done
  shift
  if [ -z "${ZEB_OWN_NAMESPACES-}" ]; then
    [ "$(id -u)" -eq 0 ] || left_out 'only root can make namespaces'
    ZEB_OWN_NAMESPACES=1 exec unshare --mount --propagation private --pid --fork --mount-proc --kill-child "${options[@]}" \
      bash "$0" "$@"
  fi
  mount -t tmpfs -o mode=0755 private-opt /opt
  mkdir -p /opt/quorvel/zeb/log
}

# Says where the sources and the build are, and makes room for simulated machines.
simulated_machines() {
  source=$1
  build=$2
  scratch_folder
  hosts=$scratch/hosts
}

# make_host NAME SCENARIO [SPEED]: a simulated machine of its own in $hosts/NAME; the scenario is a kept one or a file.
# on_host NAME COMMAND... runs there, with zebcli and zebstat of the build $build on the search path.
make_host() {
  local host=$hosts/$1 scenario=$source/simulator/scenarios/$2.json
  case $2 in
    built_in) scenario=$source/simulator/built_in.json ;;
    */*) scenario=$2 ;;
  esac
  mkdir -p -- "$host/bin"
  ln -s -- "$build/zebcli" "$build/zebstat/zebstat" "$host/bin"
  cat >"$host/run" <<EOS
#!/bin/sh
export PATH="$host/bin:/usr/sbin:/usr/bin:/sbin:/bin" LD_LIBRARY_PATH="$build/simulator"
export ZEBSIM_SCENARIO="$scenario" ZEBSIM_STATE="$host/state.json" ZEBSIM_SPEED="${3-1}"
EOS
  { cat -- "$host/run" && echo 'exec /usr/bin/python3 "$@"'; } >"$host/python"
  echo 'exec "$@"' >>"$host/run"
  chmod +x -- "$host/run" "$host/python"
}
on_host() {
  local host=$1
  shift
  timeout 30 "$hosts/$host/run" "$@"
}

# Prints an inventory of the hosts: Ansible's local connection, with modules that run on the simulated machine.
inventory() {
  local host
  echo '[raid]'
  for host in "$hosts"/*; do
    echo "${host##*/} ansible_connection=local ansible_become=false ansible_python_interpreter=$host/python" \
      "zebstat_facts=$host/facts.d zebstat_share=$source/share/zebstat"
  done
}

# play FILE ARGUMENT...: runs a play on the hosts; what it prints goes to $scratch/output.
play() {
  (cd "$scratch" && HOME=$scratch LC_ALL=C.UTF-8 ANSIBLE_PIPELINING=1 ANSIBLE_FORKS=8 ANSIBLE_NOCOLOR=1 \
    ansible-playbook -i "$scratch/inventory" "$@") >"$scratch/output" 2>&1
}

# recap HOST FIELD: a count of the play's last lines
recap() {
  sed -nE "s/^$1 +: .*\\b$2=([0-9]+).*/\\1/p" "$scratch/output"
}
