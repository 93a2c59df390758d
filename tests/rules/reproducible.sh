#!/usr/bin/env bash
# Two builds in different folders give identical bytes. reproducible.sh SOURCE-FOLDER RELEASE-BUILD
set -eu
source=$1
first=$2
second=$(mktemp -d)
trap 'rm -rf "$second"' EXIT
mkdir "$second/elsewhere"
tar -C "$source" --exclude=./build --exclude=./.git -cf - . | tar -C "$second/elsewhere" -xf -
(cd "$second/elsewhere" && cmake --preset release -B "$second/build" -DZEB_TESTS=OFF >/dev/null)
cmake --build "$second/build" --target zebcli zebstat >/dev/null
cmp "$first/zebcli" "$second/build/zebcli"
cmp "$first/zebstat/zebstat" "$second/build/zebstat/zebstat"
