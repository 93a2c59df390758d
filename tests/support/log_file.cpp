#include "tests/support/log_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>

#include "storelib/records/request.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

constexpr std::string_view kMarker = "<END>";
constexpr std::size_t kDumpHexAt = 10;
constexpr std::size_t kDumpTextAt = 60;

std::string withoutPadding(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \n");
    return std::string(line.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

std::optional<LogRecord> parseRecord(const std::string& line) {
    std::array<char, 24> time{};
    std::array<char, 12> pid{};
    std::array<char, 200> source{};
    LogRecord record;
    int rest = 0;
    if (std::sscanf(line.c_str(), "[%23[0-9/: .]] pid=%11[0-9]%n", time.data(), pid.data(), &rest) != 2)
        return std::nullopt;
    record.time = time.data();
    record.pid = pid.data();
    std::string text = line.substr(static_cast<std::size_t>(rest));
    int end = 0;
    if (std::sscanf(text.c_str(), " %199[^( ](%u)%n", source.data(), &record.line, &end) == 2 && end > 0) {
        record.source = source.data();
        text.erase(0, static_cast<std::size_t>(end));
    } else {
        record.line = 0;
    }
    record.message = text.starts_with(' ') ? text.substr(1) : text;
    return record;
}

/// Where the data pointer lies in the dump that a message announces; an empty range when it announces none.
std::pair<std::size_t, std::size_t> pointerBytes(std::string_view message) {
    if (message.ends_with("CmdParam >"))
        return {offsetof(wire::_SL_LIB_CMD_PARAM_T, data), sizeof(wire::_SL_LIB_CMD_PARAM_T)};
    if (message.ends_with("DcmdInput >"))
        return {offsetof(wire::_SL_DCMD_INPUT_T, data), sizeof(wire::_SL_DCMD_INPUT_T)};
    return {0, 0};
}

std::string maskPointer(std::string row, std::pair<std::size_t, std::size_t> range) {
    std::size_t offset = 0;
    const auto [end, code] = std::from_chars(row.data(), row.data() + std::min<std::size_t>(row.size(), 8), offset, 16);
    if (code != std::errc() || row.size() < kDumpHexAt || row[8] != ':')
        return row;
    for (std::size_t column = 0; column < 16; ++column) {
        const std::size_t hex = kDumpHexAt + column * 3 + (column >= 8 ? 1 : 0);
        if (offset + column >= range.first && offset + column < range.second && hex + 1 < row.size()) {
            row[hex] = row[hex + 1] = 'p';
            if (kDumpTextAt + column < row.size())
                row[kDumpTextAt + column] = 'p';
        }
    }
    return row;
}

} // namespace

std::string logLine(std::string_view text) {
    std::string line(text.substr(0, kLogLineBytes - 1));
    line.resize(kLogLineBytes - 1, ' ');
    return line + '\n';
}

std::string logMarker() {
    return logLine(kMarker);
}

testing::AssertionResult LogFile::everyLineExact() const {
    const std::string all = bytes();
    for (std::size_t start = 0; start < all.size(); start += kLogLineBytes) {
        const std::size_t newline = all.find('\n', start);
        if (newline != start + kLogLineBytes - 1) {
            return testing::AssertionFailure()
                   << path_ << " line " << start / kLogLineBytes + 1 << " is not 200 bytes long: \""
                   << all.substr(start, std::min(newline - start, 2 * kLogLineBytes)) << '"';
        }
    }
    return testing::AssertionSuccess();
}

std::vector<std::string> LogFile::storedLines() const {
    const std::string all = bytes();
    std::vector<std::string> result;
    for (std::size_t start = 0; start < all.size();) {
        const std::size_t end = std::min(all.find('\n', start), all.size());
        result.push_back(withoutPadding(std::string_view(all).substr(start, end - start)));
        start = end + 1;
    }
    return result;
}

std::vector<std::size_t> LogFile::markers() const {
    const auto stored = storedLines();
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < stored.size(); ++i)
        if (stored[i].starts_with(kMarker))
            result.push_back(i + 1);
    return result;
}

std::vector<std::string> LogFile::lines() const {
    auto all = storedLines();
    const auto marker = std::ranges::find_if(all, [](const auto& line) { return line.starts_with(kMarker); });
    if (marker != all.end()) {
        std::rotate(all.begin(), marker, all.end());
        all.erase(all.begin());
    }
    return all;
}

std::vector<LogRecord> LogFile::records() const {
    std::vector<LogRecord> result;
    for (const auto& line : lines())
        if (auto record = parseRecord(line))
            result.push_back(std::move(*record));
        else if (!result.empty())
            result.back().dump.push_back(line);
    return result;
}

std::vector<std::string> LogFile::messages() const {
    std::vector<std::string> result;
    for (auto& record : records())
        result.push_back(std::move(record.message));
    return result;
}

std::string LogFile::masked() const {
    std::string text;
    for (const auto& record : records()) {
        text += "[TIME] pid=PID" + (record.source.empty() ? "" : " " + record.source + "(LINE)") + " " +
                record.message + "\n";
        for (const auto& row : record.dump)
            text += maskPointer(row, pointerBytes(record.message)) + "\n";
    }
    return text;
}

std::string LogFile::bytes() const {
    return readFile(path_);
}

void LogFile::write(std::string_view bytes) const {
    writeFile(path_, bytes);
}

Fd LogFile::holdLock() const {
    Fd file(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    if (!file.open() || flock(file.get(), LOCK_EX) != 0)
        ADD_FAILURE() << "cannot lock " << path_;
    return file;
}

} // namespace zebtest
