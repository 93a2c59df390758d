// Reads the request trace that the simulator writes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zebtest {

/// One request as it reached the library.
struct TracedRequest {
    std::uint8_t type = 0;
    std::uint8_t cmd = 0;
    std::array<std::uint8_t, 32> header{};
    std::uint32_t ctrlId = 0;
    std::uint32_t reference = 0; ///< the four reference bytes read as one little-endian number
    std::array<std::uint8_t, 16> param{};
    std::uint32_t dataSize = 0;
    std::optional<std::uint32_t> data; ///< as traced; not set for a null data pointer
    std::vector<std::uint8_t> out; ///< outgoing bytes; for a controller command its input record
    std::vector<std::uint8_t> payload; ///< outgoing bytes of a controller command
    std::uint32_t status = 0;

    /// "02/05 ref=000a0003"
    std::string brief() const;
};

/// Takes one line apart; nothing when it does not have the trace's form.
std::optional<TracedRequest> parseTraceLine(std::string_view line);

/// All requests of a trace in order. A line that cannot be read fails the current test.
std::vector<TracedRequest> parseTrace(std::string_view text);

/// The short forms, one a line.
std::string briefs(const std::vector<TracedRequest>& requests);

} // namespace zebtest
