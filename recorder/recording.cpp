#include "recorder/recording.h"

#include "recorder/hex.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace zebrec {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr char kFormat[] = "zebrec";
constexpr int kVersion = 1;
constexpr std::size_t kMostBytes = 64U << 20U; ///< of one request's data

/// A line that does not say what a line must say.
struct Malformed {
    std::string reason;
};

std::string textOf(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        throw Malformed{std::string("no text \"") + key + '"'};
    return found->get<std::string>();
}

std::uint64_t numberOf(const json& object, const char* key, std::uint64_t most) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number_unsigned() || found->get<std::uint64_t>() > most)
        throw Malformed{std::string("no number \"") + key + "\" from 0 to " + std::to_string(most)};
    return found->get<std::uint64_t>();
}

Bytes bytesOf(const json& value, const char* key) {
    std::optional<Bytes> bytes;
    if (value.is_string())
        bytes = bytesOfHex(value.get_ref<const std::string&>(), kMostBytes);
    if (!bytes)
        throw Malformed{std::string("\"") + key + "\" is no hexadecimal text"};
    return std::move(*bytes);
}

std::optional<Bytes> outOf(const json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() ? std::nullopt : std::optional(bytesOf(*found, key));
}

std::optional<Answer> inOf(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end())
        return std::nullopt;
    if (found->is_number_unsigned())
        return Answer{{}, found->get<std::uint64_t>()};
    return Answer{bytesOf(*found, key), 0};
}

constexpr std::uint64_t kAnyNumber = ~std::uint64_t{0};

Line lineOf(const json& object) {
    if (!object.is_object())
        throw Malformed{"no object"};
    Line line;
    line.number = numberOf(object, "n", kAnyNumber);
    line.leftOut = object.value("left_out", false);
    line.status = static_cast<std::uint32_t>(numberOf(object, "status", 0xFFFFFFFFU));
    line.header[kTypeAt] = static_cast<std::uint8_t>(numberOf(object, "type", 0xFF));
    line.header[kCommandAt] = static_cast<std::uint8_t>(numberOf(object, "code", 0xFF));
    line.microseconds = numberOf(object, "us", kAnyNumber);
    if (object.contains("past"))
        line.past = numberOf(object, "past", kAnyNumber);
    if (line.leftOut)
        return line;
    const Bytes header = bytesOfHex(textOf(object, "header"), kHeaderSize).value_or(Bytes{});
    if (header.size() != kHeaderSize || header[kTypeAt] != line.header[kTypeAt] ||
        header[kCommandAt] != line.header[kCommandAt])
        throw Malformed{"\"header\" is not the " + std::to_string(kHeaderSize) + " bytes of this type and code"};
    std::copy(header.begin(), header.end(), line.header.begin());
    line.out = outOf(object, "out");
    line.in = inOf(object, "in");
    line.innerOut = outOf(object, "inner_out");
    line.innerIn = inOf(object, "inner_in");
    return line;
}

Head headOf(const json& object) {
    if (!object.is_object() || object.value("format", "") != kFormat)
        throw Malformed{"this is no recording"};
    if (numberOf(object, "version", kAnyNumber) != kVersion)
        throw Malformed{"a recording of version " + object["version"].dump() + ", this program reads version " +
                        std::to_string(kVersion)};
    const auto redacted = object.find("redacted");
    if (redacted == object.end() || !redacted->is_boolean())
        throw Malformed{"the head does not say \"redacted\""};
    return {textOf(object, "tool"), textOf(object, "library"), textOf(object, "time"), redacted->get<bool>()};
}

/// Lines that name another one must name an earlier one that holds an answer of that kind.
void checkRepeats(const Recording& recording, const Line& line) {
    for (const bool inner : {false, true}) {
        const auto& answer = inner ? line.innerIn : line.in;
        if (answer && answer->sameAs != 0 && recording.answerOf(answer, inner) == nullptr)
            throw Malformed{"names line " + std::to_string(answer->sameAs) + ", which holds no answer"};
    }
}

void put(ordered_json& object, const char* key, const std::optional<Answer>& answer) {
    if (!answer)
        return;
    if (answer->sameAs != 0)
        object[key] = answer->sameAs;
    else
        object[key] = hexOf(answer->bytes);
}

/// One line of the text. False when it is the last one and cut.
bool readOne(Recording& recording, std::string_view text, bool first, bool whole) {
    const json object = json::parse(text, nullptr, false);
    if (object.is_discarded()) {
        if (!whole && !first)
            return false;
        throw Malformed{first ? "this is no recording" : "damaged"};
    }
    if (first) {
        recording.head = headOf(object);
        return true;
    }
    if (!whole)
        return false;
    Line line = lineOf(object);
    checkRepeats(recording, line);
    recording.places[line.number] = recording.lines.size();
    recording.lines.push_back(std::move(line));
    return true;
}

} // namespace

std::string writeHead(const Head& head) {
    const ordered_json object{{"format", kFormat},       {"version", kVersion}, {"tool", head.tool},
                              {"library", head.library}, {"time", head.time},   {"redacted", head.redacted}};
    std::string text = object.dump(-1, ' ', true, json::error_handler_t::replace);
    text.resize(std::max(text.size(), kHeadSize - 1), ' ');
    return text;
}

std::string writeLine(const Line& line) {
    ordered_json object{{"n", line.number},
                        {"us", line.microseconds},
                        {"type", line.header[kTypeAt]},
                        {"code", line.header[kCommandAt]}};
    if (line.leftOut) {
        object["left_out"] = true;
    } else {
        object["header"] = hexOf(line.header);
        if (line.out)
            object["out"] = hexOf(*line.out);
        put(object, "in", line.in);
        if (line.innerOut)
            object["inner_out"] = hexOf(*line.innerOut);
        put(object, "inner_in", line.innerIn);
    }
    if (line.past != 0)
        object["past"] = line.past;
    object["status"] = line.status;
    return object.dump() + '\n';
}

const Bytes* Recording::answerOf(const std::optional<Answer>& answer, bool inner) const {
    if (!answer)
        return nullptr;
    if (answer->sameAs == 0)
        return &answer->bytes;
    const auto place = places.find(answer->sameAs);
    if (place == places.end())
        return nullptr;
    const Line* found = &lines[place->second];
    const auto& original = inner ? found->innerIn : found->in;
    return original && original->sameAs == 0 ? &original->bytes : nullptr;
}

std::optional<Recording> readRecording(std::string_view text, std::string& reason) {
    Recording recording;
    std::size_t number = 0;
    try {
        if (text.empty())
            throw Malformed{"the file is empty"};
        for (std::size_t at = 0; at < text.size() && !recording.cut;) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            ++number;
            recording.cut = !readOne(recording, text.substr(at, end - at), number == 1, end < text.size());
            at = end + 1;
        }
    } catch (const Malformed& malformed) {
        reason = "line " + std::to_string(number) + ": " + malformed.reason;
        return std::nullopt;
    } catch (const json::exception&) {
        reason = "line " + std::to_string(number) + ": a value of the wrong kind";
        return std::nullopt;
    }
    return recording;
}

std::optional<Recording> readRecordingFile(const std::string& path, std::string& reason) {
    constexpr off_t kMostFile = 1 << 30;
    struct stat status {};
    std::ifstream file(path, std::ios::binary);
    if (!file || ::stat(path.c_str(), &status) != 0) {
        reason = std::strerror(errno);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode) || status.st_size > kMostFile) {
        reason = S_ISREG(status.st_mode) ? "the file is larger than 1 GB" : "no regular file";
        return std::nullopt;
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return readRecording(text, reason);
}

} // namespace zebrec
