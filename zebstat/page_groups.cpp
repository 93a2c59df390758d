// RAID groups to scale, and background work as bars.
#include "facts/spoken.h"
#include "zebstat/page_parts.h"
#include "zebstat/page_words.h"

#include <algorithm>

namespace zebstat {

namespace {

using namespace facts;

/// A part of a group's bar.
struct Segment {
    std::string label;
    std::string look; ///< class
    std::uint64_t bytes;
};

std::string nameOf(std::uint8_t number, const LogicalDrive* ld) {
    const bool isNamed = ld != nullptr && ld->info && ld->info->name;
    return "LD" + std::to_string(number) + (isNamed ? " " + *ld->info->name : "");
}

class GroupWriter {
  public:
    GroupWriter(ControllerPart& part, const RaidGroup& group) : part_(part), out_(part.out), group_(group) {}

    void write() {
        const RaidGroupObject object{group_.name};
        const auto box = out_.element(
            "section", {{"class", "group " + part_.edgeClass(group_.name) + " " + part_.severityClass(object)},
                        {"id", part_.claim(object)}});
        {
            const auto heading = out_.element("h4");
            out_.text(group_.name + " ");
            out_.leaf(
                "span",
                joined({upperText(group_.level), group_.cachecade ? "CacheCade" : "", sizeText(group_.usableBytes)},
                       kDot),
                {{"class", "soft"}});
        }
        writeBar();
        writeLds();
        writeMembers();
    }

  private:
    std::uint64_t sizeOf(std::uint8_t number) const {
        const LogicalDrive* ld = part_.controller.ldOf(number);
        return ld != nullptr && ld->info ? ld->info->sizeBytes.value_or(0) : 0;
    }

    std::vector<Segment> segments() const {
        std::vector<Segment> segments;
        for (const std::uint8_t number : group_.logicalDrives) {
            const LogicalDrive* ld = part_.controller.ldOf(number);
            const std::string look(ld != nullptr ? lookOf(*ld).look : "weak");
            segments.push_back({nameOf(number, ld), "ld " + look, sizeOf(number)});
        }
        segments.push_back({"free", "free", group_.freeBytes.value_or(0)});
        return segments;
    }

    /// The lengths are those of the bytes, whatever the names need: a name that has no room is cut, and stands below.
    void writeBar() {
        const std::vector<Segment> all = segments();
        double sum = 0;
        for (const Segment& segment : all)
            sum += static_cast<double>(segment.bytes);
        const double whole = std::max(sum, static_cast<double>(group_.usableBytes.value_or(0)));
        if (whole <= 0)
            return;
        const auto bar = out_.element("div", {{"class", "bar"}, {"aria-hidden", "true"}});
        for (const Segment& segment : all) {
            if (segment.bytes == 0)
                continue;
            const double percent = 100 * static_cast<double>(segment.bytes) / whole;
            out_.leaf("div", segment.label,
                      {{"class", segment.look},
                       {"style", "flex-basis:" + numberText(percent, 2) + "%"},
                       {"title", segment.label + ", " + sizeText(segment.bytes)}});
        }
    }

    void writeLds() {
        const auto list = out_.element("ul", {{"class", "lds"}});
        for (const std::uint8_t number : group_.logicalDrives) {
            const LogicalDriveObject object{number};
            const LogicalDrive* ld = part_.controller.ldOf(number);
            const StateLook look = ld != nullptr ? lookOf(*ld) : StateLook{"weak", "!", "not listed"};
            const auto item = out_.element("li", {{"id", part_.claim(object)}, {"class", part_.severityClass(object)}});
            out_.leaf("span", look.letter, {{"class", "key " + std::string(look.look)}, {"aria-hidden", "true"}});
            out_.leaf("strong", nameOf(number, ld));
            out_.text(" ");
            std::vector<std::string> words{std::string(look.word)};
            if (ld != nullptr && ld->info) {
                words.push_back(upperText(ld->info->level));
                words.push_back(sizeText(ld->info->sizeBytes));
                words.push_back(ld->info->osDevice.value_or(""));
            }
            out_.text(joined(words, kDot));
        }
        const auto item = out_.element("li");
        out_.leaf("span", kUntoldText, {{"class", "key free"}, {"aria-hidden", "true"}});
        out_.text("free " + sizeText(group_.freeBytes));
        if (group_.freeSegments && group_.freeSegments->size() > 1)
            out_.text(" in " + std::to_string(group_.freeSegments->size()) + " segments");
    }

    void writeMembers() {
        const auto line = out_.element("p", {{"class", "members"}});
        out_.text("Drives ");
        for (const auto& deviceId : group_.physicalDrives) {
            if (deviceId)
                writeMember(*deviceId);
            else
                out_.leaf("span", "missing", {{"class", "member bad"}});
        }
        if (!group_.spares.empty())
            out_.text(" Spares ");
        for (const std::uint16_t deviceId : group_.spares)
            writeMember(deviceId);
    }

    void writeMember(std::uint16_t deviceId) {
        const PhysicalDrive* drive = part_.controller.driveOf(deviceId);
        if (drive == nullptr) {
            out_.leaf("span", "device id " + std::to_string(deviceId), {{"class", "member weak"}});
            return;
        }
        const StateLook look = lookOf(*drive);
        const std::string anchor = anchorOf(part_.controller.number, drive->object());
        out_.leaf("a", placeText(drive->enclosureId, drive->slot) + " " + std::string(look.letter),
                  {{"class", "member " + std::string(look.look)},
                   {"href", "#" + anchor},
                   {"title", "Drive " + placeText(drive->enclosureId, drive->slot) + ": " + std::string(look.word)}});
    }

    ControllerPart& part_;
    Markup& out_;
    const RaidGroup& group_;
};

} // namespace

void writeRaidGroups(ControllerPart& part) {
    const auto& groups = part.controller.raidGroups;
    part.out.leaf("h3", "RAID groups");
    if (!groups)
        part.note("The configuration could not be read.");
    else if (groups->empty())
        part.out.leaf("p", "There is no RAID group.", {{"class", "sub"}});
    if (!groups || groups->empty())
        return;
    const auto box = part.out.element("div", {{"class", "groups"}});
    for (const RaidGroup& group : *groups)
        GroupWriter(part, group).write();
}

void writeWork(ControllerPart& part, const std::vector<Work>& works) {
    Markup& out = part.out;
    const auto isHere = [&](const Work& work) { return work.object.controller == part.controller.number; };
    if (std::ranges::none_of(works, isHere))
        return;
    out.leaf("h3", "Background work");
    const auto list = out.element("ul", {{"class", "works"}});
    for (const Work& work : works) {
        if (!isHere(work))
            continue;
        const auto item = out.element("li");
        const std::string percent = std::to_string(work.operation.percent());
        const auto left = work.operation.remainingSeconds();
        const std::string words = wordText(work.operation.type) + " of " + work.name;
        {
            const auto line = out.element("p");
            out.leaf("strong", words);
            out.text(kDot + percent + " %" + (left ? kDot + spokenDuration(*left) + " left" : ""));
        }
        const auto bar = out.element("div", {{"class", "progress"},
                                             {"role", "progressbar"},
                                             {"aria-label", words},
                                             {"aria-valuenow", percent},
                                             {"aria-valuemin", "0"},
                                             {"aria-valuemax", "100"}});
        const auto done = out.element("div", {{"style", "width:" + numberText(work.operation.ratio() * 100, 2) + "%"}});
    }
}

} // namespace zebstat
