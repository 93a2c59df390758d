// What faults can do: one row for each key of the form.
#pragma once

#include "simulator/faults.h"
#include "simulator/scenario_io.h"

namespace zebsim {

/// Reads the effects of a fault from its object: at most one of the actions, and what happens besides. `type` and `cmd`
/// are those that the fault picks, if it names them. Throws ScenarioError.
Effects readEffects(Reader& reader, std::optional<std::uint8_t> type, std::optional<std::uint8_t> cmd);

/// Reads the key "also": what somebody else does to drives and LDs when the picked request has been answered.
void readAlso(Reader& reader, Effects& effects);

/// Where a field stands in an answer. Up to 8 bytes hold a number, more of them a text; any may be a list of numbers.
struct RecordField {
    std::size_t offset;
    std::size_t width;
};

/// The field of that name in the answer to a request, if it has one.
std::optional<RecordField> findField(std::uint8_t type, std::uint8_t cmd, const std::string& name);

/// The names of all fields of that answer, as a person may be told them; empty when the form names none.
std::string fieldNames(std::uint8_t type, std::uint8_t cmd);

} // namespace zebsim
