// A physical drive.
#pragma once

#include "facts/object.h"
#include "facts/operation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

inline constexpr std::string_view kRoleMember = "member";
inline constexpr std::string_view kRoleGlobalSpare = "global_spare";
inline constexpr std::string_view kRoleDedicatedSpare = "dedicated_spare";
inline constexpr std::string_view kRoleNone = "none";

/// What the drive's own information tells.
struct PhysicalDriveInfo {
    Word state;
    Word media;
    Word interface;
    std::optional<std::string> vendor;
    std::optional<std::string> product;
    std::optional<std::string> revision;
    std::optional<std::uint64_t> usableBytes;
    std::optional<std::uint64_t> rawBytes;
    std::uint32_t mediaErrors = 0;
    std::uint32_t otherErrors = 0;
    std::uint32_t predictiveFailures = 0;
    std::optional<unsigned> temperatureCelsius;
    Word power;
    std::optional<double> deviceSpeedGbps;
    std::optional<double> linkSpeedGbps;
    std::vector<std::string> sasAddresses; ///< 16 hexadecimal digits each
    std::string_view role;
    bool foreign = false;
    std::optional<std::string> raidGroup; ///< whose arrays hold the drive
    std::optional<std::vector<std::uint8_t>> logicalDrives; ///< of that group
    std::optional<std::uint16_t> copybackPartner; ///< device id of the other side
    std::vector<Operation> operations;
};

struct PhysicalDrive {
    std::uint16_t deviceId = 0;
    std::optional<std::uint16_t> enclosureId;
    std::uint8_t slot = 0;
    std::optional<Failure> error; ///< its information could not be read
    std::optional<PhysicalDriveInfo> info; ///< there unless it could not

    Object object() const { return PhysicalDriveObject{deviceId, enclosureId, slot}; }
};

} // namespace facts
