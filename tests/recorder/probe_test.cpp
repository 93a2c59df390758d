// The probe contradicts nothing on the library that it was declared for, and of a library that lays one record out
// differently that record.
#include "tests/recorder/recorded.h"

#include "recorder/field_kinds.h"
#include "storelib/records/all.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <set>
#include <sstream>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

/// Scenarios whose answers lie on purpose.
const std::set<std::string> kLying{"counts_lying", "odd_cases", "settings_unusual", "texts_hostile"};

/// What the probe said of one record.
struct Row {
    std::string verdict;
    std::vector<std::string> contradictions; ///< each with its places, a line each
};

std::map<std::string, Row> rowsOf(const std::string& report) {
    constexpr std::size_t kVerdictColumn = 72;
    std::map<std::string, Row> rows;
    Row* row = nullptr;
    std::istringstream text(report);
    for (std::string line; std::getline(text, line);)
        if (line[0] == '_')
            (row = &rows[line.substr(0, line.find(' '))])->verdict = line.substr(kVerdictColumn);
        else if (row != nullptr && line.rfind("        ", 0) == 0)
            row->contradictions.back() += line + "\n";
        else if (row != nullptr && line.rfind("    ", 0) == 0)
            row->contradictions.push_back(line + "\n");
    return rows;
}

bool contains(const wire::RecordLayout& outer, const std::string& name) {
    if (outer.name == name)
        return true;
    if (outer.name == std::string("_MR_CONFIG_DATA") &&
        (contains(wire::Layout<_MR_ARRAY>::kRecord, name) || contains(wire::Layout<_MR_LD_CONFIG>::kRecord, name) ||
         contains(wire::Layout<_MR_SPARE>::kRecord, name)))
        return true;
    return std::ranges::any_of(outer.fields, [&](const wire::FieldLayout& field) {
        const wire::RecordLayout* inner = zebrec::recordIn(outer, field);
        return inner != nullptr && contains(*inner, name);
    });
}

/// Whether one of the places of a contradiction lies in an answer that holds the record.
bool involves(const std::string& contradiction, const std::string& record) {
    return std::ranges::any_of(
        wire::kAllRecords,
        [&](const wire::RecordLayout& outer) {
            return contradiction.find(std::string(" in ") + outer.name + " of ") != std::string::npos &&
                   contains(outer, record);
        });
}

class Probe : public RecorderTest {
  protected:
    /// The sweeps run the release build where there is one: the judging is the same, the runs are many.
    static bool released() { return *paths::releaseRecorderDir != '\0'; }
    RunOptions probe(const std::string& scenario, std::vector<std::string> args = {}) const {
        RunOptions options = tool(scenario, {""});
        options.program = fs::path(paths::recorderDir) / "sbin/zebcli-probe";
        options.argv0 = "zebcli-probe";
        options.args = std::move(args);
        return options;
    }
    RunOptions quick(const std::string& scenario) const {
        RunOptions options = probe(scenario);
        options.trace = false;
        if (released()) {
            options.program = fs::path(paths::releaseRecorderDir) / "sbin/zebcli-probe";
            options.libraryDir = paths::releaseLibraryDir;
        }
        return options;
    }
    static void rearrangeIn(RunOptions& options, const std::string& record, std::size_t distance) {
        options.env["ZEB_REARRANGE"] = record + ":" + std::to_string(distance);
        options.env["ZEB_REARRANGE_OF"] =
            fs::path(released() ? paths::releaseLibraryDir : paths::libraryDir) / "libstorelib.so";
        options.libraryDir = paths::libRearrangedDir;
    }
    std::map<std::string, Row> rearranged(const std::string& record, std::size_t distance,
                                          const std::string& scenario) {
        RunOptions options = quick(scenario);
        rearrangeIn(options, record, distance);
        return rowsOf(box.run(options).out);
    }
};

TEST_F(Probe, ContradictsNothingThatIsDeclaredRight) {
    for (const std::string& scenario : scenarioNames()) {
        SCOPED_TRACE(scenario);
        const RunResult result = box.run(quick(scenario));
        if (scenario == "controllers_none") {
            EXPECT_EQ(result.exitStatus, 3);
            EXPECT_EQ(result.err, "zebcli-probe: nothing could be asked: the library lists no controller\n");
            continue;
        }
        EXPECT_EQ(result.exitStatus, kLying.contains(scenario) ? 1 : 0) << result.out;
        EXPECT_EQ(result.out.find("contradicted\n") != std::string::npos, kLying.contains(scenario)) << result.out;
    }
}

struct Moved {
    std::string record;
    std::size_t distance; ///< bytes by which its fields are moved
    std::string scenario = "built_in"; ///< whose data can tell
};

const Moved kMoved[] = {
    {"_SL_CTRL_LIST_T", 4},
    {"_MR_CTRL_PROP", 4},
    {"_MR_IMAGE_COMPONENT", 4},
    {"_MR_CTRL_INFO", 4},
    {"_MR_DRV_PCI_INFORMATION", 2},
    {"_MR_DRV_DRIVER_VERSION", 4},
    {"_MR_PR_PROPERTIES", 4},
    {"_SL_LD_OS_MAP_ENTRY", 4},
    {"_MR_FOREIGN_CFG_GUIDS", 4, "drive_foreign"},
    {"_MR_PD_ADDRESS", 2},
    {"_MR_PD_PROGRESS", 4},
    {"_MR_INQUIRY_DATA", 4},
    {"_MR_PD_INFO", 4},
    {"_MR_SPAN", 8},
    {"_MR_LD_PROPERTIES", 4},
    {"_MR_LD_CONFIG", 4},
    {"_MR_LD_PROGRESS", 4, "background_work"},
    {"_MR_LD_INFO", 8},
    {"_MR_LD_LIST_ENTRY", 4},
    {"_MR_LD_LIST", 4},
    {"_SL_PD_IN_LD_T", 4},
    {"_MR_ARRAY_PD", 2},
    {"_MR_ARRAY", 8},
    {"_MR_SPARE", 4},
    {"_MR_CONFIG_DATA", 4},
    {"_MR_FREE_SEGMENT", 8},
    {"_SL_ARRAY_INFO_T", 4},
    {"_MR_ENCL_ENTRY", 4},
    {"_MR_ENCL_LIST", 4},
    {"_SL_ENCL_CONFIG_T", 4},
    {"_SL_ENCL_ELEMENT", 4},
    {"_SL_ENCL_STATUS_EX_T", 2},
    {"_MR_SAS_CONNECTOR", 4},
    {"_MR_SAS_CONNECTORS", 2},
    {"_MR_BBU_STATUS", 2},
    {"_MR_BBU_CAPACITY_INFO", 2},
    {"_MR_BBU_DESIGN_INFO", 4},
    {"_MR_BBU_PROPERTIES", 4},
};

/// Records of which no other order of their bytes can be told: one word without a rule, work that stands still, or the
/// requests themselves.
const std::set<std::string> kUntold{"_MR_LD_ALLOWED_OPS", "_MR_PROGRESS", "_SL_DCMD_INPUT_T", "_SL_LIB_CMD_PARAM_T"};

TEST_F(Probe, ContradictsTheRecordThatIsLaidOutDifferently) {
    for (const Moved& moved : kMoved) {
        SCOPED_TRACE(moved.record);
        const auto rows = rearranged(moved.record, moved.distance, moved.scenario);
        ASSERT_TRUE(rows.contains(moved.record));
        EXPECT_EQ(rows.at(moved.record).verdict.rfind("contradicted", 0), 0U) << rows.at(moved.record).verdict;
        for (const auto& [record, row] : rows)
            for (const std::string& contradiction : row.contradictions)
                EXPECT_TRUE(involves(contradiction, moved.record)) << record << ":\n" << contradiction;
    }
}

TEST_F(Probe, HasATestOfEveryRecordWhoseLayoutIsNotGiven) {
    std::set<std::string> tested = kUntold;
    for (const Moved& moved : kMoved)
        tested.insert(moved.record);
    for (const wire::RecordLayout& layout : wire::kAllRecords) {
        const auto notGiven = [](const auto& field) { return field.origin != wire::Origin::given; };
        EXPECT_EQ(tested.contains(layout.name), std::ranges::any_of(layout.fields, notGiven)) << layout.name;
    }
}

TEST_F(Probe, ConfirmsNothingThatTheDataCannotTell) {
    for (const char* scenario : {"drives_unconfigured", "enclosure_lost"})
        for (const Moved& moved : kMoved) {
            SCOPED_TRACE(moved.record + " in " + scenario);
            const auto rows = rearranged(moved.record, moved.distance, scenario);
            if (rows.contains(moved.record)) // no report when the library lists no controller any more
                EXPECT_NE(rows.at(moved.record).verdict.rfind("confirmed", 0), 0U);
        }
    for (const std::string& record : kUntold) {
        const auto rows = rearranged(record, 2, "built_in");
        if (rows.contains(record))
            EXPECT_NE(rows.at(record).verdict.rfind("confirmed", 0), 0U) << record;
    }
}

TEST_F(Probe, TellsHowFarWorkIsFromItsSecondsByTheClock) {
    for (const char* scenario : {"built_in", "background_work"}) {
        SCOPED_TRACE(scenario);
        RunOptions options = quick(scenario);
        options.env["ZEBSIM_SPEED"] = "100";
        options.env["ZEBSIM_LATENCY_US"] = "1000";
        EXPECT_EQ(rowsOf(box.run(options).out).at("_MR_PROGRESS").verdict, "confirmed");
        rearrangeIn(options, "_MR_PROGRESS", 2);
        const Row swapped = rowsOf(box.run(options).out).at("_MR_PROGRESS");
        EXPECT_EQ(swapped.verdict, "contradicted");
        for (const std::string& contradiction : swapped.contradictions)
            EXPECT_NE(contradiction.find("work takes no longer than the controller's clock says"), std::string::npos)
                << contradiction;
    }
    RunOptions still = quick("background_work");
    still.env["ZEBSIM_SPEED"] = "0";
    EXPECT_EQ(rowsOf(box.run(still).out).at("_MR_PROGRESS").verdict, "nothing against it");
}

TEST_F(Probe, IsNotMisledByHardwareThatChangesMeanwhile) {
    writeFile(box.root() / "scenario.json",
              R"({"controllers": [{"drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}],
                                   "lds": [{"level": 1, "spans": [{}], "init": {"percent": 99.8, "elapsed": 1000}}]}]})");
    RunOptions options = quick("built_in");
    options.env["ZEBSIM_SCENARIO"] = box.root() / "scenario.json";
    options.env["ZEBSIM_STATE"] = box.root() / "state.json";
    options.env["ZEBSIM_SPEED"] = "20"; // the initialisation ends between two readings, unless the machine is busy
    options.env["ZEBSIM_LATENCY_US"] = "3000";
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 0) << result;
}

TEST_F(Probe, SaysOfWhatIsNotThereThatItWasNotAsked) {
    const auto noUnit = rowsOf(box.run(quick("backup_unit_absent")).out);
    for (const char* record : {"_MR_BBU_STATUS", "_MR_BBU_CAPACITY_INFO", "_MR_BBU_DESIGN_INFO", "_MR_BBU_PROPERTIES"})
        EXPECT_EQ(noUnit.at(record).verdict, "not asked (answered with status 0x00000022)") << record;
    const auto bare = rowsOf(box.run(quick("controllers_one")).out);
    for (const char* record : {"_SL_ENCL_CONFIG_T", "_SL_ENCL_STATUS_EX_T", "_MR_ENCL_ENTRY", "_MR_SPARE"})
        EXPECT_EQ(bare.at(record).verdict, "not asked") << record;
}

TEST_F(Probe, AsksEveryReadingQuestionAndNoOther) {
    std::set<std::string> asked;
    for (const char* scenario : {"built_in", "snapshots"})
        for (const TracedRequest& traced : parseTrace(box.run(probe(scenario)).trace)) {
            const auto request = requestOf(traced);
            EXPECT_EQ(request.effect(), zebrec::Effect::kReads) << describe(request, 0);
            asked.insert(codeOf(request));
        }
    std::set<std::string> known;
    const auto add = [&](std::uint8_t type, std::uint8_t cmd, auto fill) {
        zebrec::Request request;
        request.header[0] = type;
        request.header[1] = cmd;
        fill(request);
        if (request.effect() == zebrec::Effect::kReads)
            known.insert(codeOf(request));
    };
    for (const auto& row : zebrec::requestRows())
        add(row.type, row.cmd, [](auto&) {});
    for (const auto& row : zebrec::dcmdRows())
        add(6, 3, [&](auto& request) { request.dcmd.emplace().opcode = row.opcode; });
    for (const auto& row : zebrec::scsiRows())
        add(6, 0, [&](auto& request) { request.scsi.emplace().cdb[0] = row.operation; });
    EXPECT_EQ(asked, known);
}

TEST_F(Probe, ItsRecordingGivesTheSameReportAgain) {
    const RunResult recorded = box.run(probe("built_in", {"--record", recording()}));
    EXPECT_EQ(recorded.exitStatus, 0) << recorded;
    EXPECT_EQ(recorded.err, "");
    struct stat status {};
    ASSERT_EQ(::stat(recording().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const RunResult replayed = replay(probe("built_in"));
    EXPECT_EQ(replayed.out, recorded.out);
    EXPECT_EQ(replayed.err, "");
}

TEST_F(Probe, BadArgumentsAreOneLineAndLeaveNothing) {
    const std::string mend = "; name the controller maker's library with --library PATH\n";
    const std::string noEntry = fs::path(paths::libNoEntryDir) / "libstorelib.so";
    const fs::path old = box.root() / "old";
    const fs::path link = box.root() / "link";
    writeFile(old, "kept");
    fs::create_symlink(box.root() / "elsewhere", link);
    const std::string usage = "usage: zebcli-probe [--library PATH] [--record FILE]\n";
    const struct {
        std::vector<std::string> args; ///< behind "--record recording()"
        std::string message;
    } cases[] = {
        {{"--colour"}, "unknown option --colour\n"},
        {{"--library"}, "option --library needs a value\n"},
        {{"extra"}, usage},
        {{"--", "true"}, usage},
        {{"--record", old}, old.string() + " cannot be made: File exists\n"},
        {{"--record", link}, link.string() + " cannot be made: File exists\n"},
        {{"--record", "/no/such/file"}, "/no/such/file cannot be made: No such file or directory\n"},
        {{"--library", "/no/lib"},
         "/no/lib cannot be loaded (/no/lib: cannot open shared object file: No such file or directory)" + mend},
        {{"--library", noEntry}, noEntry + " cannot be loaded (it has no entry point ProcessLibCommand)" + mend},
    };
    for (const auto& one : cases) {
        std::vector<std::string> args{"--record", recording()};
        args.insert(args.end(), one.args.begin(), one.args.end());
        const RunResult result = box.run(probe("built_in", args));
        EXPECT_EQ(result.exitStatus, 3) << result;
        EXPECT_EQ(result.err, "zebcli-probe: " + one.message);
        EXPECT_EQ(result.out + result.trace, "");
        EXPECT_FALSE(fs::exists(recording()) || fs::exists(box.root() / "elsewhere"));
        EXPECT_EQ(readFile(old), "kept");
    }
}

TEST_F(Probe, SaysWhatALibraryDoesThatMisbehaves) {
    const auto run = [&](const std::string& manner) {
        RunOptions options = probe("built_in");
        options.trace = false;
        options.libraryDir = paths::libRoughDir;
        options.env["ZEB_ROUGH"] = manner;
        options.env["ASAN_OPTIONS"] = "handle_segv=0:detect_leaks=1";
        return box.run(options);
    };
    const RunResult past = run("past");
    EXPECT_EQ(past.exitStatus, 1);
    const auto list = rowsOf(past.out).at("_MR_PD_LIST");
    EXPECT_EQ(list.verdict, "contradicted");
    ASSERT_FALSE(list.contradictions.empty());
    EXPECT_NE(list.contradictions.front().find("nothing is written behind the data"), std::string::npos);
    EXPECT_NE(past.err.find("wrote 100 bytes behind the data of request"), std::string::npos) << past.err;
    const RunResult crash = run("crash");
    EXPECT_EQ(crash.exitStatus, 128 + SIGSEGV);
    EXPECT_NE(crash.err.find("01/04 list physical drives: controller 0\n"), std::string::npos) << crash.err;
    EXPECT_EQ(run("nonsense").exitStatus, 1);
}

} // namespace
} // namespace zebtest
