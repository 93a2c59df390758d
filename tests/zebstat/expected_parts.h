// The parts of the expected document.
#pragma once

#include "tests/zebstat/expected_form.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zebtest {

/// Enclosures, drives, groups and LDs of one controller of a scenario.
class ExpectedParts {
  public:
    explicit ExpectedParts(const Json& controller);
    void put(Json& out) const;

  private:
    struct Drive {
        std::uint16_t deviceId;
        std::uint8_t slot;
        std::uint16_t enclosure;
        std::uint64_t blocks;
        std::uint64_t repeated; ///< how many like it stand before it
        Json form;
    };
    struct Array {
        std::uint16_t ref;
        std::vector<int> drives; ///< device ids, -1 = empty
        std::uint64_t blocks;
    };
    struct Span {
        std::uint16_t array;
        std::uint64_t start;
        std::uint64_t blocks;
    };
    struct Ld {
        std::uint8_t number;
        unsigned level;
        std::vector<Span> spans;
        Json form;
    };
    struct Group {
        std::string name;
        std::vector<std::uint16_t> arrays;
        std::vector<const Ld*> lds;
    };

    void readDrives();
    void readArrays(const std::vector<Json>& arrays);
    void readLds();
    void makeGroups();
    int deviceOf(const Json& node) const;
    const Drive* driveOf(int deviceId) const;
    const Array& arrayOf(std::uint16_t ref) const;
    const Group* groupOf(int deviceId) const;
    std::uint64_t stateOf(const Drive& drive) const;
    std::uint64_t stateOf(const Ld& ld) const;
    Json enclosure(const Json& form, std::size_t index) const;
    Json drive(const Drive& drive) const;
    Json group(const Group& group) const;
    Json ld(const Ld& ld) const;

    const Json& c_;
    std::vector<Drive> drives_;
    std::vector<Array> arrays_;
    std::vector<Ld> lds_;
    std::vector<Group> groups_;
};

/// The findings of a document, without their texts, in any order.
Json expectedFindings(const Json& document);

} // namespace zebtest
