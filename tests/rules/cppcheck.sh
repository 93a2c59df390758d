#!/usr/bin/env bash
# cppcheck over the tool and the simulator. Returns 77 where it is not installed.
set -u
cd "$(dirname "$0")/../.." || exit 2
command -v cppcheck >/dev/null || { echo "left out: cppcheck is not installed"; exit 77; }
# CastIntegerToAddressAtReturn takes lambdas and char tables for functions that return integers as addresses.
exec cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ --enable=warning,performance,portability \
  "-DZEB_WIRE_RECORD(...)=" --inline-suppr --suppress=missingIncludeSystem --suppress=CastIntegerToAddressAtReturn -I. \
  main commands log console storelib facts zebstat simulator
