// The cache backup unit, enclosures and SAS connectors.
#include "recorder/probe/checks.h"

#include "storelib/records/cache_backup.h"
#include "storelib/records/enclosure.h"

#include <algorithm>
#include <set>

namespace zebprobe {

namespace {

void judgeStatus(const Inspection& inspection, const Cell& status, const Cell& capacity) {
    constexpr std::uint64_t kLastType = 15;
    constexpr std::uint64_t kHottest = 150; // degrees Celsius
    constexpr std::uint64_t kMostVoltage = 20000; // mV
    judgeAtMost(inspection, status.at("type"), kLastType);
    judgeAtMost(inspection, status.at("temperature"), kHottest);
    judgeAtMost(inspection, status.at("voltage"), kMostVoltage);
    judgeSame(inspection, "both records of the unit say the same", status.at("fullChargeCapacity"),
              capacity.at("fullChargeCapacity"));
    if (!capacity.there())
        return;
    const Cell low = status.at("remainingCapacityLow");
    const Cell high = status.at("remainingCapacityHigh");
    const std::uint64_t remaining = high.value() << 8U | low.value();
    const Cell other = capacity.at("remainingCapacity");
    // The charge moves between the two requests, if slowly.
    const std::uint64_t apart = std::max(remaining, other.value()) - std::min(remaining, other.value());
    inspection.tells("both records of the unit say the same", apart * 10 <= std::max(remaining, other.value()),
                     {low, high, other});
}

void judgeElements(const Inspection& inspection, const Cell& status, const Cell& entry) {
    constexpr std::uint64_t kLastStatus = 7; // SES-2
    std::uint64_t elements = 0;
    for (std::size_t type = 0; type < wire::kElemTypes; ++type)
        elements += status.at("count").number(type, sizeof(std::uint16_t)).value();
    inspection.bounds("numbers, states and levels are known ones", elements <= wire::kMaxEnclElements,
                      {status.at("count")});
    const Cell slots = status.at("count").number(wire::kElemSlot, sizeof(std::uint16_t));
    if (entry.there())
        inspection.tells("an enclosure has an element for each slot", slots.value() == entry.at("slotCount").value(),
                         {slots, entry.at("slotCount")});
    for (std::size_t i = 0; i < std::min<std::uint64_t>(elements, wire::kMaxEnclElements); ++i) {
        const Cell code = status.at("element").entry(i).at("status");
        inspection.tells("numbers, states and levels are known ones", code.value() <= kLastStatus, {code});
    }
}

void judgeEnclosure(const Inspection& inspection, const Cell& entry, std::set<std::uint64_t>& ids) {
    constexpr std::uint64_t kLastType = wire::kEnclBackplane;
    const Cell id = entry.at("deviceId");
    inspection.bounds("no enclosure is listed twice", ids.insert(id.value()).second, {id});
    judgeAtMost(inspection, entry.at("type"), kLastType);
    const auto deviceId = static_cast<std::uint32_t>(id.value());
    if (const Cell config = inspection.cell(kEnclConfig, deviceId); config.there())
        for (const char* text : {"vendor", "product", "revision"})
            judgeText(inspection, config.at(text));
    if (const Cell status = inspection.cell(kEnclStatus, deviceId); status.there())
        judgeElements(inspection, status, entry);
}

void judgeConnectors(const Inspection& inspection, const Cell& connectors) {
    constexpr std::uint64_t kRoom = 8;
    constexpr std::uint64_t kExternal = 3;
    judgeAtMost(inspection, connectors.at("count"), kRoom);
    for (std::size_t i = 0; i < std::min(connectors.at("count").value(), kRoom); ++i) {
        const Cell connector = connectors.at("connector").entry(i);
        judgeAtMost(inspection, connector.at("location"), kExternal);
        judgeText(inspection, connector.at("name"));
    }
}

} // namespace

void judgeBackupUnit(const Inspection& inspection) {
    const Cell capacity = inspection.cell(kBbuCapacity);
    if (const Cell status = inspection.cell(kBbuStatus); status.there())
        judgeStatus(inspection, status, capacity);
    if (capacity.there())
        for (const char* charge : {"relativeCharge", "absoluteCharge"})
            judgeAtMost(inspection, capacity.at(charge), kPercent);
    if (const Cell design = inspection.cell(kBbuDesign); design.there())
        for (const char* text : {"maker", "deviceName", "chemistry"})
            judgeText(inspection, design.at(text));
    if (const Cell properties = inspection.cell(kBbuProperties); properties.there()) {
        constexpr std::uint64_t kLastMode = 2;
        judgeAtMost(inspection, properties.at("autoLearnMode"), kLastMode);
        judgeNearClock(inspection, properties.at("nextLearnTime"));
    }
}

void judgeEnclosures(const Inspection& inspection) {
    if (const Cell list = inspection.cell(kEnclList); list.there()) {
        constexpr std::uint64_t kRoom = 32;
        judgeAtMost(inspection, list.at("count"), kRoom);
        std::set<std::uint64_t> ids;
        for (std::size_t i = 0; i < std::min(list.at("count").value(), kRoom); ++i)
            judgeEnclosure(inspection, list.at("encl").entry(i), ids);
    }
    if (const Cell connectors = inspection.cell(kConnectors); connectors.there())
        judgeConnectors(inspection, connectors);
}

} // namespace zebprobe
