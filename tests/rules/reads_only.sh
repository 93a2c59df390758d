#!/usr/bin/env bash
# zebstat has no wrapper in it but these, which only read; zebcli has no library for JSON or options in it.
# reads_only.sh ZEBSTAT ZEBCLI
set -u
wanted='SLExitLib SLGetArrayInfo SLGetCacheBkupDesignInfo SLGetCacheBkupProperties SLGetCacheBkupStatus SLGetCtrlInfo SLGetCtrlProp
SLGetDrvVer SLGetEnclConfig SLGetEnclList SLGetEnclStatus SLGetLDInfo SLGetLDList SLGetLDOSMap SLGetLibraryVersion SLGetMFCDefaults
SLGetMappedPartition SLGetPDInfoByDevice SLGetPDList SLGetPDTemperatureByDevice SLGetPatrolReadProp SLGetPciInfo SLGetSASConnector
SLGetTime SLInitLib SLIsTempPageSupportedByDevice SLLogging SLLoggingPassThru SLReadConfig SLStrError SLTransLateRAIDLvl'
wrappers() { nm -C "$1" | awk '$2 ~ /[Tt]/ && $3 ~ /^SL[A-Z]/ {print $3}' | sed 's/(.*//' | LC_ALL=C sort -u; }
failed=0
[ -n "$(wrappers "$2")" ] || { echo "the symbols of $2 are gone; nothing can be told"; exit 1; }
difference=$(diff <(tr ' ' '\n' <<<"$wanted" | LC_ALL=C sort) <(wrappers "$1")) || { printf 'wrappers wanted (<) and linked (>):\n%s\n' "$difference"; failed=1; }
if nm -C "$2" | grep -qE 'nlohmann|CLI::'; then echo "$2 holds a library that it must be free of"; failed=1; fi
exit $failed
