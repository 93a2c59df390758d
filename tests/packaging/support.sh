# shellcheck shell=bash
# What the scripts of this folder share. A test that cannot be made on this machine ends with 77, which CTest counts as
# skipped.

# Skips the test unless every tool named is there.
need() {
    local tool
    for tool in "$@"; do
        if ! command -v "$tool" >/dev/null; then
            echo "left out: $tool is not installed"
            exit 77
        fi
    done
}

# Ends the test as failed, with the reason $1 and the contents of the file $2, if given.
fail() {
    echo "FAILED: $1"
    [[ -z ${2-} ]] || cat -- "$2"
    exit 1
}

# Makes the folder $scratch, which goes when the test ends.
scratch_folder() {
    scratch=$(mktemp -d)
    trap 'rm -rf -- "$scratch"' EXIT
}
