// Logical drives: the list, each LD's information and properties, its drives.
#include "recorder/probe/checks.h"

#include "storelib/records/configuration.h"

#include <algorithm>
#include <set>

namespace zebprobe {

namespace {

constexpr std::uint64_t kLastState = wire::kLdOptimal;

/// The configuration's record of an LD; nowhere without one.
Cell configuredLd(const Inspection& inspection, std::uint32_t targetId) {
    for (const Cell& ld : configOf(inspection.survey, inspection.ctrl).lds)
        if (ld.at("properties").at("ref").at("targetId").value() == targetId)
            return ld;
    return {};
}

void judgeLdList(const Inspection& inspection, const Cell& list) {
    const Cell count = list.at("count");
    judgeAtMost(inspection, count, wire::kMaxLds);
    const ConfigCells config = configOf(inspection.survey, inspection.ctrl);
    if (config.head.there())
        inspection.tells("the list has the LDs of the configuration",
                         count.value() == config.head.at("ldCount").value(), {count, config.head.at("ldCount")});
    for (std::size_t i = 0; i < std::min<std::uint64_t>(count.value(), wire::kMaxLds); ++i) {
        const Cell entry = list.at("ld").entry(i);
        judgeAtMost(inspection, entry.at("targetId"), wire::kMaxLds - 1);
        judgeAtMost(inspection, entry.at("state"), kLastState);
        const auto targetId = static_cast<std::uint32_t>(entry.at("targetId").value());
        if (config.head.there())
            inspection.bounds("the list has the LDs of the configuration", configuredLd(inspection, targetId).there(),
                              {entry.at("targetId"), config.head});
        const Cell info = inspection.cell(kLdInfo, targetId);
        judgeSame(inspection, "the list says the same as the LD", entry.at("size"), info.at("size"));
        const Cell same = info.at("config");
        judgeSame(inspection, "the list says the same as the LD", entry.at("seqNo"),
                  same.at("properties").at("ref").at("seqNo"));
        judgeSame(inspection, "the list says the same as the LD", entry.at("state"), same.at("state"));
    }
}

constexpr std::initializer_list<Work> kKindsOfLdWork = {
    {wire::kLdProgCheck, "cc"}, {wire::kLdProgBgi, "bgi"}, {wire::kLdProgInit, "init"}, {wire::kLdProgRecon, "recon"}};

void judgeLdProgress(const Inspection& inspection, const Cell& progress) {
    judgeAtMost(inspection, progress.at("active"),
                wire::kLdProgCheck | wire::kLdProgBgi | wire::kLdProgInit | wire::kLdProgRecon);
    judgeWork(inspection, progress, kKindsOfLdWork);
}

/// What every LD's configuration must look like, wherever it stands.
void judgeConfig(const Inspection& inspection, const Cell& ld) {
    judgeText(inspection, ld.at("properties").at("name"), true);
    constexpr std::uint64_t kLevels[] = {0, 1, 5, 6};
    const Cell level = ld.at("primaryRaidLevel");
    inspection.tells("numbers, states and levels are known ones",
                     std::ranges::find(kLevels, level.value()) != std::end(kLevels), {level});
    judgeAtMost(inspection, ld.at("state"), kLastState);
    judgeAtMost(inspection, ld.at("initState"), 2);
    for (const char* flag : {"isConsistent", "snapshotSource", "cacheCade"})
        judgeAtMost(inspection, ld.at(flag), 1);
    judgeAtMost(inspection, ld.at("numDrives"), wire::kMaxArrayDrives);
    const Cell depth = ld.at("spanDepth");
    inspection.tells("numbers, states and levels are known ones",
                     depth.value() != 0 && depth.value() <= wire::kMaxSpans, {depth});
}

/// The LD's spans against the arrays of the configuration. Returns the blocks of all their drives.
void judgeSpans(const Inspection& inspection, const Cell& ld, const ConfigCells& all, const Cell& size) {
    const Cell& head = all.head;
    const std::vector<Cell>& arrays = all.arrays;
    std::uint64_t room = 0;
    const std::size_t depth = std::min<std::uint64_t>(ld.at("spanDepth").value(), wire::kMaxSpans);
    for (std::size_t i = 0; i < depth; ++i) {
        const Cell span = ld.at("span").entry(i);
        const auto array = std::ranges::find_if(arrays, [&](const Cell& candidate) {
            return candidate.at("arrayRef").value() == span.at("arrayRef").value();
        });
        const Cell known = array == arrays.end() ? Cell() : *array;
        inspection.bounds("spans lie inside their arrays", known.there(), {span.at("arrayRef"), head});
        if (!known.there())
            return;
        const std::uint64_t start = span.at("startBlock").value();
        const std::uint64_t blocks = span.at("numBlocks").value();
        const std::uint64_t whole = known.at("size").value();
        inspection.tells("spans lie inside their arrays", blocks != 0 && blocks <= whole && start <= whole - blocks,
                         {span.at("startBlock"), span.at("numBlocks"), known.at("size")});
        judgeSame(inspection, "an LD has the drives of its arrays", ld.at("numDrives"), known.at("numDrives"));
        room += blocks * known.at("numDrives").value();
    }
    if (size.there() && depth != 0)
        inspection.tells("sizes agree", size.value() != 0 && size.value() <= room,
                         {size, ld.at("span").entry(0).at("numBlocks"), ld.at("numDrives")});
}

/// The drives that an LD's own list names are those of its arrays.
void judgeMembers(const Inspection& inspection, const Cell& members, const Cell& ld, const ConfigCells& all) {
    constexpr std::size_t kWidth = sizeof(std::uint16_t);
    const Cell count = members.at("count");
    judgeAtMost(inspection, count, wire::kMaxSlots);
    const std::size_t listed = std::min<std::uint64_t>(count.value(), wire::kMaxSlots);
    std::multiset<std::uint64_t> told;
    for (std::size_t i = 0; i < wire::kMaxSlots; ++i) {
        const Cell id = members.at("deviceId").number(i, kWidth);
        if (i < listed)
            told.insert(id.value());
        else
            inspection.tells("places behind the count are empty", id.value() == 0 || id.value() == wire::kNoDevice,
                             {id});
    }
    if (!all.head.there())
        return;
    std::multiset<std::uint64_t> configured;
    Cell anyArray;
    const std::size_t depth = std::min<std::uint64_t>(ld.at("spanDepth").value(), wire::kMaxSpans);
    for (std::size_t i = 0; i < depth; ++i)
        for (const Cell& array : all.arrays) {
            if (array.at("arrayRef").value() != ld.at("span").entry(i).at("arrayRef").value())
                continue;
            anyArray = array.at("pd").entry(0).at("ref");
            const std::size_t drives = std::min<std::uint64_t>(array.at("numDrives").value(), wire::kMaxArrayDrives);
            for (std::size_t k = 0; k < drives; ++k)
                if (const auto id = array.at("pd").entry(k).at("ref").at("deviceId").value(); id != wire::kNoDevice)
                    configured.insert(id);
        }
    inspection.verdicts.judge("an LD has the drives of its arrays", told == configured,
                              configured.empty() ? Weight::kBounds : Weight::kTells,
                              {count, members.at("deviceId").number(0, kWidth), anyArray.there() ? anyArray : all.head,
                               ld.at("span").entry(0).at("arrayRef")});
}

void judgeLdInformation(const Inspection& inspection, const Cell& info, std::uint32_t targetId) {
    const Cell config = info.at("config");
    const Cell asked = config.at("properties").at("ref").at("targetId");
    inspection.tells("the asked object answers", asked.value() == targetId, {asked});
    judgeConfig(inspection, config);
    const ConfigCells all = configOf(inspection.survey, inspection.ctrl);
    if (all.head.there())
        judgeSpans(inspection, config, all, info.at("size"));
    judgeSame(inspection, "the configuration says the same as the LD", config, configuredLd(inspection, targetId));
    if (const Cell members = inspection.cell(kPdInLd, targetId); members.there())
        judgeMembers(inspection, members, config, all);
    judgeSame(inspection, "the properties say the same as the LD", config.at("properties"),
              inspection.cell(kLdProperties, targetId));
    judgeLdProgress(inspection, info.at("progress"));
    judgeElapsed(inspection, info.at("progress"), inspection.cell(kLdInfo, targetId, true).at("progress"),
                 kKindsOfLdWork);
}

} // namespace

void judgeLds(const Inspection& inspection) {
    if (const Cell list = inspection.cell(kLdList); list.there())
        judgeLdList(inspection, list);
    for (const std::uint32_t ld : inspection.survey.lds(inspection.ctrl)) {
        if (const Cell info = inspection.cell(kLdInfo, ld); info.there())
            judgeLdInformation(inspection, info, ld);
        if (const Cell progress = inspection.cell(kLdProgress, ld); progress.there()) {
            judgeLdProgress(inspection, progress);
            judgeSame(inspection, "the work under way is the same", progress.at("active"),
                      inspection.cell(kLdInfo, ld).at("progress").at("active"));
        }
    }
}

} // namespace zebprobe
