// Requests that make and release hot spares. A drive is named by its slot number. Statuses as in
// storelib/records/status.h; 0 is success.
#pragma once

#include <cstdint>

/// Makes the drive a spare of every array of the controller.
std::uint32_t SLMakeGlobalHotspare(unsigned char contNo, unsigned char slotNo);

/// Makes the drive a spare of every array of the LD that the given array belongs to. Returns 12 when the array has no
/// LD, or an LD that lies on other arrays: then the library's answers contradict each other, and nothing is sent.
std::uint32_t SLMakeDedicatedHotspare(unsigned char contNo, unsigned char slotNo, std::uint16_t arrayId);

/// Releases a spare of either kind.
std::uint32_t SLRemoveHotspare(unsigned char contNo, unsigned char slotNo);
