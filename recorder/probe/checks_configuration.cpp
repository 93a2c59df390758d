// The configuration: its head, arrays and spares, the arrays' own records, foreign configurations.
#include "recorder/probe/checks.h"

#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"

#include <algorithm>
#include <set>

namespace zebprobe {

namespace {

void judgeHead(const Inspection& inspection, const Cell& head) {
    const std::uint64_t size = sizeof(_MR_CONFIG_DATA) + head.at("arrayCount").value() * sizeof(_MR_ARRAY) +
                               head.at("ldCount").value() * sizeof(_MR_LD_CONFIG) +
                               head.at("spareCount").value() * sizeof(_MR_SPARE);
    const auto cells = {head.at("size"), head.at("arrayCount"), head.at("ldCount"), head.at("spareCount")};
    const bool empty = std::all_of(cells.begin() + 1, cells.end(), [](const Cell& count) { return count.blank(); });
    inspection.verdicts.judge("sizes agree", head.at("size").value() == size, empty ? Weight::kBounds : Weight::kTells,
                              cells);
    const auto part = [&](const char* count, const char* each, std::size_t declared) {
        if (head.at(count).value() != 0)
            inspection.tells("sizes agree", head.at(each).value() == declared, {head.at(each)});
    };
    part("arrayCount", "arraySize", sizeof(_MR_ARRAY));
    part("ldCount", "ldSize", sizeof(_MR_LD_CONFIG));
    part("spareCount", "spareSize", sizeof(_MR_SPARE));
}

/// A place in an array against the drive that it names.
void judgePlace(const Inspection& inspection, const Cell& place, const Cell& arraySize) {
    const Cell id = place.at("ref").at("deviceId");
    if (id.value() == wire::kNoDevice)
        return;
    const auto drives = inspection.survey.drives(inspection.ctrl);
    if (const Cell list = inspection.cell(kPdList); list.there())
        inspection.tells("drives of arrays are in the list", std::ranges::find(drives, id.value()) != drives.end(),
                         {id, list.at("addr")});
    const Cell info = inspection.cell(kPdInfo, static_cast<std::uint32_t>(id.value()));
    judgeSame(inspection, "the array says the same as the drive", place.at("ref").at("seqNo"),
              info.at("ref").at("seqNo"));
    judgeSame(inspection, "the array says the same as the drive", place.at("fwState"), info.at("fwState"));
    judgeSame(inspection, "the array says the same as the drive", place.at("slotNo"), info.at("slotNo"));
    judgeSame(inspection, "the array says the same as the drive", place.at("encl"), info.at("enclIndex"));
    if (arraySize.there() && info.there())
        inspection.tells("sizes agree", arraySize.value() <= info.at("coercedSize").value(),
                         {arraySize, info.at("coercedSize")});
}

void judgePlaces(const Inspection& inspection, const Cell& table, std::uint64_t count, const Cell& arraySize) {
    for (std::size_t i = 0; i < std::min<std::uint64_t>(count, wire::kMaxArrayDrives); ++i)
        judgePlace(inspection, table.entry(i), arraySize);
}

void judgeArray(const Inspection& inspection, const Cell& array, std::set<std::uint64_t>& refs) {
    const Cell ref = array.at("arrayRef");
    judgeAtMost(inspection, ref, wire::kMaxArrays - 1);
    inspection.bounds("no array is there twice", refs.insert(ref.value()).second, {ref});
    judgeAtMost(inspection, array.at("numDrives"), wire::kMaxArrayDrives);
    judgePlaces(inspection, array.at("pd"), array.at("numDrives").value(), array.at("size"));
}

/// The LDs of a configuration with a span on the array.
std::set<std::uint64_t> ldsOn(const std::vector<Cell>& lds, std::uint64_t ref) {
    std::set<std::uint64_t> ids;
    for (const Cell& ld : lds)
        for (std::size_t i = 0; i < std::min<std::uint64_t>(ld.at("spanDepth").value(), wire::kMaxSpans); ++i)
            if (ld.at("span").entry(i).at("arrayRef").value() == ref)
                ids.insert(ld.at("properties").at("ref").at("targetId").value());
    return ids;
}

/// A span on the array that shares blocks with the stretch; nowhere without one.
Cell spanOver(const std::vector<Cell>& lds, std::uint64_t ref, std::uint64_t start, std::uint64_t blocks) {
    for (const Cell& ld : lds)
        for (std::size_t i = 0; i < std::min<std::uint64_t>(ld.at("spanDepth").value(), wire::kMaxSpans); ++i) {
            Cell span = ld.at("span").entry(i);
            const std::uint64_t first = span.at("startBlock").value();
            if (span.at("arrayRef").value() == ref && start < first + span.at("numBlocks").value() &&
                first < start + blocks)
                return span;
        }
    return {};
}

void judgeFree(const Inspection& inspection, const Cell& own, const Cell& array, const std::vector<Cell>& lds) {
    const Cell count = own.at("freeCount");
    judgeAtMost(inspection, count, wire::kMaxFreeSegments);
    for (std::size_t i = 0; i < std::min<std::uint64_t>(count.value(), wire::kMaxFreeSegments); ++i) {
        const Cell segment = own.at("freeSegment").entry(i);
        const std::uint64_t start = segment.at("startBlock").value();
        const std::uint64_t blocks = segment.at("size").value();
        const std::uint64_t whole = array.at("size").value();
        const Cell user = spanOver(lds, array.at("arrayRef").value(), start, blocks);
        inspection.tells("free space is used by no LD", !user.there(),
                         {segment.at("startBlock"), segment.at("size"), user});
        inspection.tells("free space lies inside its array", blocks != 0 && blocks <= whole && start <= whole - blocks,
                         {segment.at("startBlock"), segment.at("size"), array.at("size")});
    }
}

/// An array's own record against the configuration.
void judgeOwnRecord(const Inspection& inspection, const Cell& own, const Cell& array, const std::vector<Cell>& lds) {
    judgeSame(inspection, "the asked object answers", own.at("arrayRef"), array.at("arrayRef"));
    judgeSame(inspection, "the array's own record says the same", own.at("pdCount"), array.at("numDrives"));
    const std::uint64_t drives = std::min<std::uint64_t>(array.at("numDrives").value(), wire::kMaxArrayDrives);
    for (std::size_t i = 0; i < drives; ++i)
        judgeSame(inspection, "the array's own record says the same", own.at("pd").entry(i), array.at("pd").entry(i));
    judgePlaces(inspection, own.at("pd"), own.at("pdCount").value(), {});
    const Cell count = own.at("ldCount");
    judgeAtMost(inspection, count, wire::kMaxLds);
    std::set<std::uint64_t> told;
    for (std::size_t i = 0; i < std::min<std::uint64_t>(count.value(), wire::kMaxLds); ++i) {
        const Cell id = own.at("ldTargetId").number(i, 1);
        told.insert(id.value());
        const Cell size = inspection.cell(kLdInfo, static_cast<std::uint32_t>(id.value())).at("size");
        if (size.there())
            inspection.tells("sizes agree", size.value() <= own.at("totalSize").value(), {size, own.at("totalSize")});
    }
    inspection.tells("the array's own record says the same", told == ldsOn(lds, array.at("arrayRef").value()),
                     {count, own.at("ldTargetId").number(0, 1), lds.empty() ? Cell() : lds.front().at("span")});
    judgeFree(inspection, own, array, lds);
}

void judgeSpare(const Inspection& inspection, const Cell& spare, const ConfigCells& config) {
    const Cell id = spare.at("ref").at("deviceId");
    const auto drives = inspection.survey.drives(inspection.ctrl);
    if (const Cell list = inspection.cell(kPdList); list.there())
        inspection.tells("spares are in the list", std::ranges::find(drives, id.value()) != drives.end(),
                         {id, list.at("addr")});
    const Cell info = inspection.cell(kPdInfo, static_cast<std::uint32_t>(id.value()));
    judgeSame(inspection, "the spare says the same as the drive", spare.at("ref").at("seqNo"),
              info.at("ref").at("seqNo"));
    if (info.there())
        inspection.tells("a spare's drive says that it is one",
                         (info.at("ddfType").value() & (wire::kDdfSpare | wire::kDdfGlobalSpare)) != 0,
                         {info.at("ddfType"), id});
    judgeAtMost(inspection, spare.at("type"), 7);
    const Cell count = spare.at("arrayCount");
    judgeAtMost(inspection, count, wire::kMaxSpareArrays);
    const bool dedicated = (spare.at("type").value() & wire::kSpareDedicated) != 0;
    inspection.tells("a dedicated spare serves arrays", dedicated == (count.value() != 0), {spare.at("type"), count});
    for (std::size_t i = 0; i < std::min<std::uint64_t>(count.value(), wire::kMaxSpareArrays); ++i) {
        const Cell ref = spare.at("arrayRef").number(i, sizeof(std::uint16_t));
        const bool known = std::ranges::any_of(
            config.arrays, [&](const Cell& array) { return array.at("arrayRef").value() == ref.value(); });
        inspection.tells("a spare's arrays are in the configuration", known, {ref});
    }
}

void judgeForeign(const Inspection& inspection) {
    const ConfigCells foreign = configOf(inspection.survey, inspection.ctrl, kForeignConfig);
    if (foreign.head.there())
        judgeHead(inspection, foreign.head);
    const Cell guids = inspection.cell(kForeignGuids);
    if (!guids.there())
        return;
    constexpr std::size_t kRoom = 8;
    constexpr std::size_t kGuid = 24;
    judgeAtMost(inspection, guids.at("count"), kRoom);
    for (std::size_t i = 0; i < kRoom; ++i) {
        const Cell guid = guids.at("guid").number(i, kGuid);
        const bool counted = i < guids.at("count").value();
        inspection.tells("as many identifiers as are counted", guid.blank() != counted, {guids.at("count"), guid});
    }
}

} // namespace

void judgeConfiguration(const Inspection& inspection) {
    const ConfigCells config = configOf(inspection.survey, inspection.ctrl);
    if (config.head.there())
        judgeHead(inspection, config.head);
    std::set<std::uint64_t> refs;
    for (const Cell& array : config.arrays) {
        judgeArray(inspection, array, refs);
        const auto ref = static_cast<std::uint32_t>(array.at("arrayRef").value());
        if (const Cell own = inspection.cell(kArrayInfo, ref); own.there())
            judgeOwnRecord(inspection, own, array, config.lds);
    }
    for (const Cell& spare : config.spares)
        judgeSpare(inspection, spare, config);
    judgeForeign(inspection);
}

} // namespace zebprobe
