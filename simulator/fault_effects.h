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

/// A field of a record that the form can name.
struct RecordField {
    std::uint8_t type;
    std::uint8_t cmd;
    const char* name;
    std::uint32_t offset;
    std::uint32_t width; ///< bytes; up to 8 hold a number, more a text
};

/// The field of that name in the answer to a request, or null.
const RecordField* findField(std::uint8_t type, std::uint8_t cmd, const std::string& name);

/// The names of all fields of that answer, as a person may be told them; empty when the form names none.
std::string fieldNames(std::uint8_t type, std::uint8_t cmd);

} // namespace zebsim
