// The two directions of the scenario form. A `describe...` function names each key of an object once; run with a
// Reader it fills the object from JSON, run with a Writer it makes the JSON.
//
// Texts hold bytes: each character of a JSON text stands for one byte, U+0000 to U+00FF, so that any name a request can
// carry survives.
#pragma once

#include "simulator/scenario.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <set>
#include <type_traits>

namespace zebsim {

using Json = nlohmann::ordered_json;

/// A value with a name in the form, such as a drive's state.
struct Word {
    const char* text;
    std::uint64_t value;
};
using Words = std::initializer_list<Word>;

/// JSON text to a tree. Throws ScenarioError with line and column for a syntax error, and for a key written twice.
Json parsedJson(const std::string& text);

/// The bytes that a JSON text stands for, one for each character. Throws for a character above U+00FF.
std::string bytesOfText(const std::string& utf8, const std::string& place);
/// The reverse of bytesOfText().
std::string textOfBytes(const std::string& bytes);
/// Two lower-case digits for each byte.
std::string hexOfBytes(const std::uint8_t* bytes, std::size_t count);
/// The words in quotes, for a person to choose from.
std::string joinedWords(Words words);

/// The integer that a node holds: a JSON integer, or text such as "0x1F". Throws when it is none or out of the range.
std::uint64_t unsignedOf(const Json& node, const std::string& place, std::uint64_t lowest, std::uint64_t highest);
std::int64_t signedOf(const Json& node, const std::string& place, std::int64_t lowest, std::int64_t highest);

/// The device id that a node names: a slot number, {"deviceId": N}, or null for an empty position where that is
/// allowed.
std::uint16_t driveOf(const Json& node, const std::string& place, const Controller& ctrl, bool emptyAllowed);
/// The reverse of driveOf(); null where there is no such drive.
Json nameOfDrive(std::uint16_t deviceId, const Controller& ctrl);

/// Fills an object from JSON. Each member function takes one key: a missing one gives the fallback, a bad value throws
/// ScenarioError with its place and what to write instead.
class Reader {
  public:
    static constexpr bool kReading = true;

    /// Throws unless the node is an object.
    Reader(const Json& node, std::string place);

    /// An integer from `lowest` to `highest`; without a sign it may be given as text too, "0x1F".
    template <class T>
    void number(const char* key, T& value, std::type_identity_t<T> fallback,
                std::type_identity_t<T> lowest = std::numeric_limits<T>::min(),
                std::type_identity_t<T> highest = std::numeric_limits<T>::max()) {
        const Json* node = take(key);
        if (node == nullptr)
            value = fallback;
        else if constexpr (std::is_signed_v<T>)
            value = static_cast<T>(signedOf(*node, at(key), lowest, highest));
        else
            value = static_cast<T>(unsignedOf(*node, at(key), lowest, highest));
    }
    /// A value by its word, or as a number for values that have no word.
    template <class T>
    void word(const char* key, T& value, std::type_identity_t<T> fallback, Words words) {
        const Json* node = take(key);
        if (node == nullptr)
            value = fallback;
        else
            value = static_cast<T>(wordOf(*node, at(key), words, std::numeric_limits<T>::max()));
    }
    /// A SAS address; written with 16 hexadecimal digits.
    void address(const char* key, std::uint64_t& value, std::uint64_t fallback) { number(key, value, fallback); }
    void real(const char* key, double& value, double fallback, double lowest, double highest);
    void flag(const char* key, bool& value, bool fallback);
    void text(const char* key, std::string& value, const std::string& fallback, std::size_t width);
    /// Exactly `count` bytes as hexadecimal digits.
    void bytes(const char* key, std::uint8_t* value, const std::uint8_t* fallback, std::size_t count);
    /// Work under way: a percentage, or an object with the time that it has taken.
    void task(const char* key, Task& task);
    void drive(const char* key, std::uint16_t& deviceId, const Controller& ctrl);
    void drives(const char* key, std::vector<std::uint16_t>& deviceIds, const Controller& ctrl);

    /// A number that may be null: there is none then.
    template <class T>
    void optionalNumber(const char* key, std::optional<T>& value, std::optional<T> fallback) {
        const Json* node = take(key);
        value = fallback;
        if (node != nullptr && node->is_null())
            value.reset();
        else if (node != nullptr)
            value = static_cast<T>(unsignedOf(*node, at(key), 0, std::numeric_limits<T>::max()));
    }
    template <class T>
    void numbers(const char* key, std::vector<T>& values, const std::vector<T>& fallback, std::size_t room) {
        elements(key, values, fallback, room, [](const Json& node, const std::string& place) {
            return static_cast<T>(unsignedOf(node, place, 0, std::numeric_limits<T>::max()));
        });
    }
    void texts(const char* key, std::vector<std::string>& values, std::size_t room, std::size_t width);

    /// A list of objects: describe(reader, item, index) for each.
    template <class T, class Describe>
    void objects(const char* key, std::vector<T>& items, std::size_t room, Describe describe) {
        const Json* node = takeList(key, room);
        items.clear();
        for (std::size_t i = 0; node != nullptr && i < node->size(); ++i) {
            Reader element((*node)[i], element_(key, i));
            items.emplace_back();
            describe(element, items.back(), i);
            element.finish();
        }
    }
    /// An object inside this one. A missing one is described from an empty object, so that it gets its defaults.
    template <class T, class Describe>
    void object(const char* key, T& item, Describe describe) {
        static const Json kEmpty = Json::object();
        const Json* node = take(key);
        Reader element(node == nullptr ? kEmpty : *node, at(key));
        describe(element, item);
        element.finish();
    }
    /// As object(), but the object may be null or missing: there is none then.
    template <class T, class Describe>
    void optionalObject(const char* key, std::optional<T>& item, Describe describe) {
        const Json* node = take(key);
        item.reset();
        if (node == nullptr || node->is_null())
            return;
        Reader element(*node, at(key));
        describe(element, item.emplace());
        element.finish();
    }
    /// The JSON under a key as text; empty when it is missing.
    void raw(const char* key, std::string& text);

    /// True when the key is there. Does not take it.
    bool has(const char* key) const { return node_.contains(key); }
    /// The place of a key, "controllers[0].drives", for messages.
    std::string at(const char* key) const;
    const std::string& place() const { return place_; }

    /// Throws for a key that nothing has asked for.
    void finish() const;

  private:
    const Json* take(const char* key);
    const Json* takeList(const char* key, std::size_t room);
    std::string element_(const char* key, std::size_t index) const {
        return at(key) + "[" + std::to_string(index) + "]";
    }
    static std::uint64_t wordOf(const Json& node, const std::string& place, Words words, std::uint64_t highest);

    template <class T, class Convert>
    void elements(const char* key, std::vector<T>& values, const std::vector<T>& fallback, std::size_t room,
                  Convert convert) {
        values = fallback;
        const Json* node = takeList(key, room);
        if (node == nullptr)
            return;
        values.clear();
        for (std::size_t i = 0; i < node->size(); ++i)
            values.push_back(convert((*node)[i], element_(key, i)));
    }

    const Json& node_;
    std::string place_;
    std::set<std::string> taken_; ///< keys that somebody has asked for
};

/// Makes JSON from an object, with the member functions of a Reader. A value that is its fallback is left out.
class Writer {
  public:
    static constexpr bool kReading = false;

    template <class T>
    void number(const char* key, T& value, std::type_identity_t<T> fallback, std::type_identity_t<T> = 0,
                std::type_identity_t<T> = 0) {
        if (value != fallback)
            json[key] = value;
    }
    template <class T>
    void word(const char* key, T& value, std::type_identity_t<T> fallback, Words words) {
        if (value == fallback)
            return;
        json[key] = value;
        for (const Word& word : words) {
            if (word.value == value)
                json[key] = word.text;
        }
    }
    void address(const char* key, std::uint64_t& value, std::uint64_t fallback);
    void real(const char* key, double& value, double fallback, double, double) {
        if (value != fallback)
            json[key] = value;
    }
    void flag(const char* key, bool& value, bool fallback) {
        if (value != fallback)
            json[key] = value;
    }
    void text(const char* key, std::string& value, const std::string& fallback, std::size_t) {
        if (value != fallback)
            json[key] = textOfBytes(value);
    }
    void bytes(const char* key, std::uint8_t* value, const std::uint8_t* fallback, std::size_t count) {
        if (!std::equal(value, value + count, fallback))
            json[key] = hexOfBytes(value, count);
    }
    void task(const char* key, Task& task);
    void drive(const char* key, std::uint16_t& deviceId, const Controller& ctrl);
    void drives(const char* key, std::vector<std::uint16_t>& deviceIds, const Controller& ctrl);

    template <class T>
    void optionalNumber(const char* key, std::optional<T>& value, std::optional<T> fallback) {
        if (value == fallback)
            return;
        json[key] = value ? Json(*value) : Json(nullptr);
    }
    template <class T>
    void numbers(const char* key, std::vector<T>& values, const std::vector<T>& fallback, std::size_t) {
        if (values == fallback)
            return;
        json[key] = Json(values);
    }
    void texts(const char* key, std::vector<std::string>& values, std::size_t, std::size_t);

    template <class T, class Describe>
    void objects(const char* key, std::vector<T>& items, std::size_t, Describe describe) {
        Json list = Json::array();
        for (std::size_t i = 0; i < items.size(); ++i) {
            Writer element;
            describe(element, items[i], i);
            list.push_back(element.json);
        }
        if (!items.empty())
            json[key] = list;
    }
    template <class T, class Describe>
    void object(const char* key, T& item, Describe describe) {
        Writer element;
        describe(element, item);
        if (!element.json.empty())
            json[key] = element.json;
    }
    template <class T, class Describe>
    void optionalObject(const char* key, std::optional<T>& item, Describe describe) {
        if (!item)
            return;
        Writer element;
        describe(element, *item);
        json[key] = element.json;
    }
    void raw(const char* key, std::string& text) {
        if (!text.empty())
            json[key] = Json::parse(text);
    }

    Json json = Json::object();
};

} // namespace zebsim
