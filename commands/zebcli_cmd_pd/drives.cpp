// The drive report.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_pd/drive_words.h"
#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/targets.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/passthrough.h"

#include <array>
#include <string_view>

namespace {

constexpr Speaker kDrivesHandler{kPdSource, "CliCmdExecPDInfo"};

void mkRoleStr(Controller ctrl, unsigned char slotNo, std::span<char> out) {
    mkLDAssignStr(ctrl.contNo, ctrl.conts, slotNo, out);
    if (std::string_view(out.data()) == "GHS") {
        strcat_s(out.data(), out.size(), ":Global Hot Spare");
    } else if (std::string_view(out.data()) == "DHS") {
        char groups[kTextSize];
        mkRaidGroupStr(ctrl.contNo, ctrl.conts, slotNo, groups);
        strcat_s(out.data(), out.size(), ":Dedicated Hot Spare, ");
        strcat_s(out.data(), out.size(), groups);
    }
}

/// The drive is asked now; one that does not tell its temperature has no line.
void addTemperature(Report& report, unsigned char contNo, unsigned char slotNo) {
    const Subject subject = onPd(contNo, slotNo);
    int supported = 0;
    unsigned char temperature = 0;
    if (succeeded(SLIsTempPageSupported(contNo, slotNo, &supported), kDrivesHandler, "SLIsTempPageSupported error",
                  subject) &&
        supported != 0 &&
        succeeded(SLGetPDTemperature(contNo, slotNo, &temperature), kDrivesHandler, "SLGetPDTemperature error",
                  subject))
        report.field("Temperature", "%d C", temperature);
}

void addSasAddresses(Report& report, const _MR_PD_INFO& pd) {
    int path = 0;
    for (const std::uint64_t sasAddr : sasAddressesOf(pd)) {
        char address[32];
        FormatSASAddress(sasAddr, address);
        // The address carries its own "0x"; the doubled prefix is deliberate.
        char label[24];
        wsprintf(label, "SAS Address %d", path++);
        report.field(label, "0x%s", address);
    }
}

void addGeneral(Report& report, Controller ctrl, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    char text[kTextSize];
    mkRoleStr(ctrl, slotNo, text);
    report.add("PD%d(%s)\r\n", slotNo, text);
    report.heading("General Information");
    report.field("Usable Capacity", "%s GB", gbText(pd.coercedSize).c_str());
    report.field("Raw Capacity", "%s GB", gbText(pd.rawSize).c_str());
    mkInterfaceTypeStr(&pd, text);
    report.field("Interface Type", "%s", text);
    mkMediaTypeStr(&pd, text);
    report.field("Media Type", "%s", text);
    report.field("Product ID", "%s", fieldText(pd.inquiry.product).c_str());
    report.field("Vendor ID", "%s", fieldText(pd.inquiry.vendor).c_str());
    report.field("Device ID", "%d", pd.ref.deviceId);
    mkPDStateStr(pd.fwState, text);
    report.field("PD Status", "%s", text);
    mkPDSpeedStr(pd.deviceSpeed, text);
    report.field("Drive Speed", "%s", text);
    mkPDSpeedStr(pd.linkSpeed, text);
    report.field("Negotiated Link Speed", "%s", text);
    addSasAddresses(report, pd);
    addTemperature(report, ctrl.contNo, slotNo);
    mkPDPowerStateStr(pd.powerState, text);
    report.field("Power Status", "%s", text);
    report.field("Revision Level", "%s", fieldText(pd.inquiry.revision).c_str());
    report.gap();
}

void addErrors(Report& report, const _MR_PD_INFO& pd) {
    report.heading("Error Information");
    report.field("Media Error Count", "%d", static_cast<int>(pd.mediaErrorCount));
    report.field("Pred Fail Count", "%d", static_cast<int>(pd.predFailCount));
    report.gap();
}

void addPlace(Report& report, const _MR_PD_INFO& pd) {
    const bool inEnclosure = pd.enclDeviceId != kNoEnclosureByte && pd.enclDeviceId != kNoDevice;
    report.heading(inEnclosure ? "Enclosure Properties Information" : "Slot Information");
    if (inEnclosure)
        report.field("Enclosure ID", "%d", pd.enclDeviceId);
    report.field("Slot Number", "%d", pd.slotNo);
}

/// One block per drive. The heading of a controller carries its position in the list, not its number; deliberate.
void reportController(int position, Controller ctrl, std::span<const unsigned char> drives) {
    Report report;
    bool first = true;
    std::array<unsigned char, kMaxSlots> present{};
    GetDeviceFoundList(ctrl.contNo, ctrl.conts, present);
    for (const unsigned char slotNo : drives) {
        if (present[slotNo] == 0)
            continue;
        if (first)
            report.controller(position);
        first = false;
        addGeneral(report, ctrl, slotNo);
        addErrors(report, ctrl.pd(slotNo));
        addPlace(report, ctrl.pd(slotNo));
        report.emit();
    }
}

} // namespace

constexpr OptionTable kPdInfoOptions = pdOptions();

int CliCmdExecPDInfo(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kPdInfoOptions, argc, argv, contCount, options))
        return 1;
    if (!options.pdGiven)
        GetPhysicalDriveNo("", options.pds, 0);
    else if (!allDrivesExist(options, contCount, conts))
        return 1;
    int position = 0;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        reportController(position++, {contNo, conts}, listedDrives(options.pds));
    return 0;
}
