#include "recorder/recording.h"

#include "recorder/flat_object.h"
#include "recorder/hex.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zebrec {

namespace {

using Kind = FlatObject::Value::Kind;
using Outcome = FlatObject::Outcome;

constexpr char kFormat[] = "zebrec";
constexpr int kFormatVersion = 1;
constexpr std::size_t kMostBytes = 64U << 20U; ///< of one request's data

/// A line that does not say what a line must say.
struct Malformed {
    std::string reason;
};

const std::string& textOf(const FlatObject& object, const char* key) {
    const auto* value = object.find(key, Kind::kText);
    if (value == nullptr)
        throw Malformed{std::string("no text \"") + key + '"'};
    return value->text;
}

std::uint64_t numberOf(const FlatObject& object, const char* key, std::uint64_t most) {
    const auto* value = object.find(key, Kind::kNumber);
    if (value == nullptr || value->number > most)
        throw Malformed{std::string("no number \"") + key + "\" from 0 to " + std::to_string(most)};
    return value->number;
}

bool flagOf(const FlatObject& object, const char* key) {
    const auto* value = object.find(key, Kind::kFlag);
    if (value == nullptr)
        throw Malformed{std::string("no true or false \"") + key + '"'};
    return value->flag;
}

std::optional<Bytes> outOf(const FlatObject& object, const char* key) {
    if (!object.contains(key))
        return std::nullopt;
    const auto* value = object.find(key, Kind::kText);
    std::optional<Bytes> bytes;
    if (value != nullptr)
        bytes = bytesOfHex(value->text, kMostBytes);
    if (!bytes)
        throw Malformed{std::string("\"") + key + "\" is no hexadecimal text"};
    return bytes;
}

std::optional<Answer> inOf(const FlatObject& object, const char* key) {
    if (const auto* same = object.find(key, Kind::kNumber); same != nullptr)
        return Answer{{}, same->number};
    std::optional<Bytes> bytes = outOf(object, key);
    return bytes ? std::optional(Answer{std::move(*bytes), 0}) : std::nullopt;
}

constexpr std::uint64_t kAnyNumber = ~std::uint64_t{0};

Line lineOf(const FlatObject& object) {
    Line line;
    line.number = numberOf(object, "n", kAnyNumber);
    line.leftOut = object.contains("left_out") && flagOf(object, "left_out");
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

Head headOf(const FlatObject& object) {
    const auto* format = object.find("format", Kind::kText);
    if (format == nullptr || format->text != kFormat)
        throw Malformed{"this is no recording"};
    if (const std::uint64_t version = numberOf(object, "version", kAnyNumber); version != kFormatVersion)
        throw Malformed{"a recording of version " + std::to_string(version) + ", this program reads version " +
                        std::to_string(kFormatVersion)};
    return {textOf(object, "tool"), textOf(object, "library"), textOf(object, "time"), flagOf(object, "redacted")};
}

/// Lines that name another one must name an earlier one that holds an answer of that kind.
void checkRepeats(const Recording& recording, const Line& line) {
    for (const bool inner : {false, true}) {
        const auto& answer = inner ? line.innerIn : line.in;
        if (answer && answer->sameAs != 0 && recording.answerOf(answer, inner) == nullptr)
            throw Malformed{"names line " + std::to_string(answer->sameAs) + ", which holds no answer"};
    }
}

/// One line of the text. False when it is the last one and cut.
bool readOne(Recording& recording, std::string_view text, bool first, bool whole) {
    if (!first && !whole)
        return false;
    FlatObject object;
    const Outcome outcome = object.read(text);
    if (first) {
        recording.head = headOf(object);
        return true;
    }
    if (outcome != Outcome::kObject)
        throw Malformed{outcome == Outcome::kNoJson ? "damaged" : "no object"};
    Line line = lineOf(object);
    checkRepeats(recording, line);
    recording.places[line.number] = recording.lines.size();
    recording.lines.push_back(std::move(line));
    return true;
}

/// Numbers and hexadecimal texts need no quoting.
void put(std::string& text, const char* key, std::uint64_t number) {
    text += std::string(text.empty() ? "{" : ",") + '"' + key + "\":" + std::to_string(number);
}

void put(std::string& text, const char* key, std::span<const std::uint8_t> bytes) {
    text += std::string(",\"") + key + "\":\"" + hexOf(bytes) + '"';
}

void put(std::string& text, const char* key, const std::optional<Answer>& answer) {
    if (answer && answer->sameAs != 0)
        put(text, key, answer->sameAs);
    else if (answer)
        put(text, key, answer->bytes);
}

/// The whole file; nothing, with the reason, when it cannot be read.
std::optional<std::string> textOfFile(const std::string& path, std::string& reason) {
    constexpr off_t kMostFile = 1 << 30;
    struct Close {
        ~Close() { ::close(file); }
        int file;
    };
    const Close opened{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)}; // nothing is waited for in a FIFO
    struct stat status {};
    if (opened.file < 0 || ::fstat(opened.file, &status) != 0) {
        reason = std::strerror(errno);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode) || status.st_size > kMostFile) {
        reason = S_ISREG(status.st_mode) ? "the file is larger than 1 GB" : "no regular file";
        return std::nullopt;
    }
    std::string text;
    text.reserve(static_cast<std::size_t>(status.st_size));
    std::array<char, 65536> piece;
    for (ssize_t length = 1; length != 0;) {
        length = ::read(opened.file, piece.data(), piece.size());
        if (length > 0)
            text.append(piece.data(), static_cast<std::size_t>(length));
        if (length >= 0 || errno == EINTR)
            continue;
        reason = std::strerror(errno);
        return std::nullopt;
    }
    return text;
}

} // namespace

std::string writeHead(const Head& head) {
    std::string text = std::string("{\"format\":\"") + kFormat + '"';
    put(text, "version", kFormatVersion);
    for (const auto& [key, value] : {std::pair("tool", &head.tool), {"library", &head.library}, {"time", &head.time}})
        text += std::string(",\"") + key + "\":" + quoted(*value);
    text += std::string(",\"redacted\":") + (head.redacted ? "true}" : "false}");
    text.resize(std::max(text.size(), kHeadSize - 1), ' ');
    return text;
}

std::string writeLine(const Line& line) {
    std::string text;
    put(text, "n", line.number);
    put(text, "us", line.microseconds);
    put(text, "type", line.header[kTypeAt]);
    put(text, "code", line.header[kCommandAt]);
    if (line.leftOut) {
        text += ",\"left_out\":true";
    } else {
        put(text, "header", line.header);
        if (line.out)
            put(text, "out", *line.out);
        put(text, "in", line.in);
        if (line.innerOut)
            put(text, "inner_out", *line.innerOut);
        put(text, "inner_in", line.innerIn);
    }
    if (line.past != 0)
        put(text, "past", line.past);
    put(text, "status", line.status);
    return text + "}\n";
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
    }
    return recording;
}

std::optional<Recording> readRecordingFile(const std::string& path, std::string& reason) {
    const auto text = textOfFile(path, reason);
    return text ? readRecording(*text, reason) : std::nullopt;
}

} // namespace zebrec
