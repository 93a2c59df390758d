#!/usr/bin/env bash
# The example site files obey the rules by which they are read. A line that broke one would end the reading there, and
# every event behind it would be lost.
# usage: test-site-files.sh SOURCE_FOLDER
set -euo pipefail
. "$(dirname -- "$0")/support.sh"

scratch_folder

# The event table: ten fields, none empty; known severities; texts that need no cutting and hold no percent sign.
awk -F '[,\t]' '
  function complain(what) { print FILENAME ":" FNR ": " what }
  BEGIN {
    for (i = 1; i <= 25; ++i) severity[i] = i <= 11 ? "err" : i <= 20 ? "wrn" : "inf"
    test[60009] = 11; test[60010] = 20; test[60011] = 25
  }
  length($0) > 511 { complain("longer than 511 characters") }
  /^#/ { next }
  NF != 10 { complain(NF " fields instead of 10") }
  { for (i = 1; i <= NF; ++i) if ($i == "") complain("field " i " is empty") }
  $3 !~ /^[0-9]+$/ || $3 + 0 > 65535 { complain("event code " $3) }
  $3 in seen { complain("event code " $3 " once more") }
  { seen[$3] = 1; ++events }
  $4 !~ /^[01]$/ { complain("suppress flag " $4) }
  $5 !~ /^[0-9]+$/ || $5 + 0 < 1 || $5 + 0 > 25 { complain("message index " $5) }
  $6 != severity[$5 + 0] { complain("severity " $6 " with message index " $5) }
  $3 in test && ($5 != test[$3] || $4 != 0) { complain("a test event with index " $5 " and suppress flag " $4) }
  !($3 in test) && ($5 == 11 || $5 == 20 || $5 == 25) { complain("the index of a test event") }
  length($10) > 137 || $10 ~ /[%\r]/ { complain("text too long, or with a percent sign or carriage return") }
  END {
    if (events > 330) complain(events " events, of which 330 are read")
    for (code in test) if (!(code in seen)) complain("test event " code " is missing")
  }' "$1/share/zeb_config.csv" >"$scratch/complaints"
[ ! -s "$scratch/complaints" ] || fail 'the event table breaks its rules' "$scratch/complaints"

# The construction patterns: line k is for k drives; at most four levels, each at home with that many drives.
awk -F , '
  function complain(what) { print FILENAME ":" FNR ": " what }
  BEGIN { least["RAID0"] = 1; least["RAID1"] = 2; least["RAID5"] = 3; least["RAID6"] = 4; least["RAID10"] = 4 }
  NF < 1 || NF > 4 { complain(NF " levels") }
  {
    split("", seen)
    for (i = 1; i <= NF; ++i) {
      if (!($i in least)) complain("unknown level \"" $i "\"")
      else if (FNR < least[$i]) complain($i " needs " least[$i] " drives")
      if (($i == "RAID1" && FNR != 2) || ($i == "RAID10" && FNR % 2)) complain($i " with " FNR " drives")
      if ($i in seen) complain($i " twice")
      seen[$i] = 1
    }
  }
  END { if (FNR != 32) complain(FNR " lines instead of 32") }' "$1/share/confpat1.csv" >"$scratch/complaints"
[ ! -s "$scratch/complaints" ] || fail 'the construction patterns break their rules' "$scratch/complaints"
