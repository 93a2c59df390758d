#!/usr/bin/env bash
# Two builds in different folders give identical bytes. reproducible.sh SOURCE-FOLDER RELEASE-BUILD
set -eu
source=$1
first=$2
second=$(mktemp -d)
trap 'rm -rf "$second"' EXIT
mkdir "$second/elsewhere"
tar -C "$source" --exclude=./build --exclude=./.git -cf - . | tar -C "$second/elsewhere" -xf -
cmake -S "$second/elsewhere" -B "$second/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
  -DZEB_TESTS=OFF >/dev/null
cmake --build "$second/build" --target zebcli zebstat >/dev/null
cmp "$first/zebcli" "$second/build/zebcli"
cmp "$first/zebstat/zebstat" "$second/build/zebstat/zebstat"
