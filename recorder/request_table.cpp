#include "recorder/request_table.h"

#include "storelib/records/all.h"

#include <algorithm>
#include <array>

namespace zebrec {

namespace {

constexpr Effect kReads = Effect::kReads;
constexpr Effect kChanges = Effect::kChanges;
using enum Reference;

template <class Record>
constexpr Data record() {
    return {Shape::kRecord, &wire::Layout<Record>::kRecord};
}
constexpr Data kNoData{};
constexpr Data kConfiguration{Shape::kConfiguration};
constexpr Data kNumber{Shape::kNumber};
constexpr Data kSized{Shape::kSized};

constexpr auto kRequests = std::to_array<RequestRow>({
    {0x00, 0x00, kReads, kNone, record<_SL_CTRL_LIST_T>(), "initialise the library"},
    {0x00, 0x04, kReads, kNone, record<_SL_LIB_VER_T>(), "read library version"},
    {0x00, 0x08, kReads, kNone, record<_SL_PARTITION_INFO_T>(), "read partitions of a logical drive"},
    {0x00, 0x09, kReads, kNone, kNoData, "end the use of the library"},
    {0x01, 0x00, kReads, kNone, record<_MR_CTRL_INFO>(), "read controller information"},
    {0x01, 0x01, kReads, kNone, record<_MR_CTRL_PROP>(), "read controller properties"},
    {0x01, 0x02, kChanges, kSequence, record<_MR_CTRL_PROP>(), "set controller properties"},
    {0x01, 0x04, kReads, kNone, record<_MR_PD_LIST>(), "list physical drives"},
    {0x01, 0x05, kReads, kNone, record<_MR_ENCL_LIST>(), "list enclosures"},
    {0x01, 0x0B, kReads, kNone, record<_MR_DRV_PCI_INFORMATION>(), "read PCI information"},
    {0x01, 0x0C, kReads, kNone, record<_SL_LD_OS_MAP_T>(), "read operating system names of logical drives"},
    {0x01, 0x0D, kReads, kNone, record<_MR_LD_LIST>(), "list logical drives"},
    {0x01, 0x0F, kReads, kNone, record<_MR_PR_PROPERTIES>(), "read patrol read properties"},
    {0x01, 0x10, kChanges, kSequence, record<_MR_PR_PROPERTIES>(), "set patrol read properties"},
    {0x01, 0x11, kChanges, kNone, kNoData, "start patrol read"},
    {0x01, 0x12, kChanges, kNone, kNoData, "stop patrol read"},
    {0x01, 0x13, kReads, kNone, record<_MR_DRV_DRIVER_VERSION>(), "read driver version"},
    {0x02, 0x00, kReads, kDevice, record<_MR_PD_INFO>(), "read physical drive information"},
    {0x02, 0x01, kChanges, kDrive, kNoData, "set physical drive online"},
    {0x02, 0x02, kChanges, kDrive, kNoData, "set physical drive offline"},
    {0x02, 0x05, kChanges, kDrive, kNoData, "start rebuild"},
    {0x02, 0x06, kChanges, kDrive, kNoData, "stop rebuild"},
    {0x02, 0x07, kReads, kDevice, record<_MR_PD_PROGRESS>(), "read physical drive progress"},
    {0x02, 0x08, kChanges, kDevice, kNoData, "start locating physical drive"},
    {0x02, 0x09, kChanges, kDevice, kNoData, "stop locating physical drive"},
    {0x02, 0x0A, kChanges, kDrive, kNoData, "make global hot spare"},
    {0x02, 0x0B, kChanges, kDrive, record<_SL_DEDICATED_SPARE_T>(), "make dedicated hot spare"},
    {0x02, 0x0D, kChanges, kDrive, kNoData, "remove hot spare"},
    {0x02, 0x13, kChanges, kDrive, kNoData, "make physical drive unconfigured good"},
    {0x02, 0x14, kReads, kDevice, record<_MR_PD_ALLOWED_OPS>(), "read operations allowed on physical drive"},
    {0x03, 0x00, kReads, kTarget, record<_MR_LD_INFO>(), "read logical drive information"},
    {0x03, 0x01, kReads, kTarget, record<_MR_LD_PROPERTIES>(), "read logical drive properties"},
    {0x03, 0x02, kChanges, kLd, record<_MR_LD_PROPERTIES>(), "set logical drive properties"},
    {0x03, 0x03, kChanges, kLd, kNoData, "delete logical drive"},
    {0x03, 0x06, kChanges, kLd, kNoData, "start consistency check"},
    {0x03, 0x07, kChanges, kLd, kNoData, "stop consistency check"},
    {0x03, 0x08, kReads, kTarget, record<_MR_LD_PROGRESS>(), "read logical drive progress"},
    {0x03, 0x09, kChanges, kLd, kNoData, "start initialisation"},
    {0x03, 0x0A, kChanges, kLd, kNoData, "stop initialisation"},
    {0x03, 0x0B, kReads, kTarget, record<_SL_PD_IN_LD_T>(), "list physical drives of logical drive"},
    {0x03, 0x0E, kReads, kTarget, record<_MR_LD_ALLOWED_OPS>(), "read operations allowed on logical drive"},
    {0x04, 0x00, kReads, kNone, kConfiguration, "read configuration"},
    {0x04, 0x03, kReads, kNone, record<_MR_FOREIGN_CFG_GUIDS>(), "scan for foreign configurations"},
    {0x04, 0x05, kReads, kEveryForeign, kConfiguration, "preview import of foreign configurations"},
    {0x04, 0x06, kChanges, kEveryForeign, kNoData, "import foreign configurations"},
    {0x04, 0x07, kChanges, kEveryForeign, kNoData, "clear foreign configurations"},
    {0x04, 0x08, kReads, kArray, record<_SL_ARRAY_INFO_T>(), "read array"},
    {0x05, 0x00, kReads, kNone, record<_MR_BBU_STATUS>(), "read cache backup unit status"},
    {0x05, 0x01, kReads, kNone, record<_MR_BBU_CAPACITY_INFO>(), "read cache backup unit capacity"},
    {0x05, 0x02, kReads, kNone, record<_MR_BBU_DESIGN_INFO>(), "read cache backup unit design"},
    {0x05, 0x03, kChanges, kNone, kNoData, "start learn cycle of cache backup unit"},
    {0x05, 0x04, kReads, kNone, record<_MR_BBU_PROPERTIES>(), "read cache backup unit properties"},
    {0x08, 0x00, kReads, kEnclosure, record<_SL_ENCL_CONFIG_T>(), "read enclosure configuration"},
    {0x08, 0x05, kReads, kEnclosure, record<_SL_ENCL_STATUS_EX_T>(), "read enclosure status"},
});

constexpr auto kDcmds = std::to_array<DcmdRow>({
    {0x01080201, kReads, kNone, kNumber, "read controller clock"},
    {0x010E0201, kReads, kNone, record<_MR_MFC_DEFAULTS>(), "read manufacturing defaults"},
    {0x010E0202, kChanges, kNone, record<_MR_MFC_DEFAULTS>(), "set manufacturing defaults"},
    {0x030F0100, kChanges, kTarget, {Shape::kUnknown}, "enable snapshots"},
    {0x030F0200, kChanges, kTarget, kNoData, "disable snapshots"},
    {0x030F0300, kChanges, kTarget, {Shape::kUnknown}, "create snapshot"},
    {0x030F0400, kChanges, kTarget, {Shape::kUnknown}, "delete snapshot"},
    {0x030F0500, kChanges, kTarget, {Shape::kUnknown}, "create snapshot view"},
    {0x030F0600, kChanges, kTarget, {Shape::kUnknown}, "delete snapshot view"},
    {0x030F0800, kReads, kTarget, kSized, "read snapshot information"},
    {0x030F0C00, kReads, kTarget, kSized, "read snapshot repository space"},
    {0x04020000, kChanges, kNone, kConfiguration, "add to configuration"},
    {0x07030000, kReads, kNone, record<_MR_SAS_CONNECTORS>(), "read SAS connectors"},
});

constexpr auto kScsiCommands = std::to_array<ScsiRow>({
    {0x28, kReads, "READ sectors of physical drive"},
    {0x4D, kReads, "LOG SENSE of physical drive"},
});

template <class Row, class Test>
const Row* find(std::span<const Row> rows, Test test) {
    const auto found = std::find_if(rows.begin(), rows.end(), test);
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

std::span<const RequestRow> requestRows() {
    return kRequests;
}
std::span<const DcmdRow> dcmdRows() {
    return kDcmds;
}
std::span<const ScsiRow> scsiRows() {
    return kScsiCommands;
}

const RequestRow* findRequest(std::uint8_t type, std::uint8_t cmd) {
    return find(requestRows(), [=](const RequestRow& row) { return row.type == type && row.cmd == cmd; });
}
const DcmdRow* findDcmd(std::uint32_t opcode) {
    return find(dcmdRows(), [=](const DcmdRow& row) { return row.opcode == opcode; });
}
const ScsiRow* findScsi(std::uint8_t operation) {
    return find(scsiRows(), [=](const ScsiRow& row) { return row.operation == operation; });
}

} // namespace zebrec
