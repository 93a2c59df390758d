// The three forms that name a command's targets: controllers, logical drives, physical drives.
//
// Each parser takes the option's text, lower-cased and without its leading "-", or an empty text when the option was
// not given. Entries of a list that are not used hold 255.
#pragma once

#include "main/zebcli_cmd_com/base/limits.h"

#include <array>

inline constexpr unsigned char kNoTarget = 255;

using CtrlList = std::array<unsigned char, kMaxControllers>;
using LdList = std::array<unsigned char, kMaxLds>;
using PdList = std::array<unsigned char, kMaxSlots>;

/// Verdicts of GetAdapterNo.
enum AdapterVerdict {
    kAdapterOk = 0,
    kAdapterMissing = 1, ///< no such controller; its number stands first in the list
    kAdapterAmbiguous = 2, ///< no option and several controllers; said already
    kAdapterMalformed = 3,
};

/// Controllers: "a0,1,2", "aall", or, with only one controller, nothing. The list comes out in ascending order, except
/// where a fifth number ended the scan: then in that of the text.
int GetAdapterNo(const char* text, CtrlList& list, int contCount);

/// LDs: "l0,1,2", "lall", or nothing for all. The list keeps the order of the text. Returns 1, or 0 when the text is no
/// such list.
int GetLogicalDriveNo(const char* text, LdList& list);

/// PDs: "pd[E:S,...]", of which only the slots S count, or nothing for all. The list is sorted unless keepOrder is set.
/// Returns 1, or 0 when the text is no such list.
int GetPhysicalDriveNo(const char* text, PdList& list, unsigned char keepOrder);
