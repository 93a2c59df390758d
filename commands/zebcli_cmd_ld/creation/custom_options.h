// The arguments of custom creation: a layout with its drives, sizes, policies, controllers.
#pragma once

#include "main/zebcli_cmd_com/base/bounded_list.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/raid_level.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <cstdint>
#include <optional>

/// A drive as it was named: "E:S", of which the enclosure may be left out.
struct NamedDrive {
    std::uint8_t slotNo = 0;
    std::optional<std::uint32_t> enclosure; ///< kNoDevice when it is a number that no enclosure has
};
using NamedDrives = BoundedList<NamedDrive, kMaxSlots>;

/// What is to be created on each selected controller.
struct CustomRequest {
    Options options;
    ZEB_RAID_LVL level = kRaidUnknown;
    bool cacheCade = false;
    NamedDrives drives; ///< in order; of a RAID10 span by span
    BoundedList<std::uint32_t, kMaxLds> sizes; ///< MB, of each LD
};

/// Reads the arguments. Returns false when the command is over; what is due has been said, under the line of the
/// handler.
bool readCustomArguments(int argc, char** argv, int contCount, CustomRequest& request, int line = __builtin_LINE());
