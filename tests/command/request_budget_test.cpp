// How many requests each command sends on the built-in scenario, which, and in which order. On real hardware every
// request costs time, so one more is a change that somebody has to want: ZEB_UPDATE_EXPECTED=1 rewrites the kept lists.
// The first line of a list is the command line; bench/ reads it from there.
#include "tests/support/expected.h"
#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"

#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

struct Budget {
    const char* name;
    const char* args;
    const char* input = "";
    const char* faults = "[]";
};

/// Drive 252:1 is offline and may rebuild; the built-in scenario has no such drive.
constexpr char kOffline[] = R"([{"type": 2, "cmd": 0, "ref": 9, "fields": {"fwState": 16}},
                                {"type": 2, "cmd": 20, "ref": 9, "fill": 255}])";

/// LD 2 initializes; LD 0 is checked.
constexpr char kInitializes[] = R"([{"type": 3, "cmd": 0, "ref": 2, "fields": {"active": 4}}])";
constexpr char kChecked[] = R"([{"type": 3, "cmd": 0, "ctrl": 2, "ref": 0, "fields": {"active": 1}}])";

const Budget kBudgets[] = {
    {"ctrlinfo", "-ctrlinfo -aAll"},
    {"ldpdinfo", "-ldpdinfo -aAll"},
    {"ldpdinfo_one_ld", "-ldpdinfo -L2 -a0"},
    {"pdinfo", "-pdinfo -aAll"},
    {"pdinfo_one_drive", "-pdinfo -pd[252:13] -a0"},
    {"enclinfo", "-enclinfo -aAll"},
    {"cbinfo", "-cbinfo -aAll"},
    {"ldpdprog", "-ldpdprog"},
    {"v", "-v"},
    {"h", "-h"},
    {"help", "-help"},
    {"question_mark", "-?"},
    {"cblearn", "-cblearn -a0"},
    {"ctrlautorbld_dsbl", "-ctrlautorbld -dsbl -a0", "Y\n"},
    {"ctrlautorbld_enbl", "-ctrlautorbld -enbl -aAll"},
    {"ctrlsetprop", "-ctrlsetprop -trh -pdfailenbl -a0"},
    {"ldsetprop", "-ldsetprop -ra -L0,2 -a0"},
    {"ldsetprop_name", "-ldsetprop -name NEW -L2 -a0"},
    {"ldinit_start", "-ldinit -start -L2 -a0"},
    {"ldinit_stop", "-ldinit -stop -L2 -a0", "", kInitializes},
    {"ldcc_start", "-ldcc -start -L0,3 -a0"},
    {"ldcc_stop", "-ldcc -stop -L0 -a0", "", kChecked},
    {"pdoffline", "-pdoffline -pd[252:1] -a0"},
    {"pdonline", "-pdonline -pd[252:0] -a0"},
    {"pdmakegood", "-pdmakegood -pd[252:15] -a0"},
    {"pdrbld", "-pdrbld -start -pd[252:1] -a0", "", kOffline},
    {"pdlocate_start", "-pdlocate -start -pd[252:0,252:1] -a0"},
    {"pdlocate_stop", "-pdlocate -stop -pd[252:0] -a0"},
    {"pdhsp_ghs", "-pdhsp -ghs -pd[252:14] -a0", "Y\nY\nY\n"},
    {"pdhsp_dhs", "-pdhsp -dhs -pd[252:14] -a0", "0\nY\nY\nY\n"},
    {"pdhsp_rmv", "-pdhsp -rmv -nochk -pd[252:12] -a0"},
    {"tstevt", "-tstevt -inf"},
    {"log", "-log"},
    {"lde", "-lde", "0\n1\ny\n"},
    {"ldc", "-ldc -r0[252:14] -wb -sz102400 -sz51200 -a0", "y\ny\n"},
    {"ldc_in_free_space", "-ldc -r5[252:0,252:1,252:2,252:3] -sz51200 -a0", "y\n"},
    {"lddel", "-lddel", "0\n2,3\ny\ny\n"},
    {"ctrlpr_enblman", "-ctrlpr -enblman -start -aAll", "y\n"},
    {"ctrlpr_day", "-ctrlpr -day -a0"},
    {"sse", "-sse"},
    {"snapshot", "-snapshot"},
};

/// "01/05 ctrl=2 ref=00000000 size=4616"; of a controller command also its opcode, of a SCSI command its first bytes.
std::string keptLine(const TracedRequest& request) {
    const auto& header = request.header;
    char text[96];
    std::snprintf(text, sizeof text, " ctrl=%u ref=%08x size=%u", header.ctrlId, header.ref.all, header.dataSize);
    std::string line = request.brief().substr(0, 5) + text;
    if (const auto dcmd = request.dcmd())
        std::snprintf(text, sizeof text, " opcode=%08x", dcmd->opcode);
    else if (const auto scsi = request.scsi())
        std::snprintf(text, sizeof text, " cdb=%02x..%02x", scsi->cdb[0], scsi->cdb[2]);
    else
        text[0] = '\0';
    return line + text + "\n";
}

class RequestBudget : public SandboxTest, public testing::WithParamInterface<Budget> {};

TEST_P(RequestBudget, IsKept) {
    const Budget& budget = GetParam();
    RunOptions options;
    std::istringstream words(budget.args);
    for (std::string word; words >> word;)
        options.args.push_back(word);
    options.input = Input::kPipe;
    options.inputText = budget.input;
    options.env = {{"ZEBSIM_FAULTS", budget.faults}};
    options.trace = true;
    const RunResult result = box.run(options);
    ASSERT_EQ(result.exitStatus, 0) << result;
    std::string text = budget.args + std::string(*budget.input != '\0' ? " <answers" : "") + "\n";
    for (const auto& request : parseTrace(result.trace))
        text += keptLine(request);
    EXPECT_TRUE(matchesKept(std::string("requests/") + budget.name + ".txt", text));
}

INSTANTIATE_TEST_SUITE_P(Commands, RequestBudget, testing::ValuesIn(kBudgets),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace zebtest
