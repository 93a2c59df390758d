// Scenario files: the model as JSON text. A state file has the same form.
#pragma once

#include "simulator/model.h"

#include <stdexcept>
#include <string>

namespace zebsim {

extern const char* const kBuiltInScenario;

/// A file that cannot be used: where in it, and what to change. `what()` reads "<place>: <mend>".
class ScenarioError : public std::runtime_error {
  public:
    ScenarioError(const std::string& place, const std::string& mend)
        : std::runtime_error(place.empty() ? mend : place + ": " + mend) {}
};

/// Reads a scenario or a state. Throws ScenarioError; what it returns is consistent.
Model readScenario(const std::string& text);

/// Writes the model so that readScenario() restores it. Values that are the form's defaults are left out.
std::string writeScenario(const Model& model);

/// Throws ScenarioError when two drives share a slot or a device id. `place` names the controller.
void checkDrives(const Controller& ctrl, const std::string& place);

/// Throws ScenarioError when the controller contradicts itself: a drive in two arrays, overlapping LDs, and so on.
void checkController(const Controller& ctrl, const std::string& place);

} // namespace zebsim
