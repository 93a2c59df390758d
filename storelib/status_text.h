// The library's status codes in words.
#pragma once

#include <cstdint>

/// The text of a status (0 success, below 0x100 the firmware's codes, from 0x8001 the library's), "Storelib error" for
/// a code that is not known.
const char* SLStrError(std::uint32_t status);
