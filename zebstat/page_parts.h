// What the parts of the page share, and the parts, in the order in which they stand on it.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"
#include "zebstat/page_markup.h"
#include "zebstat/work.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zebstat {

/// One controller's part of the page, on its way onto it.
class ControllerPart {
  public:
    ControllerPart(const facts::Controller& controller, const std::vector<facts::Finding>& findings);

    const facts::Controller& controller;
    Markup out;

    /// The anchor of an object for its id, and nothing when the object has got it already: an id stands once on a page.
    std::string claim(const facts::Object& object);
    bool isClaimed(const std::string& anchor) const { return anchors_.count(anchor) != 0; }

    /// The worst finding about the object.
    std::optional<facts::Severity> severityOf(const facts::Object& object) const;
    /// "critical", "warning" or nothing.
    std::string severityClass(const facts::Object& object) const;

    /// The colour of a group's edges, "g0" to "g7" by its place; nothing for a drive that is in none.
    std::string edgeClass(const std::optional<std::string>& groupName) const;

    /// A sentence in place of what could not be read.
    void note(std::string_view sentence);

  private:
    std::map<std::string, facts::Severity> severities_; ///< by anchor
    std::set<std::string> anchors_;
};

/// A state as the page shows it: its colour, its letter and its word. The word is short enough for a bay.
struct StateLook {
    std::string_view look; ///< class: good, spare, idle, busy, weak, bad
    std::string_view letter;
    std::string_view word;
};
StateLook lookOf(const facts::PhysicalDrive& drive);
StateLook lookOf(const facts::LogicalDrive& ld);

/// The sign of a severity: a cross, a triangle, a tick. It is for eyes alone, the word stands beside it.
void writeSign(Markup& out, std::string_view health);
/// The sign and the word, as a small label.
void writeHealth(Markup& out, std::string_view health);

/// The drawing of one enclosure's bays.
void writeBays(ControllerPart& part, std::vector<const facts::PhysicalDrive*> drives, unsigned slots);
/// All enclosures with their bays and sensors, and the drives outside of them.
void writeEnclosures(ControllerPart& part);
void writeRaidGroups(ControllerPart& part);
/// A bar for each operation; nothing when there is none.
void writeWork(ControllerPart& part, const std::vector<Work>& works);
void writeSensors(ControllerPart& part, const facts::Enclosure& enclosure);
void writeCacheBackup(ControllerPart& part);
void writeBackupTable(ControllerPart& part, const facts::CacheBackup& unit);
void writeDriveTable(ControllerPart& part);
void writeLdTable(ControllerPart& part);
void writeGroupTable(ControllerPart& part);
void writeEnclosureTable(ControllerPart& part);
/// What the controller is and how it is set.
void writeControllerTables(ControllerPart& part);

} // namespace zebstat
