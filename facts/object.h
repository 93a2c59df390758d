// What a failure or a finding is about.
#pragma once

#include "facts/word.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace facts {

/// The controller itself: also its lists, settings and clock.
struct ControllerObject {
    bool operator==(const ControllerObject&) const = default;
};

struct PhysicalDriveObject {
    std::uint16_t deviceId = 0;
    std::optional<std::uint16_t> enclosureId;
    std::uint8_t slot = 0;
    bool operator==(const PhysicalDriveObject&) const = default;
};

struct LogicalDriveObject {
    std::uint8_t number = 0;
    bool operator==(const LogicalDriveObject&) const = default;
};

struct RaidGroupObject {
    std::string name;
    bool operator==(const RaidGroupObject&) const = default;
};

struct EnclosureObject {
    std::uint16_t deviceId = 0;
    bool operator==(const EnclosureObject&) const = default;
};

struct SensorObject {
    std::uint16_t enclosureId = 0;
    std::string_view sensor; ///< its type
    unsigned index = 0;
    bool operator==(const SensorObject&) const = default;
};

struct CacheBackupObject {
    bool operator==(const CacheBackupObject&) const = default;
};

using Object = std::variant<ControllerObject, PhysicalDriveObject, LogicalDriveObject, RaidGroupObject, EnclosureObject,
                            SensorObject, CacheBackupObject>;

/// An object on a controller; without both it is the library.
struct ObjectRef {
    std::optional<std::uint8_t> controller;
    std::optional<Object> object;
    bool operator==(const ObjectRef&) const = default;
};

/// A library status that tells of a failure, in words.
struct Failure {
    std::uint32_t status = 0;
    std::string text;
};

/// The question whose failure makes a controller unreadable.
inline constexpr std::string_view kControllerInfoWrapper = "SLGetCtrlInfo";

/// A request that failed.
struct RequestError {
    ObjectRef about;
    std::string_view wrapper;
    Failure failure;
};

} // namespace facts
