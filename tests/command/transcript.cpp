#include "tests/command/transcript.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "tests/support/paths.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kHeading = "=== ";

fs::path folder() {
    return fs::path(paths::sourceDir) / "tests/command/transcripts";
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

std::vector<Transcript> readTranscripts() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder()))
        files.push_back(entry.path());
    std::ranges::sort(files);
    std::vector<Transcript> all;
    for (const auto& file : files) {
        std::vector<std::string> common;
        std::vector<std::string>* into = &common;
        for (const auto& line : linesOf(readFile(file)))
            if (line.starts_with(kHeading))
                into = &all.emplace_back(Transcript{file.stem(), line.substr(kHeading.size()), common, {}}).lines;
            else
                into->push_back(line);
    }
    return all;
}

void rewriteTranscript(const Transcript& transcript, const std::vector<std::string>& lines) {
    const fs::path path = folder() / (transcript.file + ".txt");
    std::string text;
    bool replaced = false;
    for (const auto& line : linesOf(readFile(path))) {
        const bool heading = line.starts_with(kHeading);
        if (heading || !replaced)
            text += line + "\n";
        if (!heading)
            continue;
        replaced = line.substr(kHeading.size()) == transcript.name;
        if (replaced)
            for (const auto& own : lines)
                text += own + "\n";
    }
    writeFile(path, text);
}

bool isResult(const std::string& line) {
    return std::ranges::any_of(
        std::to_array<std::string_view>({"|", "! ", "~ ", "@ ", "> ", "exit "}),
        [&](auto prefix) { return line.starts_with(prefix); });
}

} // namespace zebtest
