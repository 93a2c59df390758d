// The document that a scenario asks for, computed from the scenario file and the simulator's documented defaults alone.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace zebtest {

using Json = nlohmann::json;

/// The scenario of that name; "built_in" is the simulator's own.
Json scenarioNamed(const std::string& name);

/// The path to give as ZEBSIM_SCENARIO; empty for the built-in one.
std::string scenarioPath(const std::string& name);

/// "controllers", "errors" and "findings" (without their texts) as they must stand in the document.
Json expectedDocument(const std::string& name);
/// The same for a scenario that is no kept one, such as a state file.
Json expectedDocument(const Json& scenario);

/// Where a document differs from the expected one, a line for each key; empty when it does not. The findings may stand
/// in any order.
std::string differences(Json document, Json expected);

} // namespace zebtest
