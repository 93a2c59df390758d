# shellcheck shell=bash
# What the scripts of this folder share. A test that cannot be made on this machine ends with 77, which CTest counts as
# skipped.

# Skips the test for a reason.
left_out() {
  echo "left out: $*"
  exit 77
}

# Skips the test unless every tool named is there; ZEB_TESTS_MUST_RUN makes that a failure.
need() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null && continue
    [ -z "${ZEB_TESTS_MUST_RUN:-}" ] || { echo "FAILED: $tool is not installed" && exit 1; }
    left_out "$tool is not installed"
  done
}

# Ends the test as failed, with the reason $1 and the contents of the file $2, if given.
fail() {
  echo "FAILED: $1"
  [ -z "${2-}" ] || cat -- "$2"
  exit 1
}

# Makes the folder $scratch, which goes when the test ends.
scratch_folder() {
  scratch=$(mktemp -d)
  trap 'rm -rf -- "$scratch"' EXIT
}
