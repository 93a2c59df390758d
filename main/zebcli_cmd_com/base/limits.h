// How many of each the tool serves.
#pragma once

inline constexpr unsigned kMaxControllers = 4;
inline constexpr unsigned kMaxSlots = 256; ///< of one controller; a slot number is one byte
inline constexpr unsigned kMaxLds = 64; ///< of one controller
inline constexpr unsigned kMaxArrays = 128; ///< of one controller
