#include "zebstat/page_words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace zebstat {

namespace {

using namespace facts;

std::string sensorText(const SensorObject& sensor) {
    return wordText(sensor.sensor) + " " + std::to_string(sensor.index);
}

} // namespace

std::string numberText(double number, int decimals) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
    return text.data();
}

std::string sizeText(std::uint64_t bytes) {
    constexpr std::array<const char*, 7> kUnits{"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    constexpr double kStep = 1024;
    auto number = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; number >= kStep && unit + 1 < kUnits.size(); ++unit)
        number /= kStep;
    const bool isWhole = number == static_cast<double>(static_cast<std::uint64_t>(number));
    return numberText(number, isWhole ? 0 : 1) + kNoBreak + kUnits[unit];
}

std::string sizeText(const std::optional<std::uint64_t>& bytes) {
    return bytes ? sizeText(*bytes) : kUntoldText;
}

std::string wordText(std::string_view word) {
    std::string text(word);
    std::ranges::replace(text, '_', ' ');
    return text;
}

std::string wordText(const Word& word) {
    return wordText(word.text) + (word.code ? " (" + std::to_string(*word.code) + ")" : "");
}

std::string wordText(const std::optional<Word>& word) {
    return word ? wordText(*word) : kUntoldText;
}

std::string upperText(const std::optional<Word>& word) {
    if (!word || word->code)
        return wordText(word);
    std::string text(word->text);
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string typeText(const Word& enclosureType) {
    if (enclosureType == "safte")
        return "SAF-TE";
    return enclosureType == "ses" ? "SES" : wordText(enclosureType);
}

std::string plainText(bool yes) {
    return yes ? "yes" : "no";
}

std::string plainText(const std::optional<bool>& yes) {
    return yes ? plainText(*yes) : kUntoldText;
}

std::string joined(const std::vector<std::string>& parts, std::string_view between) {
    std::string text;
    for (const std::string& part : parts) {
        if (part.empty() || part == kUntoldText)
            continue;
        if (!text.empty())
            text += between;
        text += part;
    }
    return text.empty() ? kUntoldText : text;
}

std::string spanText(std::uint32_t seconds) {
    constexpr std::uint32_t kDay = 86400;
    constexpr std::uint32_t kHour = 3600;
    constexpr std::uint32_t kMinute = 60;
    if (seconds != 0)
        for (const auto& [unit, name] : {std::pair{kDay, "d"}, {kHour, "h"}, {kMinute, "min"}})
            if (seconds % unit == 0)
                return std::to_string(seconds / unit) + kNoBreak + name;
    return std::to_string(seconds) + kNoBreak + "s";
}

std::string placeText(const std::optional<std::uint16_t>& enclosureId, std::uint8_t slot) {
    return (enclosureId ? std::to_string(*enclosureId) + ":" : "") + std::to_string(slot);
}

std::string objectText(const Object& object) {
    struct Speaker {
        std::string operator()(const ControllerObject&) const { return "the controller"; }
        std::string operator()(const PhysicalDriveObject& drive) const {
            return "drive " + placeText(drive.enclosureId, drive.slot);
        }
        std::string operator()(const LogicalDriveObject& ld) const { return "LD" + std::to_string(ld.number); }
        std::string operator()(const RaidGroupObject& group) const { return group.name; }
        std::string operator()(const EnclosureObject& enclosure) const {
            return "enclosure " + std::to_string(enclosure.deviceId);
        }
        std::string operator()(const SensorObject& sensor) const {
            return sensorText(sensor) + " of enclosure " + std::to_string(sensor.enclosureId);
        }
        std::string operator()(const CacheBackupObject&) const { return "cache backup unit"; }
    };
    return std::visit(Speaker{}, object);
}

std::string anchorOf(std::uint8_t controller, const Object& object) {
    struct Namer {
        std::string operator()(const ControllerObject&) const { return ""; }
        std::string operator()(const PhysicalDriveObject& drive) const {
            return "-pd" + std::to_string(drive.deviceId);
        }
        std::string operator()(const LogicalDriveObject& ld) const { return "-ld" + std::to_string(ld.number); }
        std::string operator()(const RaidGroupObject& group) const { return "-" + group.name; }
        std::string operator()(const EnclosureObject& enclosure) const {
            return "-e" + std::to_string(enclosure.deviceId);
        }
        std::string operator()(const SensorObject& sensor) const {
            return "-e" + std::to_string(sensor.enclosureId) + "-" + std::string(sensor.sensor) + "-" +
                   std::to_string(sensor.index);
        }
        std::string operator()(const CacheBackupObject&) const { return "-backup"; }
    };
    return "c" + std::to_string(controller) + std::visit(Namer{}, object);
}

} // namespace zebstat
