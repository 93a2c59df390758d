#include "zebstat/page.h"

#include "facts/spoken.h"
#include "facts/text.h"
#include "zebstat/page_parts.h"
#include "zebstat/page_style.h"
#include "zebstat/page_table.h"
#include "zebstat/page_words.h"

#include <algorithm>
#include <deque>

namespace zebstat {

namespace {

using namespace facts;

/// The worst of what was found on the controller.
std::string_view healthOf(const Controller& controller, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) // the worst first
        if (finding.about.controller == controller.number)
            return severityWord(finding.severity);
    return "ok";
}

class PageWriter {
  public:
    PageWriter(const Collection& collection, const std::vector<Finding>& findings)
        : collection_(collection), findings_(findings) {}

    /// The controllers come first, as the findings at the top link to what is there.
    std::string write() {
        const std::vector<Work> works = workOf(collection_);
        for (const Controller& controller : collection_.controllers) {
            parts_.emplace_back(controller, findings_);
            writeController(parts_.back(), works);
        }
        std::string page = top();
        for (const ControllerPart& part : parts_)
            page += part.out.page() + "\n";
        return page + end();
    }

  private:
    std::string top() {
        Markup out;
        out.raw("<!DOCTYPE html>\n<html lang=\"en\">\n");
        writeHead(out);
        out.raw("<body>\n");
        {
            const auto header = out.element("header");
            out.leaf("h1", collection_.hostName);
            writeTime(out);
        }
        out.raw("\n<main>\n");
        writeVerdict(out);
        writeOverview(out);
        writeFindings(out);
        return out.page();
    }

    void writeHead(Markup& out) const {
        out.raw("<head>\n<meta charset=\"utf-8\"/>\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                "<meta name=\"color-scheme\" content=\"light dark\"/>\n"
                // Should a text of a drive ever become markup, it can still load nothing and run nothing.
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
                "style-src 'unsafe-inline'\"/>\n"
                "<link rel=\"icon\" href=\"data:,\"/>\n");
        out.empty("meta", {{"name", "generator"}, {"content", "zebstat " ZEB_VERSION}});
        out.leaf("title", collection_.hostName + ": " + std::string(facts::healthOf(findings_)));
        out.raw("\n<style>\n");
        out.raw(kPageStyle);
        out.raw("</style>\n</head>\n");
    }

    void writeTime(Markup& out) const {
        std::string words = collection_.hostTime; // "2026-11-21T22:05:16Z"
        if (words.size() > 10 && words.ends_with('Z')) {
            words.replace(words.size() - 1, 1, " UTC");
            words.replace(10, 1, " ");
        }
        const auto line = out.element("p");
        out.leaf("time", words, {{"datetime", collection_.hostTime}});
    }

    void writeVerdict(Markup& out) const {
        const std::string health(facts::healthOf(findings_));
        const auto box = out.element("p", {{"class", "verdict " + health}});
        writeSign(out, health);
        out.leaf("strong", health == "ok" ? "All is well" : health == "warning" ? "Warning" : "Critical");
        out.raw(" ");
        out.leaf("span", verdictText());
    }

    std::string verdictText() const {
        if (findings_.empty())
            return countsText(collection_);
        const std::size_t critical = countOf(findings_, Severity::Critical);
        const std::size_t warnings = countOf(findings_, Severity::Warning);
        std::string text = joined({critical != 0 ? counted(critical, "critical finding") : "",
                                   warnings != 0 ? counted(warnings, "warning") : ""},
                                  ", ");
        return text + (collection_.complete() ? "" : "; not everything could be read");
    }

    /// A way to each controller, where there are several.
    void writeOverview(Markup& out) const {
        if (collection_.controllers.size() < 2)
            return;
        const auto box = out.element("nav", {{"aria-label", "Controllers"}});
        for (const Controller& controller : collection_.controllers) {
            const auto way = out.element("a", {{"href", "#c" + std::to_string(controller.number)}});
            out.text("Controller " + std::to_string(controller.number) + " ");
            writeHealth(out, healthOf(controller, findings_));
        }
    }

    void writeFindings(Markup& out) const {
        out.leaf("h2", "Findings");
        if (findings_.empty()) {
            out.leaf("p", "Nothing needs attention.", {{"class", "sub"}});
            return;
        }
        const auto list = out.element("ol", {{"class", "findings"}});
        for (const Finding& finding : findings_) {
            const std::string severity(severityWord(finding.severity));
            const auto item = out.element("li", {{"class", severity}});
            writeHealth(out, severity);
            const std::string anchor = targetOf(finding);
            if (anchor.empty())
                out.leaf("span", finding.text);
            else
                out.leaf("a", finding.text, {{"href", "#" + anchor}});
        }
    }

    /// Where the page shows what the finding is about: the object, or else its controller.
    std::string targetOf(const Finding& finding) const {
        for (const ControllerPart& part : parts_) {
            if (finding.about.controller != part.controller.number || !finding.about.object)
                continue;
            const std::string anchor = anchorOf(part.controller.number, *finding.about.object);
            return part.isClaimed(anchor) ? anchor : anchorOf(part.controller.number, ControllerObject{});
        }
        return {};
    }

    void writeController(ControllerPart& part, const std::vector<Work>& works) const {
        const Controller& controller = part.controller;
        Markup& out = part.out;
        const auto box = out.element("section", {{"class", "controller"}, {"id", part.claim(ControllerObject{})}});
        {
            const auto heading = out.element("h2");
            out.text("Controller " + std::to_string(controller.number) + " ");
            if (controller.info)
                out.leaf("span", plainText(controller.info->product), {{"class", "soft"}});
            out.raw(" ");
            writeHealth(out, healthOf(controller, findings_));
        }
        if (!controller.info) {
            part.note("This controller could not be read" +
                      (controller.error
                           ? ": " + controller.error->text + " (0x" + hexText(controller.error->status, 2) + ")"
                           : ""));
            return;
        }
        writeEnclosures(part);
        writeRaidGroups(part);
        writeWork(part, works);
        writeCacheBackup(part);
        out.leaf("h3", "Details");
        writeLdTable(part);
        writeGroupTable(part);
        writeDriveTable(part);
        writeEnclosureTable(part);
        writeControllerTables(part);
    }

    /// The requests that failed, and what made the page.
    std::string end() const {
        Markup out;
        if (!collection_.errors.empty()) {
            out.leaf("h2", "Requests that failed");
            Table table{"Requests that failed", {"Controller", "Object", "Request", "Status", "Meaning"}, {}};
            for (const RequestError& error : collection_.errors)
                table.rows.push_back({error.about.controller ? std::to_string(*error.about.controller) : kUntoldText,
                                      error.about.object ? objectText(*error.about.object) : "the library",
                                      std::string(error.wrapper), "0x" + hexText(error.failure.status, 2),
                                      error.failure.text});
            writeTable(out, table);
        }
        out.raw("</main>\n<footer>");
        out.leaf("p", joined({"zebstat " ZEB_VERSION,
                              collection_.libraryVersion ? "library " + *collection_.libraryVersion : "",
                              counted(collection_.requests, "request")},
                             kDot));
        out.raw("</footer>\n</body>\n</html>\n");
        return out.page();
    }

    const Collection& collection_;
    const std::vector<Finding>& findings_;
    std::deque<ControllerPart> parts_;
};

} // namespace

std::string htmlPage(const Collection& collection, const std::vector<Finding>& findings) {
    return PageWriter(collection, findings).write();
}

} // namespace zebstat
