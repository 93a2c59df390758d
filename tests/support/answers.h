// Answers that the simulator is told to give, in terms of the records' fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "storelib/records/wire_record.h"

/// A field of a record, inner ones and elements included: ZEB_AT(_MR_PD_LIST, addr[1].slotNo).
#define ZEB_AT(Record, field)                                                      \
    ::zebtest::Place {                                                             \
        offsetof(wire::Record, field), sizeof(std::declval<wire::Record&>().field) \
    }

namespace zebtest {

struct Place {
    std::size_t offset; ///< bytes
    std::size_t size; ///< bytes

    /// The same field of a record that begins so many bytes further on.
    constexpr Place behind(std::size_t bytes) const { return {offset + bytes, size}; }
};

/// The key "patch" of a fault: each place gets its value; one wider than a number gets it in every byte.
inline std::string patch(std::initializer_list<std::pair<Place, std::uint64_t>> changes) {
    std::string text;
    for (const auto& [place, value] : changes) {
        text +=
            (text.empty() ? R"("patch":[{"offset":)" : R"(,{"offset":)") + std::to_string(place.offset) + R"(,"hex":")";
        for (std::size_t i = 0; i < place.size; ++i) {
            char byte[3];
            const std::size_t shift = place.size <= sizeof value ? 8 * i : 0;
            std::snprintf(byte, sizeof byte, "%02x", static_cast<unsigned>(value >> shift & 0xFFU));
            text += byte;
        }
        text += "\"}";
    }
    return text + "]";
}

} // namespace zebtest
