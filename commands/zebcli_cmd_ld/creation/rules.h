// What both creation commands check of drives, levels and counts before they plan.
#pragma once

#include "commands/zebcli_cmd_ld/creation/construction.h"

#include <span>

/// Whether an LD of the level can be made of that many drives: by the patterns (which do not count for CacheCade), the
/// fewest drives that the level needs, and the controller's limits.
bool canBuild(Controller ctrl, ZEB_RAID_LVL level, bool cacheCade, unsigned drives);

/// How many new LDs and arrays a plan needs.
struct NewObjects {
    unsigned lds;
    unsigned arrays;
};

/// Whether the controller has room for them beside those that it has.
bool hasRoom(Controller ctrl, NewObjects wanted);

/// The same; says which limit they break.
bool refuseTooMany(Controller ctrl, NewObjects wanted);

/// Keeps the drives as the unconfigured ones.
void keepUnconfigured(std::span<const std::uint8_t> slots);

/// Says, and answers, whether the unconfigured drives mix interfaces or media types.
bool refuseMixedDrives(Controller ctrl);

/// Reads the pattern file. Returns false when no level can be built of any number of drives.
bool readPatterns();

/// Says that the pattern file allows nothing.
void sayNoPatterns();
