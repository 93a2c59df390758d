// Status codes of the library that the program itself raises or compares with.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kSlSuccess = 0;
inline constexpr std::uint32_t kSlDeviceNotFound = 0x0C; ///< also raised when a slot or device look-up finds nothing
inline constexpr std::uint32_t kSlScsiStatus = 0x2D; ///< the drive itself refused the command
inline constexpr std::uint32_t kSlInitFailed = 0x8002;
inline constexpr std::uint32_t kSlMemoryAllocFailed = 0x8015;
inline constexpr std::uint32_t kSlInvalidInput = 0x8019;
