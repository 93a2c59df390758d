// Numbers as a person says them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace facts {

/// "1 drive", "2 drives"
std::string counted(std::uint64_t count, std::string_view what);

/// A duration: "about 2 h", "about 12 min", "under a minute".
std::string spokenDuration(std::uint32_t seconds);

} // namespace facts
