#include "storelib/common/StoreLib/passthrough.h"

#include "log/zebcli_log.h"
#include "storelib/common/StoreLib/physical_drive.h"

#include <algorithm>

namespace {

constexpr Command kScsiPassThru{0x06, 0x00};
constexpr Command kDcmdPassThru{0x06, 0x03};

constexpr std::uint8_t kFromDrive = 2;
constexpr std::uint8_t kCdbLength = 10;
constexpr std::uint8_t kLogSense = 0x4D;
constexpr std::uint8_t kRead10 = 0x28;
constexpr std::uint8_t kCumulativeValues = 0x40;
constexpr std::uint8_t kSupportedPages = 0x00;
constexpr std::uint8_t kTemperaturePage = 0x0D;
constexpr std::size_t kPageLengthByte = 3;
constexpr std::size_t kFirstPageByte = 4;
constexpr std::size_t kTemperatureByte = 9;

constexpr std::uint32_t kSectorSize = 512;
constexpr std::size_t kFirstPartitionEntry = 446;
constexpr std::size_t kPartitionEntrySize = 16;
constexpr std::uint8_t kActivePartition = 0x80;

/// A pass-through block for a command that reads from the drive: the header and a zeroed data area.
HeapRecord<_SL_SCSI_PASSTHRU_T> makeScsiRead(std::uint16_t deviceId, std::uint8_t kind, std::uint16_t timeout,
                                             std::uint32_t dataLength) {
    auto block = allocateRecord<_SL_SCSI_PASSTHRU_T>(dataLength);
    if (block) {
        block->deviceId = deviceId;
        block->kind = kind;
        block->direction = kFromDrive;
        block->timeout = timeout;
        block->cdbLength = kCdbLength;
        block->dataLength = dataLength;
    }
    return block;
}

SL_LIB_CMD_PARAM_T scsiRequest(unsigned char contNo, _SL_SCSI_PASSTHRU_T* block) {
    SL_LIB_CMD_PARAM_T request = makeRequest(kScsiPassThru, contNo);
    request.ref.pdRef.deviceId = block->deviceId;
    attachData(request, block, static_cast<std::uint32_t>(sizeof *block + block->dataLength));
    return request;
}

const std::uint8_t* scsiData(const _SL_SCSI_PASSTHRU_T* block) {
    return reinterpret_cast<const std::uint8_t*>(block) + sizeof *block;
}

/// LOG SENSE (SPC-3) of one page. A drive that does not know the page is no fault worth a trace: the send is not
/// logged.
std::uint32_t logSense(unsigned char contNo, std::uint16_t deviceId, std::uint8_t page, LogPage& out) {
    constexpr std::uint8_t kLogSenseKind = 1;
    constexpr std::uint16_t kTimeout = 10;
    const auto block = makeScsiRead(deviceId, kLogSenseKind, kTimeout, kLogPageSize);
    if (!block)
        return kSlMemoryAllocFailed;
    block->cdb[0] = kLogSense;
    block->cdb[2] = page | kCumulativeValues;
    block->cdb[7] = kLogPageSize >> 8U;
    block->cdb[8] = kLogPageSize & 0xFFU;
    SL_LIB_CMD_PARAM_T request = scsiRequest(contNo, block.get());
    const std::uint32_t status = ProcessLibCommandCall(&request, contNo);
    if (status == kSlSuccess)
        std::copy_n(scsiData(block.get()), out.size(), out.begin());
    return status;
}

bool listsTemperaturePage(const LogPage& pages) {
    const auto first = pages.begin() + kFirstPageByte;
    const auto last = pages.begin() + std::min(kFirstPageByte + pages[kPageLengthByte], pages.size());
    return std::find(first, last, kTemperaturePage) != last;
}

} // namespace

std::uint32_t SendDCMDPassThru(unsigned char contNo, _SL_DCMD_INPUT_T* input) {
    SL_LIB_CMD_PARAM_T request = makeRequest(kDcmdPassThru, contNo);
    attachData(request, input, sizeof *input);
    const std::uint32_t status = sendRequest(__func__, request, contNo);
    if (status != kSlSuccess)
        Utillogging_dmp(kStoreLibSource, __LINE__, kTracePlain, input, sizeof *input, "func=%s: DcmdInput >", __func__);
    return status;
}

std::uint32_t sendDcmd(Caller caller, unsigned char contNo, Dcmd dcmd, void* data, std::uint32_t size) {
    _SL_DCMD_INPUT_T input{};
    input.dataSize = size;
    input.opcode = dcmd.opcode;
    input.direction = dcmd.direction;
    input.mailbox[0] = dcmd.firstMailboxByte;
    input.data = data;
    const std::uint32_t status = SendDCMDPassThru(contNo, &input);
    if (status != kSlSuccess)
        SLLoggingPassThru(kStoreLibSource, caller.line, caller.func, status, &input);
    return status;
}

std::uint32_t SCSISENSEPassthru(unsigned char contNo, unsigned char slotNo, unsigned char page, LogPage& out) {
    std::uint16_t deviceId = 0;
    if (const std::uint32_t status = SLGetDeviceId(contNo, slotNo, &deviceId); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    return logSense(contNo, deviceId, page, out);
}

std::uint32_t SLIsTempPageSupported(unsigned char contNo, unsigned char slotNo, int* supported) {
    *supported = 0;
    LogPage pages{};
    const std::uint32_t status = SCSISENSEPassthru(contNo, slotNo, kSupportedPages, pages);
    if (status == kSlSuccess)
        *supported = listsTemperaturePage(pages) ? 1 : 0;
    return status;
}

std::uint32_t SLIsTempPageSupportedByDevice(unsigned char contNo, std::uint16_t deviceId, int* supported) {
    *supported = 0;
    LogPage pages{};
    const std::uint32_t status = logSense(contNo, deviceId, kSupportedPages, pages);
    if (status == kSlSuccess)
        *supported = listsTemperaturePage(pages) ? 1 : 0;
    return status;
}

std::uint32_t SLGetPDTemperature(unsigned char contNo, unsigned char slotNo, unsigned char* temperature) {
    LogPage page{};
    const std::uint32_t status = SCSISENSEPassthru(contNo, slotNo, kTemperaturePage, page);
    if (status == kSlSuccess)
        *temperature = page[kTemperatureByte];
    return status;
}

std::uint32_t SLGetPDTemperatureByDevice(unsigned char contNo, std::uint16_t deviceId, unsigned char* temperature) {
    LogPage page{};
    const std::uint32_t status = logSense(contNo, deviceId, kTemperaturePage, page);
    if (status == kSlSuccess)
        *temperature = page[kTemperatureByte];
    return status;
}

std::uint32_t SLCheckBootDisk(unsigned char contNo, unsigned char slotNo, int* bootDisk) {
    constexpr std::uint8_t kReadKind = 0;
    constexpr std::uint16_t kTimeout = 180;
    *bootDisk = 0;
    std::uint16_t deviceId = 0;
    if (const std::uint32_t status = SLGetDeviceId(contNo, slotNo, &deviceId); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    const auto block = makeScsiRead(deviceId, kReadKind, kTimeout, kSectorSize);
    if (!block)
        return kSlMemoryAllocFailed;
    block->cdb[0] = kRead10;
    block->cdb[8] = 1;
    // The read goes out twice on purpose; the second answer counts.
    SL_LIB_CMD_PARAM_T request = scsiRequest(contNo, block.get());
    ProcessLibCommandCall(&request, contNo);
    const std::uint32_t status = sendRequest(__func__, request, contNo);
    if (status == kSlSuccess)
        *bootDisk = SLCheckForBoot(scsiData(block.get()), kSectorSize);
    return status;
}

int SLCheckForBoot(const std::uint8_t* sector, std::size_t size) {
    for (std::size_t offset = kFirstPartitionEntry; offset < size; offset += kPartitionEntrySize)
        if (sector[offset] == kActivePartition)
            return 1;
    return 0;
}
