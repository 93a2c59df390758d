#include "storelib/status_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct StatusRow {
    std::uint32_t code;
    const char* text;
};

// Library codes first, firmware codes after them. Misspellings and leading blanks are part of the texts: scripts that
// read the command log look for them.
constexpr auto strInfo = std::to_array<StatusRow>({
    {0x0, "Command was executed successfully"},
    {0x8001, "Initialization not completed"},
    {0x8002, "Initialization failed"},
    {0x8005, "Failed to unregister from WMI"},
    {0x8006, "COM Initialization failed"},
    {0x8007, "The event mask is invalid"},
    {0x8008, "The dll required to provide simulation functionalities is missing"},
    {0x8009, "Command to driver timed out"},
    {0x800A, "Incorrect controller number"},
    {0x800B, "The data ptr was passed in as NULL"},
    {0x800C, "The data size did not match the minimum buffer size required by the command"},
    {0x800D, "The command type was invalid"},
    {0x800E, "The command was invalid"},
    {0x800F, "The firmware flash image is invalid"},
    {0x8010, "The firmware flash image size is invalid"},
    {0x8011, "The firmware flash image size is invalid"},
    {0x8012, "The firmware flash image firmware section is invalid"},
    {0x8013, "The firmware flash image BIOS section is invalid"},
    {0x8014, "The firmware flash image Boot Block section is invalid"},
    {0x8015, "Failed to allocate memory"},
    {0x8016, "Failed to free memory"},
    {0x8017, "Command failed by O/S"},
    {0x8018, "Mutex creation failed"},
    {0x8019, "The input parameter to the command was invalid"},
    {0x801A, "Initialization was not yet completed"},
    {0x801B, "The maximum number of events that can be retrieved has exceeded"},
    {0x801C, "The LD to OS drive mapping is not complete. This will happen when fw reports"},
    {0x801D, "Thread creation failed"},
    {0x801E, "libsysfs is not present in the system"},
    {0x8020, "The SCSI device to scsi address mapping failed"},
    {0x8021, "An error occurred while accessing sysfs"},
    {0x8022, "Failed to get SCSI device name"},
    {0x8023, "Failed to get partition"},
    {0x8024, "Failed to open the device"},
    {0x8025, "Failed to destroy mutex"},
    {0x8026, "Failed to release mutex"},
    {0x8027, "Failed to acquire mutex"},
    {0x8028, "LoadLibrary function failed for simlib.dll"},
    {0x8029, "/GetProcAddress failed to get entry point function address"},
    {0x802A, "Setting the context fields for 64-bit architecture failed"},
    {0x802B, "User Access level incorrect"},
    {0x802C, "libpci is not present in the system"},
    {0x8101, "Incorrect Span Depth"},
    {0x8102, "Command to MPT failed"},
    {0x8103, "IOC cannot support more Physical Disks"},
    {0x8104, "Invalid direction was passed in"},
    {0x8105, "Resync operation in progress"},
    {0x8106, "Not yet used"},
    {0x8107, "device not within an enclosure"},
    {0x8108, "pd is not part of a volume"},
    {0x8109, "The firmware flash image checksum is invalid"},
    {0x810A, "The firmware flash image product Id is invalid"},
    {0x810B, "The firmware flash image attached NVDATA is invalid"},
    {0x810C, "The BIOS flash image signature is invalid"},
    {0x810D, "The BIOS flash image checksum is invalid"},
    {0x810E, "The BIOS flash image is invalid"},
    {0x810F, "Chip and revision is not matching"},
    {0x8110, "Flash memory size is not matching"},
    {0x821E, "LD RAID level is wrong for requested operation"},
    {0x820C, "invalid device ID/select-timeout"},
    {0x8232, "command issues while FW in wrong state"},
    {0x821A, "maximum LDs are already configured"},
    {0x3, "input parameters are invalidLDs"},
    {0x4, "invalid sequence number"},
    {0xB, "some of the CFG resources conflict with each other or the current config"},
    {0x1E, "LD RAID level is wrong for requested operation"},
    {0x1A, "maximum LDs are already configured"},
    {0x9, "given array index is invalid"},
    {0x28, "given row index is invalid"},
    {0x26, "unable to use SATA(SAS) drive to replace SAS(SATA)"},
    {0x1D, "LD is undergoing reconstruction"},
    {0x25, "PD CLEAR operation is in progress"},
    {0x20, "scratch memory not available"},
    {0x32, "command issues while FW in wrong state"},
    {0xC, "invalid device ID / select-timeout"},
    {0xD, "drive is too small for requrested operation"},
    {0x3B, "Returned in case if foreign configurations are imcomplete"},
    {0x5B, " No space on the snapshot repositiry VD"},
    {0x5C, "For consistency SET PiTs, some PiT creations may fail and some succeed"},
    {0x27, "Patrol Read is disabled"},
    {0x39, "diagnostics failed"},
    {0x54, "Controller has LD cache pinned"},
    {0x2, "DCMD opcode is invalid"},
    {0x1C, "LD Rebuild is in progress"},
    {0x18, " LD initialization in progress"},
    {0x2F, "matches SCSI RESERVATION_CONFLICT"},
    {0x1B, "LD is not OPTIMAL"},
    {0x55, "Requested operation is already in progress"},
    {0x56, "Another power state set operation is in progress"},
    {0xA, "unable to add missing drive to array, as row has no empty slots"},
    {0x5F, "maximum allowed unconfigured (configurable) PDs exist"},
    {0x58, "No PD is available for patrol read"},
    {0x67, "config sequence number mismatch"},
    {0x2D, "SCSI command done, but non-GOOD status was received"},
    {0x2E, "IO request for MFI_CMD_OP_PD_SCSI failed"},
    {0x2F, "matches SCSI RESERVATION_CONFLICT"},
    {0x1F, "too many spares assigned"},
    {0x21, "error writing MFC data to SEEPROM"},
    {0x22, "required HW is missing (i.e. Alarm or BBU)"},
    {0x23, "item not found"},
    {0x24, "LD drives are not within an enclosure"},
});
static_assert(strInfo.size() == 101);

constexpr const char* textFor(std::uint32_t status) {
    const auto* row =
        std::find_if(strInfo.begin(), strInfo.end(), [&](const StatusRow& r) { return r.code == status; });
    return row != strInfo.end() ? row->text : "Storelib error";
}
static_assert(std::all_of(strInfo.begin(), strInfo.end(),
                          [](const StatusRow& row) { return std::string_view(textFor(row.code)) == row.text; }),
              "a text stands behind another one of its code");

} // namespace

const char* SLStrError(std::uint32_t status) {
    return textFor(status);
}
