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

#include <algorithm>
#include <string_view>

namespace {

constexpr Speaker kHandler{kPdSource, "CliCmdExecPDInfo"};

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
    if (succeeded(SLIsTempPageSupported(contNo, slotNo, &supported), kHandler, "SLIsTempPageSupported error",
                  subject) &&
        supported != 0 &&
        succeeded(SLGetPDTemperature(contNo, slotNo, &temperature), kHandler, "SLGetPDTemperature error", subject))
        report.add("%s              : %d C\r\n", "Temperature", temperature);
}

void addSasAddresses(Report& report, const _MR_PD_INFO& pd) {
    int path = 0;
    for (const std::uint64_t sasAddr : sasAddressesOf(pd)) {
        char address[32];
        FormatSASAddress(sasAddr, address);
        // The address carries its own "0x"; the doubled prefix is deliberate.
        report.add("SAS Address %d            : 0x%s\r\n", path++, address);
    }
}

void addGeneral(Report& report, Controller ctrl, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    char text[kTextSize];
    mkRoleStr(ctrl, slotNo, text);
    report.add("%s%d(%s)\r\n", "PD", slotNo, text);
    report.add("%s\r\n", "### General Information ###");
    wsprintf(text, "%0.3f", blocksToGb(pd.coercedSize));
    report.add("%s          : %s GB\r\n", "Usable Capacity", text);
    wsprintf(text, "%0.3f", blocksToGb(pd.rawSize));
    report.add("%s             : %s GB\r\n", "Raw Capacity", text);
    mkInterfaceTypeStr(&pd, text);
    report.add("%s           : %s\r\n", "Interface Type", text);
    mkMediaTypeStr(&pd, text);
    report.add("%s               : %s\r\n", "Media Type", text);
    report.add("%s               : %s\r\n", "Product ID", fieldText(pd.inquiry.product).c_str());
    report.add("%s                : %s\r\n", "Vendor ID", fieldText(pd.inquiry.vendor).c_str());
    report.add("%s                : %d\r\n", "Device ID", pd.ref.deviceId);
    mkPDStateStr(pd.fwState, text);
    report.add("%s                : %s\r\n", "PD Status", text);
    mkPDSpeedStr(pd.deviceSpeed, text);
    report.add("%s              : %s\r\n", "Drive Speed", text);
    mkPDSpeedStr(pd.linkSpeed, text);
    report.add("%s    : %s\r\n", "Negotiated Link Speed", text);
    addSasAddresses(report, pd);
    addTemperature(report, ctrl.contNo, slotNo);
    mkPDPowerStateStr(pd.powerState, text);
    report.add("%s             : %s\r\n", "Power Status", text);
    report.add("%s           : %s\r\n", "Revision Level", fieldText(pd.inquiry.revision).c_str());
    report.add("\r\n");
}

void addErrors(Report& report, const _MR_PD_INFO& pd) {
    report.add("%s\r\n", "### Error Information ###");
    report.add("%s        : %d\r\n", "Media Error Count", static_cast<int>(pd.mediaErrorCount));
    report.add("%s          : %d\r\n", "Pred Fail Count", static_cast<int>(pd.predFailCount));
    report.add("\r\n");
}

void addPlace(Report& report, const _MR_PD_INFO& pd) {
    const bool inEnclosure = pd.enclDeviceId != 0xFF && pd.enclDeviceId != kNoDevice;
    report.add("%s\r\n", inEnclosure ? "### Enclosure Properties Information ###" : "### Slot Information ###");
    if (inEnclosure)
        report.add("%s             : %d\r\n", "Enclosure ID", pd.enclDeviceId);
    report.add("%s              : %d\r\n", "Slot Number", pd.slotNo);
}

/// One block per drive. The heading of a controller carries its position in the list, not its number; deliberate.
void reportController(int position, Controller ctrl, std::span<const unsigned char> drives) {
    Report report;
    bool first = true;
    for (const unsigned char slotNo : drives) {
        if (IsExistPD(ctrl.contNo, slotNo, ctrl.conts) == 0)
            continue;
        if (first)
            report.add("%s: %d\r\n\r\n", "RAID Controller", position);
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
