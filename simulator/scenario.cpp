#include "simulator/scenario.h"

#include "simulator/form_controller.h"

namespace zebsim {

namespace {

bool isForeignDrive(const Controller& ctrl, std::uint16_t deviceId) {
    for (const ForeignConfig& foreign : ctrl.foreign) {
        for (const Array& array : foreign.arrays) {
            if (std::find(array.drives.begin(), array.drives.end(), deviceId) != array.drives.end())
                return true;
        }
    }
    return false;
}

/// Fills in the states that the file leaves to its arrays and spares.
void decideStates(Controller& ctrl) {
    for (Drive& drive : ctrl.drives) {
        drive.foreign = drive.foreign || isForeignDrive(ctrl, drive.deviceId);
        if (drive.state != kUndecidedState)
            continue;
        if (drive.copyback)
            drive.state = kPdCopyback;
        else if (arrayOfDrive(ctrl, drive.deviceId) != nullptr)
            drive.state = drive.rebuild ? kPdRebuild : kPdOnline;
        else
            drive.state = findSpare(ctrl, drive.deviceId) != nullptr ? kPdHotSpare : kPdUnconfiguredGood;
    }
    for (LogicalDrive& ld : ctrl.lds) {
        if (ld.state == kUndecidedLdState)
            ld.state = derivedLdState(ctrl, ld, ctrl.arrays);
    }
    for (ForeignConfig& foreign : ctrl.foreign) {
        for (LogicalDrive& ld : foreign.lds)
            ld.state = ld.state == kUndecidedLdState ? std::uint8_t{kLdOptimal} : ld.state;
    }
}

template <class Io>
void describeModel(Io& io, Model& model) {
    constexpr std::size_t kMostControllers = 16;
    io.text("description", model.description, "", 400);
    io.objects("controllers", model.controllers, kMostControllers,
               [](auto& element, Controller& ctrl, std::size_t) { describeController(element, ctrl); });
    io.flag("strictDelete", model.strictDelete, false);
    io.raw("faults", model.faults);
}

/// JSON with short objects and lists on one line, so that a person can read a state file.
std::string laidOut(const Json& node, std::size_t indent) {
    constexpr std::size_t kWidth = 118;
    const std::string flat = node.dump();
    if (!node.is_structured() || node.empty() || flat.size() + indent <= kWidth)
        return flat;
    const std::string pad(indent + 2, ' ');
    std::string text(1, node.is_object() ? '{' : '[');
    bool first = true;
    for (const auto& [key, value] : node.items()) {
        text += first ? "\n" : ",\n";
        text += pad + (node.is_object() ? Json(key).dump() + ": " : "") + laidOut(value, indent + 2);
        first = false;
    }
    return text + "\n" + std::string(indent, ' ') + (node.is_object() ? '}' : ']');
}

} // namespace

Model readScenario(const std::string& text) {
    const Json tree = parsedJson(text);
    Reader reader(tree, "");
    Model model;
    describeModel(reader, model);
    if (reader.has("savedAt")) {
        double savedAt = 0;
        reader.real("savedAt", savedAt, 0, 0, 1e12);
        model.savedAt = savedAt;
    }
    reader.finish();
    for (std::size_t i = 0; i < model.controllers.size(); ++i) {
        const std::string place = "controllers[" + std::to_string(i) + "]";
        for (std::size_t j = 0; j < i; ++j) {
            if (model.controllers[j].id == model.controllers[i].id)
                throw ScenarioError(place + ".id", "give each controller an id of its own");
        }
        decideStates(model.controllers[i]);
        checkController(model.controllers[i], place);
    }
    return model;
}

std::string writeScenario(const Model& model) {
    Model copy = model;
    Writer writer;
    describeModel(writer, copy);
    if (model.savedAt)
        writer.json["savedAt"] = *model.savedAt;
    if (!writer.json.contains("controllers"))
        writer.json["controllers"] = Json::array();
    return laidOut(writer.json, 0) + "\n";
}

} // namespace zebsim
