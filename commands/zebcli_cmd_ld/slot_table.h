// What the tables with a row per drive slot share.
#pragma once

#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <functional>
#include <span>

/// Hands each slot of a controller in turn to the sink, with its name ("PD%d") and whether a drive stands in it. How
/// many there are its enclosures are asked now; without an enclosure it is what the snapshot says. When they do not
/// tell, that is traced and there is none.
void forEachSlot(const TraceOrigin& origin, Controller ctrl,
                 const std::function<void(unsigned char slotNo, const char* name, bool present)>& row);

/// Cuts the text of an LD column that is wider than the column to its first 14 characters and "...".
void cutLdColumn(std::span<char> text);
