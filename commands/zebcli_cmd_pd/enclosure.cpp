// The enclosure report: the first enclosure of each controller, asked now.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/enclosure.h"
#include "storelib/common/StoreLib/request_path.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr Speaker kEnclosureHandler{kPdSource, "CliCmdExecEnclInfo"};

/// What is asked of one enclosure.
struct EnclosureData {
    _SL_ENCL_CONFIG_T config{};
    _MR_SAS_CONNECTORS connectors{};
};

const char* GetEnclEleStatusStr(int code) {
    static constexpr const char* kWords[] = {
        "Unsupported", "OK", "Critical", "Non Critical", "Unrecoverable", "Not Installed", "Unknown", "Not Available"};
    return wordOf(kWords, static_cast<unsigned>(code), "Invalid");
}

/// Hands each element of a type to the sink with its number and status word.
template <class Sink>
void forEachElement(const _SL_ENCL_STATUS_EX_T& status, EnclElementType type, Sink sink) {
    int number = 0;
    for (const _SL_ENCL_ELEMENT& element : elementsOf(status, type))
        sink(number++, GetEnclEleStatusStr(static_cast<int>(element.status)), element);
}

void addComponents(Report& report, const _SL_ENCL_STATUS_EX_T& status) {
    report.heading("Component Information");
    report.fieldAt(Report::kWideColumn, "Number of Temperature Sensors", "%d", status.count[kElemTemperature]);
    report.fieldAt(Report::kWideColumn, "Number of Fans", "%d", status.count[kElemFan]);
    report.fieldAt(Report::kWideColumn, "Number of Power Supplies", "%d", status.count[kElemPowerSupply]);
    report.fieldAt(Report::kWideColumn, "Number of Voltage Sensors", "%d", status.count[kElemVoltage]);
}

/// Hundredths of a volt, signed.
int voltageOf(const _SL_ENCL_ELEMENT& element) {
    std::int16_t value = 0;
    std::memcpy(&value, element.value, sizeof value);
    return value;
}

void addSensors(Report& report, const _SL_ENCL_STATUS_EX_T& status) {
    report.heading("Sensor Information");
    report.add("%s              %-14s                  %s\r\n", "Sensor", "Status", "Value");
    forEachElement(status, kElemTemperature, [&](int i, const char* word, const _SL_ENCL_ELEMENT& element) {
        report.add("Temperature%d        %-14s                  %d (C)\r\n", i, word, element.value[0]);
    });
    forEachElement(status, kElemFan, [&](int i, const char* word, const _SL_ENCL_ELEMENT& element) {
        const int speed = (((element.value[0] & 3) << 8) + element.value[1]) * 10;
        report.add("Fan%d                %-14s                  %d (RPM)\r\n", i, word, speed);
    });
    forEachElement(status, kElemPowerSupply, [&](int i, const char* word, const _SL_ENCL_ELEMENT&) {
        report.add("Power Supply%d       %-14s                  %s\r\n", i, word, "-");
    });
    forEachElement(status, kElemVoltage, [&](int i, const char* word, const _SL_ENCL_ELEMENT& element) {
        const int value = voltageOf(element);
        if (value >= 0)
            report.add("Voltage%d            %-14s                  %0.2f (V)\r\n", i, word, value / 100.0);
        else
            report.add("Voltage%d            %-14s                  -%0.2f (V)\r\n", i, word, -value / 100.0);
    });
}

void addConnector(Report& report, const _MR_ENCL_ENTRY& enclosure, const _MR_SAS_CONNECTORS& connectors) {
    static constexpr const char* kLocations[] = {"Unknown", "Not defined", "Internal", "External"};
    const auto listed = entriesOf(connectors);
    if (enclosure.connectorIndex >= listed.size())
        return;
    const _MR_SAS_CONNECTOR& connector = listed[enclosure.connectorIndex];
    report.field("Enclosure Location", "%s", wordOf(kLocations, connector.location, "Not defined"));
    report.field("Connector", "%s", fieldText(connector.name).c_str());
}

/// Gathers the report of one controller. Its heading carries the controller's position in the list, not its number;
/// deliberate. Returns false when a query failed.
bool gather(Report& report, int position, unsigned char contNo, _SL_ENCL_STATUS_EX_T& status) {
    static constexpr const char* kModels[] = {"Unknown", "SAFTE", "SES", "Backplane"};
    _MR_ENCL_LIST list{};
    if (!succeeded(SLGetEnclList(contNo, &list), kEnclosureHandler, "SLGetEnclList error", onController(contNo)))
        return false;
    // The first entry is what is reported, whatever the count says.
    const _MR_ENCL_ENTRY& enclosure = list.encl[0];
    report.controller(position);
    report.heading("General Information");
    report.field("Vendor ID", "%s", "LSI");
    report.field("Enclosure ID", "%d", enclosure.deviceId);
    report.field("Enclosure Model", "%s", wordOf(kModels, enclosure.type, "Not defined"));
    if (enclosure.type == kEnclBackplane) {
        report.field("Enclosure Location", "%s", "Internal");
        return true;
    }
    EnclosureData data;
    if (!succeeded(SLGetEnclConfig(contNo, enclosure.deviceId, &data.config), kEnclosureHandler,
                   "SLGetEnclConfig error", onController(contNo)) ||
        !succeeded(SLGetEnclStatus(contNo, enclosure.deviceId, &status), kEnclosureHandler, "SLGetEnclStatus error",
                   onController(contNo)) ||
        !succeeded(SLGetSASConnector(contNo, &data.connectors), kEnclosureHandler, "SLGetSASConnector error",
                   onController(contNo)))
        return false;
    addConnector(report, enclosure, data.connectors);
    report.field("Number of Slots", "%d", enclosure.slotCount);
    report.field("Product Revision Level", "%s", fieldText(data.config.revision).c_str());
    addComponents(report, status);
    addSensors(report, status);
    return true;
}

} // namespace

constexpr OptionTable kEnclInfoOptions{.source = kPdSource, .badToken = BadToken::Before, .takesControllers = true};

int CliCmdExecEnclInfo(int argc, char** argv, _AFCONT* /*conts*/, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kEnclInfoOptions, argc, argv, contCount, options))
        return 1;
    const auto status = allocateRecord<_SL_ENCL_STATUS_EX_T>();
    if (!status)
        return 1;
    int position = 0;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        *status = _SL_ENCL_STATUS_EX_T{};
        Report report;
        if (!gather(report, position++, contNo, *status))
            return 1;
        report.emit();
    }
    return 0;
}
