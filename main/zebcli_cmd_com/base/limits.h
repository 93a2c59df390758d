// How many of each the tool serves. kMaxSlots, kMaxLds and kMaxArrays are limits of the wire and stand with its
// records.
#pragma once

#include "storelib/records/configuration.h"

inline constexpr unsigned kMaxControllers = 4;

/// Values of a byte: the room of a table by LD number, which may be above kMaxLds where a record lies.
inline constexpr unsigned kByteValues = 256;
