// Reads the request trace that the simulator writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "storelib/records/request.h"

namespace zebtest {

/// One request as it reached the library.
struct TracedRequest {
    wire::SL_LIB_CMD_PARAM_T header{}; ///< all but the data pointer
    std::optional<std::uint32_t> data; ///< as traced; not set for a null data pointer
    std::vector<std::uint8_t> out; ///< outgoing bytes; for a controller command its input record
    std::vector<std::uint8_t> payload; ///< outgoing bytes of a controller command
    std::uint32_t status = 0;

    /// The input of a controller command and the head of a SCSI command; nothing for other requests.
    std::optional<wire::_SL_DCMD_INPUT_T> dcmd() const;
    std::optional<wire::_SL_SCSI_PASSTHRU_T> scsi() const;

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
