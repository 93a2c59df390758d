#include "recorder/probe/checks.h"

#include "storelib/records/all.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace zebprobe {

namespace {

constexpr std::uint64_t kYear = 31557600; // s
constexpr std::uint64_t kYear2100 = 3155760000; // s since 2000-01-01

/// What the controller's clock showed at the beginning, or `again` at the end.
std::optional<std::uint64_t> clockOf(const Inspection& inspection, bool again) {
    const Answered* clock = inspection.survey.find(inspection.ctrl, kClock, 0, again);
    if (clock == nullptr || clock->status != 0)
        return std::nullopt;
    std::uint64_t now = 0;
    for (std::size_t i = sizeof(std::uint32_t); i-- != 0;)
        now = now << 8U | clock->bytes[i];
    return now;
}

bool isTime(std::uint64_t seconds) {
    return seconds != 0 && seconds != std::numeric_limits<std::uint32_t>::max();
}

/// Fields whose values move by themselves.
struct Moving {
    std::string_view record;
    std::string_view field;
};
constexpr Moving kMoving[] = {
    {"_MR_CTRL_INFO", "currentFwTime"},
    {"_MR_CTRL_INFO", "memCorrectableErrorCount"},
    {"_MR_CTRL_INFO", "memUncorrectableErrorCount"},
    {"_MR_PD_INFO", "mediaErrorCount"},
    {"_MR_PD_INFO", "otherErrorCount"},
    {"_MR_PD_INFO", "predFailCount"},
    {"_MR_PD_INFO", "progress"},
    {"_MR_PD_INFO", "powerState"},
    {"_MR_LD_INFO", "progress"},
};

/// Compares every field of two readings of an answer's own record.
void judgeReading(const Inspection& inspection, const Cell& first, const Cell& second) {
    if (!first.there() || !second.there())
        return;
    const wire::RecordLayout& layout = *first.records().front();
    for (const wire::FieldLayout& field : layout.fields) {
        const auto moves = [&](const Moving& row) { return row.record == layout.name && row.field == field.name; };
        if (std::ranges::any_of(kMoving, moves))
            continue;
        const Cell one = first.at(field.name).outer();
        const Cell other = second.at(field.name).outer();
        inspection.bounds("two readings agree", std::ranges::equal(one.bytes(), other.bytes()), {one, other});
    }
}

} // namespace

void judgeText(const Inspection& inspection, const Cell& text, bool typed) {
    const auto bytes = text.bytes();
    const auto printable = [=](std::uint8_t c) { return (c >= ' ' && c <= '~') || (typed && c >= 0x80); };
    const auto end = std::ranges::find_if_not(bytes, printable);
    const bool padded = std::all_of(end, bytes.end(), [](std::uint8_t c) { return c == 0; });
    inspection.tells("texts are printable and padded", padded, {text});
}

void judgeTime(const Inspection& inspection, const Cell& time) {
    if (isTime(time.value()))
        inspection.bounds("times lie in 2000 to 2099", time.value() < kYear2100, {time});
}

void judgeNearClock(const Inspection& inspection, const Cell& time) {
    judgeTime(inspection, time);
    const auto now = clockOf(inspection, false);
    if (!now || !isTime(time.value()))
        return;
    const std::uint64_t apart = std::max(*now, time.value()) - std::min(*now, time.value());
    inspection.tells("times lie near the controller's clock", apart <= 10 * kYear, {time});
}

void judgeAtMost(const Inspection& inspection, const Cell& number, std::uint64_t most) {
    inspection.bounds("numbers, states and levels are known ones", number.value() <= most, {number});
}

void judgeSame(const Inspection& inspection, const char* check, const Cell& one, const Cell& other) {
    if (!one.there() || !other.there())
        return;
    if (std::ranges::equal(one.bytes(), other.bytes()))
        inspection.tells(check, true, {one.outer(), other.outer()});
    else
        inspection.tells(check, false, {one, other});
}

void judgeWork(const Inspection& inspection, const Cell& progress, std::initializer_list<Work> kinds) {
    const Cell active = progress.at("active");
    bool elsewhere = false; // what is not under way has come somewhere
    for (const Work& work : kinds)
        elsewhere = elsewhere || ((active.value() & work.bits) == 0 && !progress.at(work.field).blank());
    for (const Work& work : kinds) {
        if ((active.value() & work.bits) == 0)
            continue;
        // The order inside a progress is not looked at, so nothing is said of it.
        const Cell far = progress.at(work.field).outer();
        const char* check = "work under way has come somewhere";
        if (far.blank())
            inspection.bounds(check, !elsewhere, {active, far});
        else
            inspection.tells(check, true, {active, far});
    }
}

void judgeElapsed(const Inspection& inspection, const Cell& first, const Cell& second,
                  std::initializer_list<Work> kinds) {
    const auto start = clockOf(inspection, false);
    const auto end = clockOf(inspection, true);
    if (!first.there() || !second.there() || !start || !end || *end < *start)
        return;
    const std::uint64_t most = *end - *start + 2; // parts of a second are cut off twice
    for (const Work& work : kinds) {
        if ((first.at("active").value() & second.at("active").value() & work.bits) == 0)
            continue;
        const Cell before = first.at(work.field);
        const Cell after = second.at(work.field);
        const auto moved = [&](const char* field) {
            return static_cast<std::int64_t>(after.at(field).value()) -
                   static_cast<std::int64_t>(before.at(field).value());
        };
        const std::int64_t far = moved("progress");
        const std::int64_t seconds = moved("elapsed");
        if (far < 0 || seconds < 0)
            continue; // begun anew
        // Where the progress moves on faster, one taken for the other would have been found out.
        const auto limit = static_cast<std::int64_t>(most);
        inspection.verdicts.judge("work takes no longer than the controller's clock says", seconds <= limit,
                                  far > limit ? Weight::kTells : Weight::kBounds,
                                  {before.at("elapsed"), after.at("elapsed")});
    }
}

ConfigCells configOf(const Survey& survey, std::size_t ctrl, Question question) {
    ConfigCells cells;
    cells.head = survey.cell(ctrl, question);
    if (question == kForeignConfig)
        cells.head = survey.cell(ctrl, question, wire::kAllForeignConfigs);
    if (!cells.head.there())
        return cells;
    const Answered* answered = survey.find(ctrl, question, question == kConfig ? 0 : wire::kAllForeignConfigs);
    Bytes copy = answered->bytes;
    auto* config = reinterpret_cast<_MR_CONFIG_DATA*>(copy.data());
    std::size_t offset = sizeof *config;
    const auto section = [&](auto records, const char* name, std::vector<Cell>& to) {
        using Record = typename decltype(records)::element_type;
        for (std::size_t i = 0; i < records.size(); ++i, offset += sizeof(Record))
            to.push_back(cells.head.record(wire::Layout<Record>::kRecord, offset,
                                           std::string(name) + "[" + std::to_string(i) + "]"));
    };
    section(arraysOf(config, copy.size()), "array", cells.arrays);
    section(ldsOf(config, copy.size()), "ld", cells.lds);
    section(sparesOf(config, copy.size()), "spare", cells.spares);
    return cells;
}

void judgeReadings(const Inspection& inspection) {
    const auto judge = [&](Question question, std::uint32_t reference) {
        judgeReading(inspection, inspection.cell(question, reference), inspection.cell(question, reference, true));
    };
    for (const Question question : {kCtrlInfo, kPdList, kEnclList, kLdList, kConfig})
        judge(question, 0);
    for (const std::uint32_t drive : inspection.survey.drives(inspection.ctrl))
        judge(kPdInfo, drive);
    for (const std::uint32_t ld : inspection.survey.lds(inspection.ctrl))
        judge(kLdInfo, ld);
}

} // namespace zebprobe
