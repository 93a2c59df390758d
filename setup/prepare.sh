# shellcheck shell=bash
# What ./demo and ./check need of a machine, and how they build. Sourced, not run.

# shellcheck disable=SC2034  # used by the scripts that source this
packages_to_build=(g++ cmake ninja-build nlohmann-json3-dev libcli11-dev libgtest-dev libgmock-dev)
# shellcheck disable=SC2034
packages_to_check=(clang-format cppcheck shellcheck binutils util-linux bsdutils mandoc groff bash-completion dpkg-dev file
  curl gzip jq perl prometheus prometheus-node-exporter python3-jsonschema systemd valgrind strace tidy)
# What "./check --all" needs besides.
# shellcheck disable=SC2034
packages_to_check_all=(clang clang-tidy libclang-rt-dev debootstrap ansible-core lintian chromium poppler-utils)

# Ends with the one message that says why, unless the tests can have what no package brings: root's rights and mount
# namespaces.
require_mount_namespaces() {
  if [ "$(id -u)" -ne 0 ]; then
    echo "The tests run zebcli as root, each in a mount namespace of its own. Please run this as root: sudo $0" >&2
    exit 1
  fi
  unshare --mount mount --make-rprivate / 2>/dev/null && return 0
  echo "The tests run in mount namespaces of their own, which this machine refuses even to root. In a container, start it" >&2
  echo "with the right to make them (docker run --cap-add SYS_ADMIN --security-opt apparmor=unconfined ...), then try again." >&2
  exit 1
}

# Installs the named Debian packages that are missing. Without the rights to do so, prints the one command to run and ends.
install_missing() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local install="apt-get install -y --no-install-recommends ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    echo "Some packages are missing. Please run this as root, then try again:" >&2
    echo "  apt-get update && $install" >&2
    exit 1
  fi
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  $install -qq >/dev/null
}

# Configures and builds one preset; further arguments go to the configuration. Quiet unless something is wrong.
build_preset() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
