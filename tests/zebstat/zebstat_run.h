// Runs of zebstat, as the tests of this folder need them.
#pragma once

#include "tests/support/paths.h"
#include "tests/support/sandbox.h"
#include "tests/zebstat/expected_document.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace zebtest {

inline std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/// Options for one run of zebstat with these arguments, on the scenario of that name.
inline RunOptions zebstatRun(const std::string& line, const std::string& scenario = "built_in") {
    RunOptions options;
    options.program = paths::zebstat;
    options.argv0 = "zebstat";
    options.args = wordsOf(line);
    if (scenario != "built_in")
        options.env["ZEBSIM_SCENARIO"] = scenarioPath(scenario);
    return options;
}

/// The same by the release build, where one was named: it runs in a tenth of the time.
inline RunOptions quickRun(const std::string& line, const std::string& scenario = "built_in") {
    RunOptions options = zebstatRun(line, scenario);
    if (*paths::releaseZebstat != '\0') {
        options.program = paths::releaseZebstat;
        options.libraryDir = paths::releaseLibraryDir;
    }
    return options;
}

/// The same on a scenario that is written here.
inline RunOptions zebstatRunOn(Sandbox& box, const Json& scenario, const std::string& line) {
    const std::filesystem::path file = box.root() / "scenario.json";
    writeFile(file, scenario.dump());
    RunOptions options = zebstatRun(line);
    options.env["ZEBSIM_SCENARIO"] = file;
    return options;
}

/// Scenarios whose number of controllers is not served.
inline bool isServed(const std::string& scenario) {
    return scenario != "controllers_none" && scenario != "controllers_five";
}

/// The names of all kept scenarios, the built-in one first.
inline std::vector<std::string> scenarioNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(paths::scenarioDir))
        names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    names.insert(names.begin(), "built_in");
    return names;
}

/// Those that are served.
inline std::vector<std::string> servedScenarios() {
    std::vector<std::string> names = scenarioNames();
    std::erase_if(names, [](const std::string& name) { return !isServed(name); });
    return names;
}

} // namespace zebtest
