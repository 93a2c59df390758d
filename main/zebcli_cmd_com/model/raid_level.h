// RAID levels by name.
#pragma once

#include "storelib/common/StoreLib/raid_level.h"

/// The name of a level ("RAID0"); for any other value null, and a trace record.
const char* RaidlvlToStr(ZEB_RAID_LVL level, unsigned char contNo);

/// The same, with an empty text in place of null.
const char* raidLevelText(ZEB_RAID_LVL level, unsigned char contNo);
