// What somebody else does to the hardware in the middle of a run: drives that fail or are pulled, LDs that vanish.
#include "simulator/consequences.h"
#include "simulator/fault_effects.h"
#include "simulator/form_drive.h"

#include <algorithm>

namespace zebsim {

namespace {

/// A drive as a fault names it. Which one that is turns out only when the fault acts.
struct DriveName {
    std::optional<std::uint16_t> deviceId; ///< none: by slot
    std::uint8_t slot = 0;
};

struct Event {
    std::optional<std::uint32_t> ctrl; ///< none: the controller of the picked request
    std::optional<DriveName> drive;
    std::optional<std::uint8_t> ld;
    std::uint16_t state = kUndecidedState;
    bool gone = false;
};

DriveName driveNameOf(const Json& node, const std::string& place) {
    if (!node.is_object())
        return {{}, static_cast<std::uint8_t>(unsignedOf(node, place, 0, 255))};
    Reader reader(node, place);
    std::uint16_t deviceId = 0;
    reader.number("deviceId", deviceId, kNoDevice);
    reader.finish();
    return {deviceId, 0};
}

Event readEvent(const Json& node, const std::string& place) {
    Reader reader(node, place);
    Event event;
    std::string drive;
    reader.optionalNumber("ctrl", event.ctrl, {});
    reader.optionalNumber("ld", event.ld, {});
    reader.raw("drive", drive);
    if (!drive.empty())
        event.drive = driveNameOf(Json::parse(drive), reader.at("drive"));
    reader.word("state", event.state, kUndecidedState, kDriveStates);
    reader.flag("gone", event.gone, false);
    reader.finish();
    if (event.drive.has_value() == event.ld.has_value())
        throw ScenarioError(place, "name either a \"drive\" or an \"ld\"");
    const bool state = event.state != kUndecidedState;
    if (state == event.gone || (state && event.ld))
        throw ScenarioError(place, "give \"gone\": true, or for a drive a \"state\"");
    return event;
}

Drive* named(Controller& ctrl, const DriveName& name) {
    const auto found = std::ranges::find_if(ctrl.drives, [&](const Drive& drive) {
        return name.deviceId ? drive.deviceId == *name.deviceId : drive.slot == name.slot;
    });
    return found == ctrl.drives.end() ? nullptr : &*found;
}

/// Lets the event happen. False when there is nothing that it could happen to.
bool happen(Controller& ctrl, const Event& event) {
    if (event.ld) {
        LogicalDrive* ld = findLd(ctrl, *event.ld);
        if (ld != nullptr)
            removeLd(ctrl, *ld);
        return ld != nullptr;
    }
    Drive* drive = named(ctrl, *event.drive);
    if (drive == nullptr)
        return false;
    if (!event.gone)
        return imposeState(ctrl, *drive, event.state);
    removeDrive(ctrl, *drive);
    return true;
}

} // namespace

void readAlso(Reader& reader, Effects& effects) {
    std::string text;
    reader.raw("also", text);
    Json list = Json::parse(text);
    if (!list.is_array())
        list = Json::array({list});
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Event event = readEvent(list[i], reader.at("also") + "[" + std::to_string(i) + "]");
        effects.emplace_back(Phase::kAfter, [event](Stage& stage, std::uint64_t) {
            Controller* ctrl = findController(stage.model, event.ctrl.value_or(stage.request.ctrlId));
            if (ctrl != nullptr && happen(*ctrl, event))
                stage.changed = true;
        });
    }
}

} // namespace zebsim
