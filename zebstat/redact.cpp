#include "zebstat/redact.h"

#include <map>
#include <string>

namespace zebstat {

namespace {

using namespace facts;

/// Words for the originals of one kind.
class Words {
  public:
    explicit Words(std::string kind) : kind_(std::move(kind)) {}

    /// The word for a text; a new text gets the next number.
    const std::string& meet(const std::string& text) {
        const auto [word, isNew] = words_.try_emplace(text);
        if (isNew)
            word->second = kind_ + "-" + std::to_string(words_.size());
        return word->second;
    }
    void replace(std::string& text) { text = meet(text); }
    void replace(std::optional<std::string>& text) {
        if (text)
            replace(*text);
    }
    void replace(std::vector<std::string>& texts) {
        for (std::string& text : texts)
            replace(text);
    }

  private:
    std::string kind_;
    std::map<std::string, std::string> words_;
};

class Redactor {
  public:
    void redact(Collection& collection, const std::vector<Finding>& findings) {
        hosts_.replace(collection.hostName);
        for (const Finding& finding : findings)
            meet(collection, finding.about);
        for (Controller& controller : collection.controllers)
            redact(controller);
    }

  private:
    /// A sentence about an LD says its name.
    void meet(const Collection& collection, const ObjectRef& about) {
        const auto* named = about.object ? std::get_if<LogicalDriveObject>(&*about.object) : nullptr;
        for (const Controller& controller : collection.controllers) {
            if (named == nullptr || about.controller != controller.number || !controller.logicalDrives)
                continue;
            for (const LogicalDrive& ld : *controller.logicalDrives)
                if (ld.number == named->number && ld.info && ld.info->name)
                    names_.meet(*ld.info->name);
        }
    }

    void redact(Controller& controller) {
        if (controller.info) {
            serials_.replace(controller.info->serial);
            addresses_.replace(controller.info->portAddresses);
        }
        if (controller.cacheBackup)
            serials_.replace(controller.cacheBackup->serial);
        if (controller.enclosures)
            for (Enclosure& enclosure : *controller.enclosures)
                ids_.replace(enclosure.logicalId);
        if (controller.physicalDrives)
            for (PhysicalDrive& drive : *controller.physicalDrives)
                if (drive.info)
                    addresses_.replace(drive.info->sasAddresses);
        if (controller.logicalDrives)
            for (LogicalDrive& ld : *controller.logicalDrives)
                if (ld.info)
                    names_.replace(ld.info->name);
    }

    Words hosts_{"host"};
    Words serials_{"serial"};
    Words addresses_{"sas"};
    Words ids_{"logical-id"};
    Words names_{"name"};
};

} // namespace

void redact(Collection& collection, const std::vector<Finding>& findings) {
    Redactor().redact(collection, findings);
}

} // namespace zebstat
