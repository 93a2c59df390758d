#include "storelib/common/StoreLib/controller.h"

#include "log/zebcli_log.h"
#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr Command kGetCtrlProp{0x01, 0x01};
constexpr Command kSetCtrlProp{0x01, 0x02};
constexpr Command kGetLdOsMap{0x01, 0x0C};

/// Sends changed properties with the sequence number that came with the ones that were read.
std::uint32_t writeCtrlProp(Caller caller, unsigned char contNo, std::uint16_t seqNo, _MR_CTRL_PROP& properties) {
    SL_LIB_CMD_PARAM_T request = makeRequest(kSetCtrlProp, contNo);
    request.ref.ctrlSeqNo = seqNo;
    attachData(request, &properties, sizeof properties);
    return sendRequest(caller, request, contNo, Trace::Always);
}

/// Reads which LD the operating system knows under which name.
std::uint32_t readLdOsMap(Caller caller, unsigned char contNo, HeapRecord<_SL_LD_OS_MAP_T>& map) {
    map = allocateRecord<_SL_LD_OS_MAP_T>();
    return map ? query(caller, contNo, kGetLdOsMap, map.get()) : kSlMemoryAllocFailed;
}

/// Whether the PCI identity is that of one of the two models that cannot copy back.
bool isEntryModel(const _MR_CTRL_INFO& info) {
    constexpr std::uint16_t kVendor = 0x1000;
    constexpr std::uint16_t kDevice = 0x0079;
    constexpr std::uint16_t kFirstModel = 0x9263;
    constexpr std::uint16_t kSecondModel = 0x9280;
    return info.vendorId == kVendor && info.deviceId == kDevice && info.subVendorId == kVendor &&
           (info.subDeviceId == kFirstModel || info.subDeviceId == kSecondModel);
}

void setBit(std::uint32_t& word, std::uint32_t bit, bool on) {
    word = on ? (word | bit) : (word & ~bit);
}

std::uint32_t readPartition(Caller caller, unsigned char contNo, int ldNo, std::uint32_t partitionArg,
                            _SL_PARTITION_INFO_T* partition) {
    constexpr Command kGetPartition{0x00, 0x08};
    const auto reply = allocateRecord<_SL_PARTITION_INFO_T>(kPartitionReplySize - sizeof *partition);
    if (!reply)
        return kSlMemoryAllocFailed;
    SL_LIB_CMD_PARAM_T request = makeRequest(kGetPartition, contNo);
    request.param.bytes[0] = static_cast<std::uint8_t>(partitionArg);
    request.param.bytes[1] = static_cast<std::uint8_t>(ldNo);
    attachData(request, reply.get(), kPartitionReplySize);
    const std::uint32_t status = sendRequest(caller, request, contNo, Trace::Always);
    if (status == kSlSuccess)
        *partition = *reply;
    return status;
}

} // namespace

std::uint32_t SLGetLibraryVersion(_SL_LIB_VER_T* version) {
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = 0x00;
    request.cmd = 0x04;
    attachData(request, version, sizeof *version);
    const std::uint32_t status = pfnProcessLibCommandMR != nullptr ? pfnProcessLibCommandMR(&request) : kSlInvalidInput;
    if (status != kSlSuccess)
        SLLogging(kStoreLibSource, __LINE__, __func__, status, &request);
    return status;
}

std::uint32_t SLGetCtrlInfo(unsigned char contNo, _MR_CTRL_INFO* info) {
    return queryZeroed(__func__, contNo, {0x01, 0x00}, info);
}

std::uint32_t SLGetCtrlProp(unsigned char contNo, _MR_CTRL_PROP* properties) {
    return queryZeroed(__func__, contNo, kGetCtrlProp, properties);
}

std::uint32_t SLGetPciInfo(unsigned char contNo, _MR_DRV_PCI_INFORMATION* info) {
    return query(__func__, contNo, {0x01, 0x0B}, info);
}

std::uint32_t SLGetDrvVer(unsigned char contNo, _MR_DRV_DRIVER_VERSION* version) {
    return query(__func__, contNo, {0x01, 0x13}, version);
}

std::uint32_t SLGetPatrolReadProp(unsigned char contNo, _MR_PR_PROPERTIES* properties) {
    return query(__func__, contNo, {0x01, 0x0F}, properties);
}

std::uint32_t SLGetCtrlSequenceNumber(unsigned char contNo, std::uint16_t* seqNo) {
    _MR_CTRL_PROP properties{};
    if (const std::uint32_t status = SLGetCtrlProp(contNo, &properties); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    *seqNo = properties.seqNo;
    return kSlSuccess;
}

std::uint32_t SLGetTime(unsigned char contNo, unsigned int* seconds) {
    return sendDcmd(__func__, contNo, {0x01080201, kDcmdFromController}, seconds, sizeof *seconds);
}

std::uint32_t SLGetMFCDefaults(unsigned char contNo, _MR_MFC_DEFAULTS* defaults) {
    return sendDcmd(__func__, contNo, {0x010E0201, kDcmdFromController}, defaults, sizeof *defaults);
}

std::uint32_t SLSetMFCDefaults(unsigned char contNo, _MR_MFC_DEFAULTS* defaults) {
    return sendDcmd(__func__, contNo, {0x010E0202, kDcmdToController}, defaults, sizeof *defaults);
}

std::uint32_t SLGetOSDriveName(unsigned char contNo, int ldNo, char (&name)[kOsDriveNameSize]) {
    constexpr char kNullName[] = "NULL";
    std::memcpy(name, kNullName, sizeof kNullName);
    HeapRecord<_SL_LD_OS_MAP_T> map;
    if (const std::uint32_t status = readLdOsMap(__func__, contNo, map); status != kSlSuccess)
        return status;
    for (const _SL_LD_OS_MAP_ENTRY& entry : entriesOf(*map)) {
        if (entry.targetId != static_cast<std::uint32_t>(ldNo))
            continue; // no early exit: the last entry of an LD that is mapped twice counts
        std::copy_n(entry.osDeviceName, sizeof name - 1, name);
        name[sizeof name - 1] = '\0';
    }
    return kSlSuccess;
}

std::uint32_t SLGetOSDriveNames(unsigned char contNo, unsigned char ldNo, OsDriveNames* names) {
    *names = OsDriveNames{};
    HeapRecord<_SL_LD_OS_MAP_T> map;
    if (const std::uint32_t status = readLdOsMap(__func__, contNo, map); status != kSlSuccess)
        return status;
    for (const _SL_LD_OS_MAP_ENTRY& entry : entriesOf(*map))
        if (entry.targetId == ldNo)
            std::copy(std::begin(entry.osDeviceName), std::end(entry.osDeviceName), names->name[names->count++]);
    return kSlSuccess;
}

std::uint32_t SLGetLDPartition(unsigned char contNo, int ldNo, _SL_PARTITION_INFO_T* partition) {
    HeapRecord<_SL_LD_OS_MAP_T> map;
    if (const std::uint32_t status = readLdOsMap(__func__, contNo, map); status != kSlSuccess)
        return status;
    const auto known = entriesOf(*map);
    const auto entry = std::find_if(known.begin(), known.end(), [&](const _SL_LD_OS_MAP_ENTRY& candidate) {
        return candidate.targetId == static_cast<std::uint32_t>(ldNo);
    });
    if (entry == known.end())
        return kSlSuccess;
    return readPartition(__func__, contNo, ldNo, entry->partitionArg, partition);
}

std::uint32_t SLGetLDOSMap(unsigned char contNo, _SL_LD_OS_MAP_T* map) {
    return query(__func__, contNo, kGetLdOsMap, map);
}

std::uint32_t SLGetMappedPartition(unsigned char contNo, int ldNo, std::uint32_t partitionArg,
                                   _SL_PARTITION_INFO_T* partition) {
    return readPartition(__func__, contNo, ldNo, partitionArg, partition);
}

std::uint32_t SLSetCtrlProp(unsigned char contNo, const SL_CTRL_SETTING_INFO* settings) {
    _MR_CTRL_PROP current{};
    if (const std::uint32_t status = query(__func__, contNo, kGetCtrlProp, &current); status != kSlSuccess)
        return status;
    _MR_CTRL_PROP changed = current;
    changed.rebuildRate = changed.patrolReadRate = changed.bgiRate = changed.ccRate = changed.reconRate =
        settings->taskRate;
    std::uint32_t onOff = changed.onOff;
    setBit(onOff, kPropCopybackDisabled, (settings->copybackDisabled & 1U) != 0);
    setBit(onOff, kPropSmartCopybackHdd, (settings->smartCopybackHdd & 1U) != 0);
    setBit(onOff, kPropSmartCopybackSsd, (settings->smartCopybackSsd & 1U) != 0);
    changed.onOff = onOff;
    Utillogging_dmp(kStoreLibSource, __LINE__, kTracePlain, &changed, sizeof changed, "func=%s: contNo=%u", __func__,
                    contNo);
    return writeCtrlProp(__func__, contNo, current.seqNo, changed);
}

std::uint32_t SLSetCtrlRbldMode(unsigned char contNo, unsigned char disableAutoRebuild) {
    _MR_CTRL_PROP current{};
    if (const std::uint32_t status = query(__func__, contNo, kGetCtrlProp, &current); status != kSlSuccess)
        return status;
    _MR_CTRL_PROP changed = current;
    changed.disableAutoRebuild = disableAutoRebuild;
    Utillogging_dmp(kStoreLibSource, __LINE__, kTracePlain, &changed, sizeof changed,
                    "func=%s: contNo=%u, disableAutoRebuild=%u", __func__, contNo, disableAutoRebuild);
    return writeCtrlProp(__func__, contNo, current.seqNo, changed);
}

std::uint32_t SLSetPatrolReadProp(unsigned char contNo, const _MR_PR_PROPERTIES* /*oldProperties*/,
                                  const _MR_PR_PROPERTIES* newProperties) {
    constexpr Command kSetPatrolReadProp{0x01, 0x10};
    std::uint16_t seqNo = 0;
    if (const std::uint32_t status = SLGetCtrlSequenceNumber(contNo, &seqNo); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    _MR_PR_PROPERTIES properties = *newProperties;
    SL_LIB_CMD_PARAM_T request = makeRequest(kSetPatrolReadProp, contNo);
    request.ref.ctrlSeqNo = seqNo;
    attachData(request, &properties, sizeof properties);
    Utillogging_dmp(kStoreLibSource, __LINE__, kTracePlain, &properties, sizeof properties, "func=%s: contNo=%u",
                    __func__, contNo);
    return sendRequest(__func__, request, contNo, Trace::Always);
}

std::uint32_t SLStartPatrolReadOpe(unsigned char contNo) {
    return command(__func__, contNo, {0x01, 0x11});
}

std::uint32_t SLStopPatrolReadOpe(unsigned char contNo) {
    return command(__func__, contNo, {0x01, 0x12});
}

std::uint32_t SLSetFailPDOnSmartTer(unsigned char contNo, unsigned char value) {
    Utillogging(kStoreLibSource, __LINE__, kTracePlain, "func=%s: contNo=%u, failPdOnSMARTer=%u", __func__, contNo,
                value);
    _MR_MFC_DEFAULTS defaults{};
    if (const std::uint32_t status = SLGetMFCDefaults(contNo, &defaults); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    defaults.failPdOnSmartError = value;
    if (const std::uint32_t status = SLSetMFCDefaults(contNo, &defaults); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    return kSlSuccess;
}

int SLIsCopybackSupported(const _MR_CTRL_INFO* info) {
    if (std::memcmp(info->productName, kSoftwareRaidProduct, sizeof kSoftwareRaidProduct) == 0)
        return 0;
    return isEntryModel(*info) ? 0 : 1;
}
