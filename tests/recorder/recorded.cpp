#include "tests/recorder/recorded.h"

#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <cstring>

namespace fs = std::filesystem;

namespace zebtest {

const std::vector<ToolRun> kChangingRuns{
    {"-cblearn -aAll"},
    {"-ctrlsetprop -trh -aAll"},
    {"-ctrlsetprop -pdfailenbl -hddcpybkdsbl -ssdcpybkdsbl -aAll"},
    {"-ctrlautorbld -dsbl -aAll", "y\ny\n"},
    {"-ctrlpr -enblman -start -aAll", "y\ny\n"},
    {"-lddel", "0\n2,3\ny\ny\n"},
    {"-ldinit -start -L1,2 -a0"},
    {"-ldcc -start -L0,3 -a0"},
    {"-ldsetprop -wb -name MADEHERE -L0 -a0", "y\n"},
    {"-pdhsp -ghs -pd[252:14] -a0", "y\ny\ny\n"},
    {"-pdhsp -dhs -pd[252:14] -a0", "0\nQ\n"},
    {"-pdhsp -rmv -nochk -pd[252:12,252:13] -a0"},
    {"-pdlocate -start -pd[252:0,252:1] -a0"},
    {"-pdlocate -stop -pd[252:0,252:1] -a0"},
    {"-pdoffline -pd[252:1,252:6] -a0"},
    {"-pdmakegood -pd[252:15] -a0"},
    {"-pdonline -pd[252:0] -a0"},
    {"-lde", "0\n1\ny\n"},
    {"-ldc -r0[252:14] -wb -sz100 -sz200 -a0", "y\ny\n"},
};

zebrec::Request requestOf(const TracedRequest& traced) {
    zebrec::Header header;
    std::memcpy(header.data(), &traced.header, header.size());
    auto data = traced.out;
    data.resize(std::max(data.size(), sizeof(_SL_SCSI_PASSTHRU_T)));
    return zebrec::Request::of(header, data);
}

RunOptions RecorderTest::tool(const std::string& scenario, const ToolRun& run) const {
    RunOptions options;
    options.program = options.argv0 = programOf(paths::zebcli, paths::releaseZebcli);
    if (released_)
        options.libraryDir = paths::releaseLibraryDir;
    options.args = words(run.args);
    options.input = Input::kPipe;
    options.inputText = run.input;
    options.trace = true;
    if (scenario != "built_in")
        options.env["ZEBSIM_SCENARIO"] = fs::path(paths::scenarioDir) / (scenario + ".json");
    return options;
}

RunOptions RecorderTest::under(const std::string& program, std::vector<std::string> before, RunOptions options) const {
    before.push_back("--");
    before.push_back(options.program);
    before.insert(before.end(), options.args.begin(), options.args.end());
    options.program = fs::path(programOf(paths::recorderDir, paths::releaseRecorderDir)) / "sbin" / program;
    options.argv0 = program;
    options.args = std::move(before);
    return options;
}

void RecorderTest::useRelease() {
    released_ = *paths::releaseZebcli != '\0';
}

RunOptions RecorderTest::facts(const std::string& scenario, const std::string& args) const {
    RunOptions options = tool(scenario, {args});
    options.program = programOf(paths::zebstat, paths::releaseZebstat);
    options.argv0 = "zebstat";
    options.env["ZEBSIM_SPEED"] = "0";
    return options;
}

RunOptions RecorderTest::everyReport(const std::string& scenario) const {
    for (const auto& [name, path] : {std::pair("zebcli", programOf(paths::zebcli, paths::releaseZebcli)),
                                     std::pair("zebstat", programOf(paths::zebstat, paths::releaseZebstat))})
        if (!fs::exists(box.bin() / name))
            fs::create_symlink(path, box.bin() / name);
    RunOptions options = tool(scenario, {""});
    options.program = "/bin/sh";
    options.args = {"-c", "for report in ctrlinfo ldpdinfo pdinfo enclinfo cbinfo; do zebcli -$report -aAll; done; "
                          "zebcli -ldpdprog; zebcli -v; zebstat json --pretty | sed '/\"time\"/d'"};
    options.env["ZEBSIM_SPEED"] = "0";
    return options;
}

RunResult RecorderTest::record(const RunOptions& options, std::vector<std::string> further) {
    fs::remove(recording());
    further.insert(further.begin(), recording());
    return box.run(under("zebcli-record", std::move(further), options));
}

RunResult RecorderTest::replay(RunOptions options) {
    options.env.erase("ZEBSIM_SCENARIO"); // what is left of the model must not matter
    return box.run(under("zebcli-replay", {recording()}, std::move(options)));
}

std::vector<std::string> scenarioNames() {
    std::vector<std::string> names{"built_in"};
    for (const auto& entry : fs::directory_iterator(paths::scenarioDir))
        names.push_back(entry.path().stem());
    std::ranges::sort(names);
    return names;
}

} // namespace zebtest
