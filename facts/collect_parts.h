// The parts of a collection about one controller. Each asks its questions and fills what they tell.
#pragma once

#include "facts/asker.h"
#include "facts/collect.h"
#include "facts/controller.h"

namespace facts {

/// Its own information. False when it could not be read; nothing more is to be asked then.
bool collectInfo(Asker& asker, Controller& controller);
/// Settings, driver, place on the bus, patrol read and clock.
void collectSettings(Asker& asker, Controller& controller);
void collectCacheBackup(Asker& asker, Controller& controller);
void collectEnclosures(Asker& asker, Controller& controller);
void collectPhysicalDrives(Asker& asker, Controller& controller, Scope scope);
/// The RAID groups, of each drive the group that it belongs to, and the hot spares; the drives are known already.
void collectRaidGroups(Asker& asker, Controller& controller, Scope scope);
/// The LDs; the groups are known already.
void collectLogicalDrives(Asker& asker, Controller& controller, Scope scope);

} // namespace facts
