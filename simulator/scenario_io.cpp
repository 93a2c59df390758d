#include "simulator/scenario_io.h"

#include <charconv>

namespace zebsim {

namespace {

/// The integer in text such as "0x1F" or "31"; false when it is no number.
bool integerOfText(const std::string& text, std::uint64_t& value) {
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* const first = text.data() + (hex ? 2 : 0);
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(first, last, value, hex ? 16 : 10);
    return error == std::errc{} && end == last;
}

std::string rangeMend(const std::string& lowest, const std::string& highest) {
    return "give a whole number from " + lowest + " to " + highest;
}

int hexDigit(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t at = kDigits.find(static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c));
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

} // namespace

std::string bytesOfText(const std::string& utf8, const std::string& place) {
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<std::uint8_t>(utf8[i]);
        if (c < 0x80) {
            bytes.push_back(utf8[i]);
        } else if ((c == 0xC2 || c == 0xC3) && i + 1 < utf8.size()) {
            const auto low = static_cast<std::uint8_t>(utf8[++i]);
            bytes.push_back(static_cast<char>((c & 0x03) << 6 | (low & 0x3F)));
        } else {
            throw ScenarioError(place, "use characters up to U+00FF only; each stands for one byte");
        }
    }
    return bytes;
}

std::string textOfBytes(const std::string& bytes) {
    std::string utf8;
    for (const char byte : bytes) {
        const auto c = static_cast<std::uint8_t>(byte);
        if (c < 0x80) {
            utf8.push_back(byte);
        } else {
            utf8.push_back(static_cast<char>(0xC0 | c >> 6));
            utf8.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return utf8;
}

std::string hexOfBytes(const std::uint8_t* bytes, std::size_t count) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        text.push_back(kDigits[bytes[i] >> 4]);
        text.push_back(kDigits[bytes[i] & 0x0F]);
    }
    return text;
}

std::string joinedWords(Words words) {
    std::string text;
    for (const Word& word : words)
        text += (text.empty() ? "\"" : ", \"") + std::string(word.text) + "\"";
    return text;
}

std::uint64_t unsignedOf(const Json& node, const std::string& place, std::uint64_t lowest, std::uint64_t highest) {
    std::uint64_t value = 0;
    const bool number =
        node.is_number_unsigned() || (node.is_string() && integerOfText(node.get<std::string>(), value));
    if (node.is_number_unsigned())
        value = node.get<std::uint64_t>();
    if (!number || value < lowest || value > highest)
        throw ScenarioError(place, rangeMend(std::to_string(lowest), std::to_string(highest)));
    return value;
}

std::int64_t signedOf(const Json& node, const std::string& place, std::int64_t lowest, std::int64_t highest) {
    constexpr auto kHighest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const bool fits = node.is_number_integer() && (!node.is_number_unsigned() || node.get<std::uint64_t>() <= kHighest);
    const std::int64_t value = fits ? node.get<std::int64_t>() : 0;
    if (!fits || value < lowest || value > highest)
        throw ScenarioError(place, rangeMend(std::to_string(lowest), std::to_string(highest)));
    return value;
}

std::uint16_t driveOf(const Json& node, const std::string& place, const Controller& ctrl, bool emptyAllowed) {
    if (node.is_null() && emptyAllowed)
        return kNoDevice;
    if (node.is_object()) {
        Reader reader(node, place);
        std::uint16_t deviceId = 0;
        reader.number("deviceId", deviceId, kNoDevice);
        reader.finish();
        if (findDrive(ctrl, deviceId) == nullptr)
            throw ScenarioError(place, "name the device id of one of the controller's drives");
        return deviceId;
    }
    const auto slot = static_cast<std::uint8_t>(unsignedOf(node, place, 0, 255));
    const Drive* found = nullptr;
    for (const Drive& drive : ctrl.drives) {
        if (drive.slot != slot)
            continue;
        if (found != nullptr)
            throw ScenarioError(place, "slot " + std::to_string(slot) +
                                           " is in two enclosures; name the drive as {\"deviceId\": N}");
        found = &drive;
    }
    if (found == nullptr)
        throw ScenarioError(place, "no drive is in slot " + std::to_string(slot) + "; add it to \"drives\"" +
                                       (emptyAllowed ? " or write null for an empty position" : ""));
    return found->deviceId;
}

Json nameOfDrive(std::uint16_t deviceId, const Controller& ctrl) {
    const Drive* named = findDrive(ctrl, deviceId);
    if (named == nullptr)
        return nullptr;
    std::size_t inSlot = 0;
    for (const Drive& drive : ctrl.drives)
        inSlot += drive.slot == named->slot ? 1U : 0U;
    return inSlot == 1 ? Json(named->slot) : Json{{"deviceId", deviceId}};
}

Reader::Reader(const Json& node, std::string place) : node_(node), place_(std::move(place)) {
    if (!node_.is_object())
        throw ScenarioError(place_.empty() ? "top level" : place_, "give an object, {...}");
}

std::string Reader::at(const char* key) const {
    return place_.empty() ? key : place_ + "." + key;
}

const Json* Reader::take(const char* key) {
    const auto found = node_.find(key);
    if (found == node_.end())
        return nullptr;
    taken_.insert(key);
    return &*found;
}

const Json* Reader::takeList(const char* key, std::size_t room) {
    const Json* node = take(key);
    if (node != nullptr && !node->is_array())
        throw ScenarioError(at(key), "give a list, [...]");
    if (node != nullptr && node->size() > room)
        throw ScenarioError(at(key), "list at most " + std::to_string(room) + " of them");
    return node;
}

std::uint64_t Reader::wordOf(const Json& node, const std::string& place, Words words, std::uint64_t highest) {
    if (node.is_string()) {
        for (const Word& word : words) {
            if (node == word.text)
                return word.value;
        }
    }
    std::uint64_t value = 0;
    if (node.is_number_unsigned())
        value = node.get<std::uint64_t>();
    else if (!node.is_string() || !integerOfText(node.get<std::string>(), value))
        value = highest + 1;
    if (value > highest)
        throw ScenarioError(place,
                            "give one of " + joinedWords(words) + " or a number up to " + std::to_string(highest));
    return value;
}

void Reader::real(const char* key, double& value, double fallback, double lowest, double highest) {
    const Json* node = take(key);
    value = fallback;
    if (node == nullptr)
        return;
    const double given = node->is_number() ? node->get<double>() : lowest - 1;
    if (!(given >= lowest && given <= highest))
        throw ScenarioError(at(key), "give a number from " + Json(lowest).dump() + " to " + Json(highest).dump());
    value = given;
}

void Reader::flag(const char* key, bool& value, bool fallback) {
    const Json* node = take(key);
    if (node != nullptr && !node->is_boolean())
        throw ScenarioError(at(key), "give true or false");
    value = node == nullptr ? fallback : node->get<bool>();
}

void Reader::text(const char* key, std::string& value, const std::string& fallback, std::size_t width) {
    const Json* node = take(key);
    if (node != nullptr && !node->is_string())
        throw ScenarioError(at(key), "give a text, \"...\"");
    value = node == nullptr ? fallback : bytesOfText(node->get<std::string>(), at(key));
    if (value.size() > width)
        throw ScenarioError(at(key), "give at most " + std::to_string(width) + " characters");
}

void Reader::texts(const char* key, std::vector<std::string>& values, std::size_t room, std::size_t width) {
    elements(key, values, {}, room, [width](const Json& node, const std::string& place) {
        if (!node.is_string() || node.get<std::string>().size() > width)
            throw ScenarioError(place, "give a text of at most " + std::to_string(width) + " characters");
        return bytesOfText(node.get<std::string>(), place);
    });
}

void Reader::bytes(const char* key, std::uint8_t* value, const std::uint8_t* fallback, std::size_t count) {
    const Json* node = take(key);
    std::copy_n(fallback, count, value);
    if (node == nullptr)
        return;
    const std::string text = node->is_string() ? node->get<std::string>() : "";
    bool good = text.size() == 2 * count;
    for (std::size_t i = 0; good && i < count; ++i) {
        const int high = hexDigit(text[2 * i]);
        const int low = hexDigit(text[2 * i + 1]);
        good = high >= 0 && low >= 0;
        value[i] = static_cast<std::uint8_t>((high & 0x0F) << 4 | (low & 0x0F));
    }
    if (!good)
        throw ScenarioError(at(key), "give " + std::to_string(2 * count) + " hexadecimal digits");
}

void Reader::task(const char* key, Task& task) {
    const Json* node = take(key);
    task.reset();
    if (node == nullptr || node->is_null())
        return;
    Progress progress;
    if (node->is_object()) {
        Reader reader(*node, at(key));
        reader.real("percent", progress.percent, 0, 0, kWholePercent);
        reader.real("elapsed", progress.elapsed, 0, 0, 1e9);
        reader.finish();
    } else {
        if (!node->is_number() || !(node->get<double>() >= 0 && node->get<double>() <= kWholePercent))
            throw ScenarioError(at(key), "give how far it is, in percent from 0 to 100, or null");
        progress.percent = node->get<double>();
    }
    task = progress;
}

void Reader::drive(const char* key, std::uint16_t& deviceId, const Controller& ctrl) {
    const Json* node = take(key);
    deviceId = node == nullptr ? kNoDevice : driveOf(*node, at(key), ctrl, true);
}

void Reader::drives(const char* key, std::vector<std::uint16_t>& deviceIds, const Controller& ctrl) {
    elements(key, deviceIds, {}, kMaxArrayDrives,
             [&](const Json& node, const std::string& place) { return driveOf(node, place, ctrl, true); });
}

void Reader::raw(const char* key, std::string& text) {
    const Json* node = take(key);
    text = node == nullptr ? "" : node->dump();
}

void Reader::finish() const {
    for (const auto& [key, value] : node_.items()) {
        if (taken_.count(key) == 0)
            throw ScenarioError(at(key.c_str()), "remove this key; nothing here has that name");
    }
}

void Writer::address(const char* key, std::uint64_t& value, std::uint64_t fallback) {
    if (value == fallback)
        return;
    std::string digits;
    for (int shift = 56; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>(value >> shift);
        digits += hexOfBytes(&byte, 1);
    }
    json[key] = "0x" + digits;
}

void Writer::task(const char* key, Task& task) {
    if (task)
        json[key] = Json{{"percent", task->percent}, {"elapsed", task->elapsed}};
}

void Writer::drive(const char* key, std::uint16_t& deviceId, const Controller& ctrl) {
    if (deviceId != kNoDevice)
        json[key] = nameOfDrive(deviceId, ctrl);
}

void Writer::drives(const char* key, std::vector<std::uint16_t>& deviceIds, const Controller& ctrl) {
    Json list = Json::array();
    for (const std::uint16_t id : deviceIds)
        list.push_back(nameOfDrive(id, ctrl));
    json[key] = list;
}

void Writer::texts(const char* key, std::vector<std::string>& values, std::size_t, std::size_t) {
    Json list = Json::array();
    for (const std::string& value : values)
        list.push_back(textOfBytes(value));
    if (!values.empty())
        json[key] = list;
}

} // namespace zebsim
