#include "recorder/probe/verdicts.h"

#include <algorithm>
#include <set>

namespace zebprobe {

Verdict RecordFindings::verdict() const {
    if (!contradictions.empty())
        return Verdict::kContradicted;
    if (asked == 0 && !inside)
        return Verdict::kNotAsked;
    return told ? Verdict::kConfirmed : Verdict::kNothingAgainst;
}

void Verdicts::note(const Answered& answered) {
    for (const wire::RecordLayout* layout : {answered.layout, answered.carrier}) {
        if (layout == nullptr)
            continue;
        RecordFindings& record = records_[layout->name];
        if (answered.status != 0) {
            ++record.errors;
            record.lastError = answered.status;
            continue;
        }
        const bool whole = layout == answered.layout;
        ++record.asked;
        record.declared = std::max(record.declared, whole ? answered.bytes.size() : layout->size);
        record.wrote = std::max(record.wrote, whole ? answered.wrote : 0);
        record.past = std::max(record.past, whole ? answered.past : 0);
    }
    judge("nothing is written behind the data", answered.past == 0, Weight::kBounds, {Cell(&answered)});
    judge("what is answered is written", answered.wrote != 0, Weight::kBounds, {Cell(&answered)});
}

void Verdicts::judge(const char* check, bool holds, Weight weight, std::initializer_list<Cell> cells) {
    std::set<std::string_view> names;
    std::vector<std::string> places;
    bool blank = true;
    for (const Cell& cell : cells) {
        if (!cell.there())
            continue;
        for (const wire::RecordLayout* record : cell.records())
            names.insert(record->name);
        blank = blank && cell.blank();
        if (!holds)
            places.push_back(cell.describe());
    }
    for (const std::string_view name : names) {
        RecordFindings& record = records_[name];
        record.inside = true;
        record.told = record.told || (holds && weight == Weight::kTells && !blank);
        if (holds)
            continue;
        const auto known = std::ranges::find(record.contradictions, check, &Contradiction::check);
        if (known == record.contradictions.end())
            record.contradictions.push_back({check, places, 0});
        else
            ++known->more;
    }
}

void Verdicts::judgeSent(const wire::RecordLayout& record, const char* check, bool holds) {
    RecordFindings& findings = records_[record.name];
    findings.inside = true;
    findings.told = findings.told || holds;
    if (!holds)
        findings.contradictions.push_back({check, {"every answer that could show it"}, 0});
}

} // namespace zebprobe
