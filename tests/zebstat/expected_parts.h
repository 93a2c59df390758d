// The parts of the expected document, and how the scenario form is read.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace zebtest {

using Json = nlohmann::json;

std::uint64_t numberIn(const Json& node); ///< a number, or text such as "0x1F"
std::uint64_t number(const Json& object, const char* key, std::uint64_t fallback);
std::int64_t integer(const Json& object, const char* key, std::int64_t fallback);
bool flag(const Json& object, const char* key, bool fallback);
Json object(const Json& parent, const char* key); ///< an empty one when it is missing
std::vector<Json> list(const Json& parent, const char* key);
/// A text field of that many bytes as the document shows it: null when nothing is left of it.
Json text(const Json& object, const char* key, const std::string& fallback, std::size_t width);
/// The place of a word in the form's list, or the number that stands in its place.
std::uint64_t code(const Json& object, const char* key, std::uint64_t fallback, const std::vector<std::string>& form);
/// The document's word for a code; an empty one counts as none.
void word(Json& out, const std::string& key, std::uint64_t code, const std::vector<std::string>& words);
std::string hex(std::uint64_t number, int width);
Json time(std::uint64_t seconds);
Json stripeBytes(std::uint64_t code);
Json bytes(std::uint64_t blocks);

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
