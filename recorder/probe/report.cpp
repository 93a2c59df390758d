#include "recorder/probe/report.h"

#include "storelib/records/all.h"

#include <algorithm>
#include <cstdio>

namespace zebprobe {

namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text + "  ";
}

std::string rightward(std::size_t number, bool known, std::size_t width) {
    const std::string text = known ? std::to_string(number) : "-";
    return std::string(width - std::min(width, text.size()), ' ') + text + "  ";
}

/// The record's word; a "+" says that single fields have another.
std::string originOf(const wire::RecordLayout& layout) {
    const bool mixed = std::ranges::any_of(layout.fields, [&](const auto& f) { return f.origin != layout.origin; });
    return std::string(wordOf(layout.origin)) + (mixed ? "+" : "");
}

const char* wordOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::kNotAsked:
        return "not asked";
    case Verdict::kNothingAgainst:
        return "nothing against it";
    case Verdict::kConfirmed:
        return "confirmed";
    case Verdict::kContradicted:
        break;
    }
    return "contradicted";
}

std::string errorsOf(const RecordFindings& findings) {
    if (findings.errors == 0)
        return "";
    char status[16];
    std::snprintf(status, sizeof status, "0x%08X", findings.lastError);
    return findings.asked == 0 ? std::string(" (answered with status ") + status + ")"
                               : " (" + std::to_string(findings.errors) + " answered with status " + status + ")";
}

std::string rowOf(const wire::RecordLayout& layout, const RecordFindings& findings) {
    const bool answered = findings.asked != 0;
    std::string text = padded(layout.name, 24) + padded(originOf(layout), 10) + rightward(findings.asked, answered, 5) +
                       rightward(findings.declared, answered, 8) + rightward(findings.wrote, findings.wrote != 0, 7) +
                       rightward(findings.past, findings.past != 0, 6) + wordOf(findings.verdict()) +
                       errorsOf(findings) + "\n";
    for (const Contradiction& contradiction : findings.contradictions) {
        text += "    " + contradiction.check;
        if (contradiction.more != 0)
            text += " (and " + std::to_string(contradiction.more) + " more)";
        text += '\n';
        for (const std::string& place : contradiction.places)
            text += "        " + place + '\n';
    }
    return text;
}

} // namespace

std::string reportOf(const Verdicts& verdicts) {
    std::string text = "record                    from        asked  declared    wrote    past  verdict\n";
    std::map<Verdict, std::size_t> counts;
    std::string contradicted;
    for (const wire::RecordLayout& layout : wire::kAllRecords) {
        const auto found = verdicts.records().find(layout.name);
        const RecordFindings findings = found == verdicts.records().end() ? RecordFindings{} : found->second;
        text += rowOf(layout, findings);
        ++counts[findings.verdict()];
        if (findings.verdict() == Verdict::kContradicted)
            contradicted += std::string(contradicted.empty() ? "" : ", ") + layout.name;
    }
    text += contradicted.empty() ? "no layout is contradicted" : "contradicted: " + contradicted;
    return text + "; " + std::to_string(counts[Verdict::kConfirmed]) + " confirmed, " +
           std::to_string(counts[Verdict::kNothingAgainst]) + " with nothing against them, " +
           std::to_string(counts[Verdict::kNotAsked]) + " not asked\n";
}

bool isContradicted(const Verdicts& verdicts) {
    return std::ranges::any_of(verdicts.records(),
                               [](const auto& record) { return record.second.verdict() == Verdict::kContradicted; });
}

} // namespace zebprobe
