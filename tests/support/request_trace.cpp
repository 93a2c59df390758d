#include "tests/support/request_trace.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

/// Appends the bytes of a hex text. False when it is not one.
bool parseBytes(std::string_view hex, std::vector<std::uint8_t>& bytes) {
    for (; hex.size() >= 2; hex.remove_prefix(2)) {
        const auto [end, code] = std::from_chars(hex.data(), hex.data() + 2, bytes.emplace_back(), 16);
        if (code != std::errc() || end != hex.data() + 2)
            return false;
    }
    return hex.empty();
}

bool parseOut(std::string_view text, TracedRequest& request) {
    const std::size_t colon = text.find(':');
    return text == "-" || (parseBytes(text.substr(0, colon), request.out) &&
                           (colon == std::string_view::npos || parseBytes(text.substr(colon + 1), request.payload)));
}

/// What comes before the data pointer of these records; the trace leaves pointers out.
constexpr std::size_t kHeaderSize = offsetof(wire::SL_LIB_CMD_PARAM_T, data);
constexpr std::size_t kDcmdSize = offsetof(wire::_SL_DCMD_INPUT_T, data);

template <class Record>
std::optional<Record> headOf(const TracedRequest& request, std::uint8_t cmd, std::size_t size) {
    constexpr std::uint8_t kPassThrough = 0x06;
    if (request.header.cmdType != kPassThrough || request.header.cmd != cmd || request.out.size() < size)
        return std::nullopt;
    Record record{};
    std::memcpy(&record, request.out.data(), size);
    return record;
}

} // namespace

std::string TracedRequest::brief() const {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02x/%02x ref=%08x", header.cmdType, header.cmd, header.ref.all);
    return text.data();
}

std::optional<wire::_SL_DCMD_INPUT_T> TracedRequest::dcmd() const {
    return headOf<wire::_SL_DCMD_INPUT_T>(*this, 0x03, kDcmdSize);
}

std::optional<wire::_SL_SCSI_PASSTHRU_T> TracedRequest::scsi() const {
    return headOf<wire::_SL_SCSI_PASSTHRU_T>(*this, 0x00, sizeof(wire::_SL_SCSI_PASSTHRU_T));
}

std::optional<TracedRequest> parseTraceLine(std::string_view line) {
    const std::string text(line);
    TracedRequest request;
    std::uint8_t type = 0;
    std::uint8_t cmd = 0;
    std::array<char, 65> header{};
    std::array<char, 11> data{};
    int out = 0;
    int end = 0;
    std::vector<std::uint8_t> bytes;
    if (std::sscanf(text.c_str(), "%2hhx/%2hhx header=%64[0-9a-f] data=%10[0-9nul] out=%n", &type, &cmd, header.data(),
                    data.data(), &out) != 4 ||
        out == 0 || !parseBytes(header.data(), bytes) || bytes.size() != kHeaderSize)
        return std::nullopt;
    std::memcpy(static_cast<void*>(&request.header), bytes.data(), bytes.size());
    if (request.header.cmdType != type || request.header.cmd != cmd)
        return std::nullopt;
    const std::size_t blank = text.find(' ', static_cast<std::size_t>(out));
    if (blank == std::string::npos ||
        !parseOut(line.substr(static_cast<std::size_t>(out), blank - static_cast<std::size_t>(out)), request) ||
        std::sscanf(text.c_str() + blank, " status=0x%8x%n", &request.status, &end) != 1 || end != 18 ||
        blank + 18 != text.size())
        return std::nullopt;
    if (std::string_view(data.data()) != "null")
        request.data = static_cast<std::uint32_t>(std::strtoul(data.data(), nullptr, 10));
    return request;
}

std::vector<TracedRequest> parseTrace(std::string_view text) {
    std::vector<TracedRequest> requests;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (auto request = parseTraceLine(text.substr(0, end)))
            requests.push_back(std::move(*request));
        else
            ADD_FAILURE() << "not a line of a trace: \"" << text.substr(0, end) << '"';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return requests;
}

std::string briefs(const std::vector<TracedRequest>& requests) {
    std::string text;
    for (const auto& request : requests)
        text += request.brief() + "\n";
    return text;
}

} // namespace zebtest
