// Words for the properties of a drive. Each builder writes at most as much as its buffer holds.
#pragma once

#include "storelib/records/physical_drive.h"

#include <cstdint>
#include <span>

/// "SAS", "SATA", ...
void mkInterfaceTypeStr(const _MR_PD_INFO* pd, std::span<char> out);

/// A device or link speed, "6.0 Gbps" for 3.
void mkPDSpeedStr(std::uint8_t speed, std::span<char> out);

/// "On", "Off" or "Transitioning".
void mkPDPowerStateStr(std::uint8_t state, std::span<char> out);
