#include "tests/support/expected.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <cstdlib>

#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

std::string_view lineAt(std::string_view text, std::size_t start) {
    return text.substr(start, std::min(text.find('\n', start), text.size()) - start + 1);
}

std::string visibleByte(unsigned char byte) {
    if (byte >= 0x80)
        return "M-" + (byte == 0x8A ? "^J" : visibleByte(byte & 0x7FU));
    if (byte == '\n')
        return "$\n";
    if (byte < 0x20 || byte == 0x7F)
        return {'^', static_cast<char>(byte ^ 0x40U)};
    return {static_cast<char>(byte)};
}

std::string shownLine(std::string_view text, std::size_t start) {
    return start >= text.size() ? "(the end)\n" : visible(lineAt(text, start));
}

} // namespace

std::string visible(std::string_view text) {
    std::string result;
    for (const char c : text)
        result += visibleByte(static_cast<unsigned char>(c));
    return result;
}

testing::AssertionResult sameText(std::string_view got, std::string_view wanted) {
    if (got == wanted)
        return testing::AssertionSuccess();
    const auto differs = std::ranges::mismatch(got, wanted);
    const auto common = got.substr(0, static_cast<std::size_t>(differs.in1 - got.begin()));
    const std::size_t start = common.rfind('\n') + 1; // npos + 1 is the first line's start
    return testing::AssertionFailure() << "line " << std::ranges::count(common, '\n') + 1
                                       << " differs\n     got: " << shownLine(got, start)
                                       << "\n  wanted: " << shownLine(wanted, start);
}

testing::AssertionResult matchesKept(const std::string& name, std::string_view got) {
    return matchesFile(std::filesystem::path(paths::expectedDir) / name, got);
}

testing::AssertionResult matchesFile(const std::filesystem::path& path, std::string_view got) {
    if (const char* update = std::getenv("ZEB_UPDATE_EXPECTED"); update != nullptr && std::string_view(update) == "1") {
        writeFile(path, got);
        return testing::AssertionFailure() << path << " rewritten";
    }
    if (!std::filesystem::exists(path))
        return testing::AssertionFailure() << path << " is missing; ZEB_UPDATE_EXPECTED=1 writes it";
    return sameText(got, readFile(path)) << path;
}

} // namespace zebtest
