#include "log/log_lines.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr std::size_t kRowBytes = 16;
constexpr std::size_t kHexOffset = 10; // behind "%08X: "
constexpr std::size_t kHexWidth = 48;
constexpr std::size_t kSeparatorWidth = 77;
constexpr std::string_view kSameData = "                         ---  same data  ---";

LogLine paddedLine(std::string_view text) {
    LogLine line;
    line.fill(' ');
    std::copy_n(text.begin(), std::min(text.size(), line.size()), line.begin());
    return line;
}

std::string_view lastPathComponent(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

/// Text gathered up to the width of a line; what does not fit is dropped.
struct LineText {
    std::array<char, kLogLineSize> text{};
    std::size_t length = 0;

    void add(std::string_view part) {
        const std::size_t taken = std::min(part.size(), kLogTextSize - length);
        std::copy_n(part.begin(), taken, text.begin() + length);
        length += taken;
    }
};

void addTimeAndPid(LineText& out) {
    timeval now{}; // one reading: the clock of time() lags a little behind, and stamps would run backwards
    gettimeofday(&now, nullptr);
    static const pid_t pid = getpid();
    tm local{};
    localtime_r(&now.tv_sec, &local); // unlike localtime, looks at the time zone file once per run
    char prefix[96];
    std::snprintf(prefix, sizeof prefix, "[%04d/%02d/%02d %02d:%02d:%02d.%03d] pid=%05d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(now.tv_usec / 1000), static_cast<int>(pid));
    out.add(prefix);
}

LogLine dumpRow(std::span<const unsigned char> row, std::size_t offset) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    char head[kHexOffset + 1];
    std::snprintf(head, sizeof head, "%08X: ", static_cast<unsigned>(offset));
    LogLine line = paddedLine(head);
    char* hex = line.data() + kHexOffset;
    char* shown = hex + kHexWidth + 2; // a blank amid the bytes, one behind them
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i == kRowBytes / 2)
            ++hex;
        *hex++ = kDigits[row[i] >> 4U];
        *hex++ = kDigits[row[i] & 0x0FU];
        ++hex;
        *shown++ = std::isalnum(row[i]) != 0 ? static_cast<char>(row[i]) : '.';
    }
    return line;
}

bool sameHex(const LogLine& a, const LogLine& b) {
    return std::equal(a.begin() + kHexOffset, a.begin() + kHexOffset + kHexWidth, b.begin() + kHexOffset);
}

} // namespace

LogLine markerLine() {
    return paddedLine(kLogEndMark);
}

LogLine recordLine(const char* sourceFile, int line, const char* message) {
    LineText text;
    addTimeAndPid(text);
    if (sourceFile != nullptr) {
        text.add(" ");
        text.add(lastPathComponent(sourceFile));
    }
    if (line != 0) {
        char number[16];
        std::snprintf(number, sizeof number, "(%u)", static_cast<unsigned>(line));
        text.add(number);
    }
    if (message != nullptr) {
        text.add(" ");
        text.add(message);
    }
    std::replace_if(
        text.text.begin(), text.text.begin() + text.length,
        [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }, ' ');
    return paddedLine({text.text.data(), text.length});
}

bool dumpLines(std::span<const unsigned char> data, const std::function<bool(const LogLine&)>& sink) {
    char separator[kSeparatorWidth];
    std::memset(separator, '-', sizeof separator);
    if (!sink(paddedLine({separator, sizeof separator})))
        return false;
    LogLine written{};
    bool suppressed = false;
    for (std::size_t offset = 0; offset < data.size(); offset += kRowBytes) {
        const bool first = offset == 0;
        const bool last = data.size() - offset <= kRowBytes;
        const LogLine row = dumpRow(data.subspan(offset, std::min(kRowBytes, data.size() - offset)), offset);
        if (!first && !last && sameHex(row, written)) {
            suppressed = true;
            continue;
        }
        if (suppressed && !sink(paddedLine(kSameData)))
            return false;
        suppressed = false;
        if (!sink(row))
            return false;
        written = row;
    }
    return sink(paddedLine(""));
}
