#include "tests/support/trace.h"

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

void splitHeader(TracedRequest& request) {
    const std::uint8_t* header = request.header.data();
    std::memcpy(&request.ctrlId, header + 4, sizeof request.ctrlId);
    std::memcpy(&request.reference, header + 8, sizeof request.reference);
    std::memcpy(request.param.data(), header + 12, request.param.size());
    std::memcpy(&request.dataSize, header + 28, sizeof request.dataSize);
}

} // namespace

std::string TracedRequest::brief() const {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02x/%02x ref=%08x", type, cmd, reference);
    return text.data();
}

std::optional<TracedRequest> parseTraceLine(std::string_view line) {
    const std::string text(line);
    TracedRequest request;
    std::array<char, 65> header{};
    std::array<char, 11> data{};
    int out = 0;
    int end = 0;
    std::vector<std::uint8_t> bytes;
    if (std::sscanf(text.c_str(), "%2hhx/%2hhx header=%64[0-9a-f] data=%10[0-9nul] out=%n", &request.type, &request.cmd,
                    header.data(), data.data(), &out) != 4 ||
        out == 0 || !parseBytes(header.data(), bytes) || bytes.size() != request.header.size() ||
        bytes[0] != request.type || bytes[1] != request.cmd)
        return std::nullopt;
    std::ranges::copy(bytes, request.header.begin());
    splitHeader(request);
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
