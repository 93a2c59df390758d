#include "zebstat/json.h"

#include "facts/text.h"
#include "zebstat/json_parts.h"

namespace zebstat {

namespace {

using namespace facts;

Json objectOf(const Object& object) {
    struct Writer {
        Json operator()(const ControllerObject&) const { return {{"type", "controller"}}; }
        Json operator()(const PhysicalDriveObject& drive) const {
            return {{"type", "physical_drive"},
                    {"device_id", drive.deviceId},
                    {"enclosure_id", orNull(drive.enclosureId)},
                    {"slot", drive.slot}};
        }
        Json operator()(const LogicalDriveObject& ld) const {
            return {{"type", "logical_drive"}, {"number", ld.number}};
        }
        Json operator()(const RaidGroupObject& group) const { return {{"type", "raid_group"}, {"name", group.name}}; }
        Json operator()(const EnclosureObject& enclosure) const {
            return {{"type", "enclosure"}, {"device_id", enclosure.deviceId}};
        }
        Json operator()(const SensorObject& sensor) const {
            return {{"type", "sensor"},
                    {"enclosure_id", sensor.enclosureId},
                    {"sensor", sensor.sensor},
                    {"index", sensor.index}};
        }
        Json operator()(const CacheBackupObject&) const { return {{"type", "cache_backup"}}; }
    };
    return std::visit(Writer{}, object);
}

Json objectOf(const std::optional<Object>& object) {
    return object ? objectOf(*object) : Json(nullptr);
}

Json findingList(const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings)
        list.push_back({{"severity", severityWord(finding.severity)},
                        {"code", finding.code},
                        {"controller", orNull(finding.about.controller)},
                        {"object", objectOf(finding.about.object)},
                        {"text", finding.text}});
    return list;
}

Json errorList(const std::vector<RequestError>& errors) {
    Json list = Json::array();
    for (const RequestError& error : errors)
        list.push_back({{"controller", orNull(error.about.controller)},
                        {"wrapper", error.wrapper},
                        {"object", objectOf(error.about.object)},
                        {"status", error.failure.status},
                        {"text", error.failure.text}});
    return list;
}

} // namespace

std::string jsonDocument(const Collection& collection, const std::vector<Finding>& findings, bool pretty) {
    Json document;
    document["format"] = {{"name", "zebstat"}, {"version", kFormatVersion}};
    document["program"] = {{"version", ZEB_VERSION}, {"library_version", orNull(collection.libraryVersion)}};
    document["host"] = {{"name", collection.hostName}, {"time", collection.hostTime}};
    document["health"] = healthOf(findings);
    document["complete"] = collection.complete();
    document["findings"] = findingList(findings);
    document["errors"] = errorList(collection.errors);
    Json& controllers = document["controllers"] = Json::array();
    for (const Controller& controller : collection.controllers)
        controllers.push_back(controllerOf(controller));
    return document.dump(pretty ? 2 : -1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace zebstat
