// Enclosures as they look: a bay for each slot.
#include "zebstat/page_parts.h"
#include "zebstat/page_words.h"

#include <algorithm>
#include <map>

namespace zebstat {

namespace {

using namespace facts;

constexpr unsigned kMostFlat = 16; ///< bays that lie, as those of large drives; more bays stand

/// Where the parts of a bay are, in its own units. A bay that lies is read from left to right; in one that stands the
/// words run downwards.
struct BayShape {
    Literal viewBox;
    Literal frame;
    Literal slot; ///< the number of the slot
    Literal badge;
    Literal letter;
    Literal word;
    Literal detail;
    Literal flag; ///< the sign of a finding
};

constexpr BayShape kFlat{
    "<svg class=\"bay\" viewBox=\"0 0 168 46\" role=\"img\">",
    "<rect x=\"2\" y=\"2\" width=\"164\" height=\"42\" rx=\"5\"/>",
    "<text class=\"slot\" x=\"161\" y=\"15\" text-anchor=\"end\">",
    "<circle class=\"badge\" cx=\"22\" cy=\"23\" r=\"12\"/>",
    "<text class=\"letter\" x=\"22\" y=\"28\" text-anchor=\"middle\">",
    "<text class=\"word\" x=\"42\" y=\"20\">",
    "<text class=\"detail\" x=\"42\" y=\"35\">",
    "<path class=\"flag\" d=\"M152 23l8 15h-16z\"/><path class=\"flagmark\" d=\"M152 28v5m0 2v1\"/>"};
constexpr BayShape kTall{
    "<svg class=\"bay\" viewBox=\"0 0 46 158\" role=\"img\">",
    "<rect x=\"2\" y=\"2\" width=\"42\" height=\"154\" rx=\"5\"/>",
    "<text class=\"slot\" x=\"8\" y=\"16\">",
    "<circle class=\"badge\" cx=\"23\" cy=\"34\" r=\"12\"/>",
    "<text class=\"letter\" x=\"23\" y=\"39\" text-anchor=\"middle\">",
    "<text class=\"word\" transform=\"translate(26 53) rotate(90)\">",
    "<text class=\"detail\" transform=\"translate(11 53) rotate(90)\">",
    "<path class=\"flag\" d=\"M34 4l7 13h-14z\"/><path class=\"flagmark\" d=\"M34 8.5v4m0 1.8v1\"/>"};

/// Everything about the drive, for whoever rests on its bay.
std::string titleOf(const PhysicalDrive& drive) {
    std::string title = "Slot " + std::to_string(drive.slot) + ": ";
    if (!drive.info)
        return title + "could not be read" + (drive.error ? ", " + drive.error->text : "");
    const PhysicalDriveInfo& info = *drive.info;
    title += wordText(info.state);
    if (info.raidGroup)
        title += ", " + *info.raidGroup;
    title += ". " + joined({plainText(info.vendor), plainText(info.product), plainText(info.revision)}, " ");
    title += ", " + upperText(info.interface) + " " + upperText(info.media);
    title += ", " + sizeText(info.usableBytes);
    title += ". Media errors " + std::to_string(info.mediaErrors) + ", other errors " +
             std::to_string(info.otherErrors) + ", predicted failures " + std::to_string(info.predictiveFailures);
    title += ". " + (info.temperatureCelsius ? numberText(info.temperatureCelsius, kCelsius) : "No temperature");
    return title + (info.foreign ? ". Carries a foreign configuration" : "");
}

/// The state, and how far the work has come that it names.
std::string wordOf(const PhysicalDrive& drive, const StateLook& look) {
    std::string word(look.word);
    if (drive.info && look.look == "busy")
        for (const Operation& operation : drive.info->operations)
            if (operation.type == look.word)
                word += " " + std::to_string(operation.percent()) + " %";
    return word;
}

class BayWriter {
  public:
    BayWriter(ControllerPart& part, const BayShape& shape) : part_(part), out_(part.out), shape_(shape) {}

    void writeEmpty(unsigned slot) {
        const auto item = out_.element("li", {{"class", "empty"}});
        out_.raw(shape_.viewBox);
        out_.leaf("title", "Slot " + std::to_string(slot) + ": empty");
        out_.raw(shape_.frame);
        write(shape_.slot, std::to_string(slot));
        write(shape_.word, "empty");
        out_.raw("</svg>");
    }

    void writeDrive(const PhysicalDrive& drive) {
        const StateLook look = lookOf(drive);
        const auto group = drive.info ? drive.info->raidGroup : std::nullopt;
        const std::string severity = part_.severityClass(drive.object());
        const auto item =
            out_.element("li", {{"id", part_.claim(drive.object())},
                                {"class", joined({std::string(look.look), part_.edgeClass(group), severity}, " ")}});
        out_.raw(shape_.viewBox);
        out_.leaf("title", titleOf(drive) + (severity.empty() ? "" : ". Finding: " + severity));
        out_.raw(shape_.frame);
        out_.raw(shape_.badge);
        write(shape_.letter, look.letter);
        write(shape_.slot, std::to_string(drive.slot));
        write(shape_.word, wordOf(drive, look));
        if (drive.info)
            write(shape_.detail, joined({group.value_or(""), sizeText(drive.info->usableBytes)}, kDot));
        if (!severity.empty())
            out_.raw(shape_.flag);
        out_.raw("</svg>");
    }

  private:
    void write(const Literal& text, std::string_view words) {
        out_.raw(text);
        out_.text(words);
        out_.raw("</text>");
    }

    ControllerPart& part_;
    Markup& out_;
    const BayShape& shape_;
};

/// The first and the last slot to draw. Slots count from 0, or go on where those of the enclosure before end.
std::pair<unsigned, unsigned> slotRange(const std::vector<const PhysicalDrive*>& drives, unsigned slots) {
    if (drives.empty())
        return {0, slots};
    const unsigned lowest = drives.front()->slot;
    const unsigned highest = drives.back()->slot;
    if (highest < slots)
        return {0, slots};
    return highest - lowest < slots ? std::pair{lowest, lowest + slots} : std::pair{0U, highest + 1};
}

void writeHead(ControllerPart& part, const Enclosure& enclosure) {
    {
        const auto heading = part.out.element("h4");
        part.out.text("Enclosure " + std::to_string(enclosure.deviceId) + " ");
        part.out.leaf("span", joined({plainText(enclosure.vendor), plainText(enclosure.product)}, " "),
                      {{"class", "soft"}});
    }
    std::vector<std::string> words{typeText(enclosure.type), wordText(enclosure.location),
                                   plainText(enclosure.connector), std::to_string(enclosure.slots) + " slots"};
    part.out.leaf("p", joined(words, kDot), {{"class", "sub"}});
    if (enclosure.error)
        part.note("Not all of this enclosure could be read: " + enclosure.error->text);
}

} // namespace

void writeBays(ControllerPart& part, std::vector<const PhysicalDrive*> drives, unsigned slots) {
    constexpr unsigned kMostColumns = 24;
    std::ranges::stable_sort(drives, {}, [](const PhysicalDrive* drive) { return drive->slot; });
    const auto [first, end] = slotRange(drives, slots);
    const auto count = std::max<std::size_t>(slots == 0 ? 0 : end - first, drives.size());
    const bool isFlat = count <= kMostFlat;
    const auto list = part.out.element(
        "ul", {{"class", joined({"bays", isFlat ? "flat" : "tall", slots == 0 ? "loose" : ""}, " ")},
               {"style", isFlat ? "" : "--columns:" + std::to_string(std::min<std::size_t>(count, kMostColumns))}});
    BayWriter writer(part, isFlat ? kFlat : kTall);
    auto drive = drives.begin();
    if (slots != 0)
        for (unsigned slot = first; slot < end; ++slot) {
            if (drive == drives.end() || (*drive)->slot != slot)
                writer.writeEmpty(slot);
            for (; drive != drives.end() && (*drive)->slot == slot; ++drive)
                writer.writeDrive(**drive);
        }
    for (; drive != drives.end(); ++drive)
        writer.writeDrive(**drive);
}

void writeEnclosures(ControllerPart& part) {
    using Drives = std::vector<const PhysicalDrive*>;
    const Controller& controller = part.controller;
    part.out.leaf("h3", "Enclosures and drives");
    if (!controller.enclosures)
        part.note("The list of the enclosures could not be read.");
    if (!controller.physicalDrives)
        part.note("The list of the drives could not be read.");
    std::map<std::optional<std::uint16_t>, Drives> places;
    if (controller.physicalDrives)
        for (const PhysicalDrive& drive : *controller.physicalDrives)
            places[drive.enclosureId].push_back(&drive);
    if (controller.enclosures)
        for (const Enclosure& enclosure : *controller.enclosures) {
            const EnclosureObject object{enclosure.deviceId};
            const auto box = part.out.element(
                "section", {{"class", "enclosure " + part.severityClass(object)}, {"id", part.claim(object)}});
            writeHead(part, enclosure);
            const auto node = places.extract(enclosure.deviceId);
            if (controller.physicalDrives && (enclosure.slots != 0 || !node.empty()))
                writeBays(part, node.empty() ? Drives{} : node.mapped(), enclosure.slots);
            writeSensors(part, enclosure);
        }
    for (const auto& [enclosureId, drives] : places) {
        const auto box = part.out.element("section", {{"class", "enclosure"}});
        part.out.leaf("h4", enclosureId
                                ? "Drives of enclosure " + std::to_string(*enclosureId) + ", which is not listed"
                                : "Drives outside an enclosure");
        writeBays(part, drives, 0);
    }
    if (places.empty() && controller.enclosures && controller.enclosures->empty() && controller.physicalDrives &&
        controller.physicalDrives->empty())
        part.out.leaf("p", "There is no enclosure and no drive.", {{"class", "sub"}});
}

} // namespace zebstat
