#include "tests/support/operation_test.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace zebtest {

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string repeated(std::string_view text, unsigned times) {
    std::string all;
    for (unsigned i = 0; i < times; ++i)
        all += text;
    return all;
}

RunOptions OperationTest::optionsFor(const std::string& scenario, const std::string& args) {
    RunOptions options;
    options.args = words(args);
    options.trace = true;
    if (!scenario.empty()) {
        writeFile(box.root() / "scenario.json", scenario);
        options.env["ZEBSIM_SCENARIO"] = box.root() / "scenario.json";
    }
    return options;
}

std::vector<std::string> OperationTest::snapshotOf(RunOptions options) {
    // The snapshot of hardware that no run changes is always the same.
    static std::map<std::string, std::vector<std::string>> known;
    const bool changes = options.env.contains("ZEBSIM_STATE");
    const auto file = options.env.find("ZEBSIM_SCENARIO");
    const std::string scenario = file != options.env.end() ? readFile(file->second) : "";
    if (const auto found = known.find(scenario); !changes && found != known.end())
        return found->second;
    options.args = {"-h"};
    Sandbox own; // the caller's log is part of what it looks at
    auto lines = requestsBehind(0, own.run(options).trace);
    if (!changes)
        known[scenario] = lines;
    return lines;
}

std::vector<std::string> OperationTest::requestsBehind(std::size_t count, const std::string& trace) {
    const auto requests = parseTrace(trace);
    EXPECT_TRUE(!requests.empty() && requests.back().brief() == "00/09 ref=00000000") << "the library was not closed";
    std::vector<std::string> lines;
    for (std::size_t i = count + 1; i + 1 < requests.size(); ++i)
        lines.push_back(requestLine(requests[i]));
    return lines;
}

std::string OperationTest::requestsAfterSnapshot(const std::string& scenario, const std::string& trace) {
    std::string text;
    for (const auto& line : requestsBehind(snapshotOf(optionsFor(scenario, "")).size(), trace))
        text += line + "\n";
    return text;
}

std::vector<LogRecord> OperationTest::loggedRecords() const {
    auto records = LogFile(box.log()).records();
    if (!records.empty())
        records.erase(records.begin());
    std::erase_if(records, [](const auto& record) { return record.message.find(' ') == std::string::npos; });
    return records;
}

std::vector<std::string> OperationTest::loggedMessages() const {
    std::vector<std::string> messages;
    for (const auto& record : loggedRecords())
        messages.push_back(record.message);
    return messages;
}

} // namespace zebtest
