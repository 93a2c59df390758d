# shellcheck shell=bash
# What ./demo and ./check share: installing what is missing. Sourced, not run.

# shellcheck disable=SC2034  # used by the scripts that source this
packages_to_build=(g++ cmake ninja-build nlohmann-json3-dev libgtest-dev libgmock-dev)
# shellcheck disable=SC2034
packages_to_check=(clang clang-tidy libclang-rt-dev cppcheck shellcheck binutils util-linux mandoc groff bash-completion debootstrap dpkg-dev
  gzip perl valgrind strace)

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
