#include "tests/support/kept_block.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/paths.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

namespace fs = std::filesystem;

fs::path folder() {
    return fs::path(paths::expectedDir) / "creation";
}

} // namespace

std::string keptBlock(const std::string& name) {
    std::istringstream file(readFile(folder() / (name + ".txt")));
    std::string block;
    for (std::string line; std::getline(file, line);) {
        std::istringstream row(line.substr(0, line.find('#')));
        std::string word;
        if (!(row >> word))
            continue;
        if (word == "size") {
            std::size_t size = 0;
            row >> size;
            block.assign(2 * size, '0');
            continue;
        }
        std::string bytes;
        std::size_t times = 1;
        for (std::string byte; row >> byte;)
            if (byte.front() == 'x')
                times = std::stoul(byte.substr(1));
            else
                bytes += byte;
        std::string all;
        while (times-- > 0)
            all += bytes;
        const std::size_t at = 2 * std::stoul(word);
        EXPECT_LE(at + all.size(), block.size()) << name << ": " << line;
        if (at + all.size() <= block.size())
            block.replace(at, all.size(), all);
    }
    EXPECT_FALSE(block.empty()) << name;
    std::ranges::transform(block, block.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return block;
}

std::string keptBlockOf(const std::string& hex) {
    static const auto names = [] {
        std::map<std::string, std::string> all;
        for (const auto& entry : fs::directory_iterator(folder()))
            all[keptBlock(entry.path().stem())] = entry.path().stem();
        return all;
    }();
    const auto found = names.find(hex);
    return found != names.end() ? found->second : "";
}

} // namespace zebtest
