// The words that the reports share. Each builder writes at most as much as its buffer holds.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/records/logical_drive.h"
#include "storelib/records/physical_drive.h"

#include <cstdint>
#include <span>

/// Room for any text of this family, the longest list of LDs or groups included.
inline constexpr unsigned kTextSize = 1024;

/// What stands where there is nothing to name.
inline constexpr char kNone[] = "-";

/// The word for a small code, what is said otherwise for one beyond the table.
const char* wordOf(std::span<const char* const> words, unsigned code, const char* otherwise);

/// The word for a firmware state of a PD, "UNKNOWN" for one that is not in the table.
void mkPDStateStr(unsigned short state, std::span<char> out);

/// The state of an LD, followed in brackets by that of the first drive that rebuilds or copies back.
void mkLDStateStr(unsigned char contNo, const _AFCONT* conts, const _MR_LD_CONFIG* ld, std::span<char> out);

/// "HDD", "SSD" or "Not defined".
void mkMediaTypeStr(const _MR_PD_INFO* pd, std::span<char> out);

/// A SAS address as "0x" and 16 hexadecimal digits.
void FormatSASAddress(unsigned long long address, std::span<char> out);

/// The background work of an LD with its percentage, "-" when there is none.
void mkLDProgressStr(const _MR_LD_PROGRESS* progress, std::span<char> out);

/// The background work of a PD with its percentage, "-" when there is none.
void mkPDProgressStr(const _MR_PD_PROGRESS* progress, std::span<char> out);

/// "MediaErr", "PredFail" or both, over the LD's drives; "-" when there is neither.
void mkLDErrInfoStr(unsigned char contNo, const _AFCONT* conts, unsigned char ldNo, std::span<char> out);
