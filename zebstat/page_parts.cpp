#include "zebstat/page_parts.h"

#include "zebstat/page_words.h"

#include <algorithm>
#include <array>

namespace zebstat {

using namespace facts;

ControllerPart::ControllerPart(const Controller& about, const std::vector<Finding>& findings) : controller(about) {
    for (const Finding& finding : findings) {
        if (finding.about.controller != controller.number || !finding.about.object)
            continue;
        Severity& worst = severities_[anchorOf(controller.number, *finding.about.object)];
        worst = std::max(worst, finding.severity);
    }
}

std::string ControllerPart::claim(const Object& object) {
    const std::string anchor = anchorOf(controller.number, object);
    return anchors_.insert(anchor).second ? anchor : "";
}

std::optional<Severity> ControllerPart::severityOf(const Object& object) const {
    const auto found = severities_.find(anchorOf(controller.number, object));
    return found != severities_.end() ? std::optional(found->second) : std::nullopt;
}

std::string ControllerPart::severityClass(const Object& object) const {
    const auto severity = severityOf(object);
    return severity ? std::string(severityWord(*severity)) : "";
}

std::string ControllerPart::edgeClass(const std::optional<std::string>& groupName) const {
    constexpr std::ptrdiff_t kColours = 8;
    if (!groupName || !controller.raidGroups)
        return "";
    const auto& groups = *controller.raidGroups;
    const auto place = std::ranges::find(groups, *groupName, &RaidGroup::name) - groups.begin();
    return "g" + std::to_string(place % kColours);
}

void ControllerPart::note(std::string_view sentence) {
    out.leaf("p", sentence, {{"class", "note"}});
}

StateLook lookOf(const PhysicalDrive& drive) {
    struct Row {
        std::string_view state;
        StateLook look;
    };
    constexpr std::array<Row, 8> kLooks{{{"online", {"good", "O", "online"}},
                                         {"hot_spare", {"spare", "S", "hot spare"}},
                                         {"unconfigured_good", {"idle", "U", "unconf. good"}},
                                         {"unconfigured_bad", {"weak", "B", "unconf. bad"}},
                                         {"rebuild", {"busy", "R", "rebuild"}},
                                         {"copyback", {"busy", "C", "copyback"}},
                                         {"offline", {"bad", "X", "offline"}},
                                         {"failed", {"bad", "F", "failed"}}}};
    if (!drive.info)
        return {"weak", "!", "unreadable"};
    const auto* row = std::ranges::find(kLooks, drive.info->state.text, &Row::state);
    return row != kLooks.end() ? row->look : StateLook{"weak", "?", kUnknownWord};
}

StateLook lookOf(const LogicalDrive& ld) {
    if (!ld.info)
        return {"weak", "!", "unreadable"};
    const Word& state = ld.info->state;
    if (state == "optimal")
        return {"good", "O", "optimal"};
    if (state == "degraded")
        return {"bad", "D", "degraded"};
    if (state == "partially_degraded")
        return {"weak", "P", "partially degraded"};
    if (state == "offline")
        return {"bad", "X", "offline"};
    return {"weak", "?", kUnknownWord};
}

void writeSign(Markup& out, std::string_view health) {
    if (health == "critical")
        out.raw(
            "<svg class=\"sign\" viewBox=\"0 0 20 20\" aria-hidden=\"true\"><path d=\"M6 1h8l5 5v8l-5 5H6l-5-5V6z\"/>"
            "<path class=\"mark\" d=\"M6.5 6.5l7 7m0-7l-7 7\"/></svg>");
    else if (health == "warning")
        out.raw("<svg class=\"sign\" viewBox=\"0 0 20 20\" aria-hidden=\"true\"><path d=\"M10 1l9.5 17.5H.5z\"/>"
                "<path class=\"mark\" d=\"M10 7v5.5m0 2.2v1\"/></svg>");
    else
        out.raw("<svg class=\"sign\" viewBox=\"0 0 20 20\" aria-hidden=\"true\"><circle cx=\"10\" cy=\"10\" r=\"9.5\"/>"
                "<path class=\"mark\" d=\"M5.5 10.5l3 3 6-7\"/></svg>");
}

void writeHealth(Markup& out, std::string_view health) {
    const auto label = out.element("span", {{"class", "health " + std::string(health)}});
    writeSign(out, health);
    out.text(health);
}

} // namespace zebstat
