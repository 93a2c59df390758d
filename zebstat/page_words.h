// Values and objects as the page says them.
#pragma once

#include "facts/findings.h"
#include "facts/physical_drive.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zebstat {

/// What stands where the hardware does not tell.
inline constexpr char kUntoldText[] = "\u2013";

/// A blank at which no line ends, between a number and its unit.
inline constexpr char kNoBreak[] = "\u00A0";

inline constexpr char kCelsius[] = "\u00B0C";
inline constexpr char kDot[] = " \u00B7 "; ///< between the parts of a line

/// "278.9 GiB": in the largest unit of 1024 that leaves a whole number before the point.
std::string sizeText(std::uint64_t bytes);
std::string sizeText(const std::optional<std::uint64_t>& bytes);

/// A word without its underscores; of a code without a word "unknown (17)".
std::string wordText(std::string_view word);
std::string wordText(const facts::Word& word);
std::string wordText(const std::optional<facts::Word>& word);

/// A word that is an abbreviation: "RAID5", "SAS".
std::string upperText(const std::optional<facts::Word>& word);

/// The type of an enclosure: "SES", "SAF-TE", "backplane".
std::string typeText(const facts::Word& enclosureType);

/// A number with as many decimals.
std::string numberText(double number, int decimals);

inline std::string plainText(const std::optional<std::string>& text) {
    return text.value_or(kUntoldText);
}
std::string plainText(const std::optional<bool>& yes);
std::string plainText(bool yes);

/// The number and its unit, "28 °C".
template <class T>
std::string numberText(const std::optional<T>& number, std::string_view unit) {
    return number ? std::to_string(*number) + kNoBreak + std::string(unit) : kUntoldText;
}

/// The parts that are told, with something between them; what stands for nothing where none is.
std::string joined(const std::vector<std::string>& parts, std::string_view between);

/// A span of time: "7 d", "6 h", "90 s"; the largest unit that leaves no rest.
std::string spanText(std::uint32_t seconds);

/// "252:3", or "3" of a drive without an enclosure.
std::string placeText(const std::optional<std::uint16_t>& enclosureId, std::uint8_t slot);

/// How the page calls an object: "drive 252:3", "LD0", "enclosure 252".
std::string objectText(const facts::Object& object);

/// The anchor of an object on the page: "c0-pd8"; "c0" for the controller itself.
std::string anchorOf(std::uint8_t controller, const facts::Object& object);

} // namespace zebstat
