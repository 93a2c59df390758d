// The fields that a fault can set by name: those of the records that commands read before they change something.
#include "simulator/fault_effects.h"
#include "storelib/records/controller.h"
#include "storelib/records/logical_drive.h"

#include <algorithm>

namespace zebsim {

namespace {

#define ZEBSIM_FIELD(type, cmd, Record, member, name)                      \
    RecordField {                                                          \
        type, cmd, name, offsetof(Record, member), sizeof(Record{}.member) \
    }

#define ZEBSIM_PROPERTIES(type, cmd, Record, at)                                                                      \
    ZEBSIM_FIELD(type, cmd, Record, at rebuildRate, "rebuildRate"),                                                   \
        ZEBSIM_FIELD(type, cmd, Record, at patrolReadRate, "patrolReadRate"),                                         \
        ZEBSIM_FIELD(type, cmd, Record, at bgiRate, "bgiRate"), ZEBSIM_FIELD(type, cmd, Record, at ccRate, "ccRate"), \
        ZEBSIM_FIELD(type, cmd, Record, at reconRate, "reconRate"),                                                   \
        ZEBSIM_FIELD(type, cmd, Record, at cacheFlushInterval, "cacheFlushInterval"),                                 \
        ZEBSIM_FIELD(type, cmd, Record, at alarmEnable, "alarmEnable"),                                               \
        ZEBSIM_FIELD(type, cmd, Record, at disableAutoRebuild, "disableAutoRebuild"),                                 \
        ZEBSIM_FIELD(type, cmd, Record, at onOff, "onOff")

#define ZEBSIM_CTRL(member) ZEBSIM_FIELD(0x01, 0x00, _MR_CTRL_INFO, member, #member)
#define ZEBSIM_PATROL(member) ZEBSIM_FIELD(0x01, 0x0F, _MR_PR_PROPERTIES, member, #member)
#define ZEBSIM_PD(member) ZEBSIM_FIELD(0x02, 0x00, _MR_PD_INFO, member, #member)
#define ZEBSIM_LD(member) ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, member, #member)
#define ZEBSIM_LD_CONFIG(member) ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, config.member, #member)
#define ZEBSIM_LD_PROPERTY(member) ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, config.properties.member, #member)

constexpr RecordField kFields[] = {
    ZEBSIM_CTRL(productName),
    ZEBSIM_CTRL(memorySize),
    ZEBSIM_CTRL(hwPresent),
    ZEBSIM_CTRL(raidLevels),
    ZEBSIM_CTRL(adapterOperations),
    ZEBSIM_CTRL(ldOperations),
    ZEBSIM_CTRL(pdOperations),
    ZEBSIM_CTRL(stripeSizeMin),
    ZEBSIM_CTRL(stripeSizeMax),
    ZEBSIM_CTRL(maxArms),
    ZEBSIM_CTRL(maxSpans),
    ZEBSIM_CTRL(maxArrays),
    ZEBSIM_CTRL(maxLds),
    ZEBSIM_CTRL(maxPds),
    ZEBSIM_CTRL(cacheCadeCapacity),
    ZEBSIM_PROPERTIES(0x01, 0x00, _MR_CTRL_INFO, properties.),
    ZEBSIM_FIELD(0x01, 0x01, _MR_CTRL_PROP, seqNo, "seqNo"),
    ZEBSIM_PROPERTIES(0x01, 0x01, _MR_CTRL_PROP, ),
    ZEBSIM_PATROL(mode),
    ZEBSIM_PATROL(maxPds),
    ZEBSIM_PATROL(excludedLdCount),
    ZEBSIM_PATROL(nextExecution),
    ZEBSIM_PATROL(executionFrequency),
    ZEBSIM_PATROL(clearFrequency),
    ZEBSIM_FIELD(0x02, 0x00, _MR_PD_INFO, ref.deviceId, "deviceId"),
    ZEBSIM_FIELD(0x02, 0x00, _MR_PD_INFO, ref.seqNo, "seqNo"),
    ZEBSIM_FIELD(0x02, 0x00, _MR_PD_INFO, progress.active, "active"),
    ZEBSIM_PD(mediaErrorCount),
    ZEBSIM_PD(otherErrorCount),
    ZEBSIM_PD(predFailCount),
    ZEBSIM_PD(fwState),
    ZEBSIM_PD(ddfType),
    ZEBSIM_PD(rawSize),
    ZEBSIM_PD(coercedSize),
    ZEBSIM_PD(enclDeviceId),
    ZEBSIM_PD(enclIndex),
    ZEBSIM_PD(slotNo),
    ZEBSIM_PD(powerState),
    ZEBSIM_PD(allowedOps),
    ZEBSIM_PD(copybackPartner),
    ZEBSIM_PD(mediaType),
    ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, config.properties.ref.targetId, "targetId"),
    ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, config.properties.ref.seqNo, "seqNo"),
    ZEBSIM_FIELD(0x03, 0x00, _MR_LD_INFO, progress.active, "active"),
    ZEBSIM_LD_PROPERTY(name),
    ZEBSIM_LD_PROPERTY(defaultCachePolicy),
    ZEBSIM_LD_PROPERTY(accessPolicy),
    ZEBSIM_LD_PROPERTY(diskCachePolicy),
    ZEBSIM_LD_PROPERTY(currentCachePolicy),
    ZEBSIM_LD_PROPERTY(noBgi),
    ZEBSIM_LD_PROPERTY(snapshotFlags),
    ZEBSIM_LD_CONFIG(primaryRaidLevel),
    ZEBSIM_LD_CONFIG(stripeSize),
    ZEBSIM_LD_CONFIG(numDrives),
    ZEBSIM_LD_CONFIG(spanDepth),
    ZEBSIM_LD_CONFIG(state),
    ZEBSIM_LD_CONFIG(initState),
    ZEBSIM_LD_CONFIG(isConsistent),
    ZEBSIM_LD_CONFIG(snapshotSource),
    ZEBSIM_LD_CONFIG(cacheCade),
    ZEBSIM_LD(size),
    ZEBSIM_LD(snapshotUse),
};

} // namespace

const RecordField* findField(std::uint8_t type, std::uint8_t cmd, const std::string& name) {
    const auto* found = std::find_if(std::begin(kFields), std::end(kFields), [&](const RecordField& field) {
        return field.type == type && field.cmd == cmd && field.name == name;
    });
    return found == std::end(kFields) ? nullptr : found;
}

std::string fieldNames(std::uint8_t type, std::uint8_t cmd) {
    std::string names;
    for (const RecordField& field : kFields) {
        if (field.type == type && field.cmd == cmd)
            names += (names.empty() ? "" : ", ") + std::string(field.name);
    }
    return names;
}

} // namespace zebsim
