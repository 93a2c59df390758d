// Many runs on one state file: the life of drives and spares, overlapping runs, killed runs.
#include "tests/support/operation_test.h"

#include <algorithm>
#include <map>
#include <thread>

#include <gmock/gmock.h>

#include "tests/support/log_file.h"

namespace zebtest {
namespace {

using std::chrono::milliseconds;

constexpr char kStory[] =
    R"({"controllers": [{"id": 3, "enclosures": [{"slots": 7}], "patrolRead": {"mode": "disabled"},
    "drives": [{"repeat": 7}], "arrays": [{"drives": [0, 1, 2]}, {"drives": [3, 4]}],
    "lds": [{"level": 5, "spans": [{}]}, {"level": 1, "spans": [{"array": 1}]}], "spares": [{"drive": 5}]}]})";
constexpr char kTwenty[] = R"({"controllers": [{"id": 3, "enclosures": [{"slots": 20}],
    "maxSpares": 24, "drives": [{"repeat": 20}]}]})";
constexpr unsigned kDrives = 20;

/// What -ldpdprog says of each LD and drive: "PD5" -> "LD0 REBUILD HDD Rebuild 0%".
using Rows = std::map<std::string, std::string>;

class LifeStory : public OperationTest {
  protected:
    RunOptions onState(const std::string& scenario, const std::string& args, const std::string& speed = "0") {
        auto options = optionsFor(scenario, args);
        options.trace = false;
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = speed;
        return options;
    }
    std::string state() const { return box.root() / "state.json"; }

    static Rows rowsOf(const std::string& report) {
        Rows all;
        std::istringstream lines(report);
        for (std::string line; std::getline(lines, line);) {
            const auto parts = words(line);
            if (parts.size() > 1 && parts[1] != "No" && (line.starts_with("LD") || line.starts_with("PD"))) {
                std::string& row = all[parts[0]];
                for (std::size_t i = 1; i < parts.size(); ++i)
                    row += (i > 1 ? " " : "") + parts[i];
            }
        }
        return all;
    }
    Rows rows(const std::string& scenario, const std::string& speed = "0") {
        const auto result = box.run(onState(scenario, "-ldpdprog", speed));
        EXPECT_EQ(0, result.exitStatus) << result;
        EXPECT_EQ("", result.err);
        return rowsOf(result.out);
    }

    /// Lets time run until no drive rebuilds, and watches that progress never goes back.
    void watchRebuild(const std::string& drive) {
        const std::string speed = "3000"; // a rebuild takes about 1080 s on a 278 GB drive
        int last = 0;
        for (int turn = 0; turn < 300; ++turn) {
            const std::string row = rows(kStory, speed)[drive];
            const std::size_t at = row.find("Rebuild ");
            if (at == std::string::npos)
                return;
            const int percent = std::stoi(row.substr(at + 8));
            EXPECT_GE(percent, last);
            last = percent;
        }
        ADD_FAILURE() << drive << " still rebuilds at " << last << "%";
    }
    unsigned spares(const Rows& all) const {
        return static_cast<unsigned>(std::ranges::count(
            all, "GHS HOT SPARE HDD -", [](const auto& row) { return row.second; }));
    }
};

TEST_F(LifeStory, DriveFailsSpareTakesOverDriveComesBack) {
    const struct {
        std::string args; ///< without a command, the drive whose rebuild is watched to its end
        std::string changes; ///< every row that is not as it was
    } steps[] = {
        {"-pdoffline -pd[:1]", "LD0 DEGRADED(REBUILD) - -\nPD1 - Unconfig BAD HDD -\nPD5 LD0 REBUILD HDD Rebuild 0%"},
        {"PD5", "LD0 OPTIMAL - -\nPD5 LD0 ONLINE HDD -"},
        {"-pdmakegood -pd[:1]", "PD1 - Unconfig GOOD HDD -"},
        {"-pdhsp -ghs -pd[:1]", "PD1 GHS HOT SPARE HDD -"},
        {"-pdhsp -rmv -nochk -pd[:1]", "PD1 - Unconfig GOOD HDD -"},
        {"-pdoffline -pd[:4]", "LD1 DEGRADED - -\nPD4 LD1 OFFLINE HDD -"},
        {"-pdrbld -start -pd[:4]", "LD1 DEGRADED(REBUILD) - -\nPD4 LD1 REBUILD HDD Rebuild 0%"},
        {"PD4", "LD1 OPTIMAL - -\nPD4 LD1 ONLINE HDD -"},
        {"-pdoffline -pd[:3]", "LD1 DEGRADED - -\nPD3 LD1 OFFLINE HDD -"},
        {"-pdonline -pd[:3]", "LD1 OPTIMAL - -\nPD3 LD1 ONLINE HDD -"},
        {"-pdhsp -dhs -pd[:6]", "PD6 DHS HOT SPARE HDD -"}, // dedicated to RG1
        {"-pdoffline -pd[:5]", "LD0 DEGRADED - -\nPD5 LD0 OFFLINE HDD -"},
        {"-pdoffline -pd[:3]", "LD1 DEGRADED(REBUILD) - -\nPD3 - Unconfig BAD HDD -\nPD6 LD1 REBUILD HDD Rebuild 0%"},
        {"-ctrlautorbld -enbl", ""},
        {"-pdhsp -ghs -pd[:1]", "LD0 DEGRADED(REBUILD) - -\nPD5 - Unconfig BAD HDD -\nPD1 LD0 REBUILD HDD Rebuild 0%"},
    };
    Rows wanted = rowsOf("LD0 OPTIMAL - -\nLD1 OPTIMAL - -\nPD0 LD0 ONLINE HDD -\nPD1 LD0 ONLINE HDD -\n"
                         "PD2 LD0 ONLINE HDD -\nPD3 LD1 ONLINE HDD -\nPD4 LD1 ONLINE HDD -\nPD5 GHS HOT SPARE HDD -\n"
                         "PD6 - Unconfig GOOD HDD -");
    ASSERT_EQ(wanted, rows(kStory));
    for (const auto& step : steps) {
        SCOPED_TRACE(step.args);
        if (step.args[0] == '-') {
            auto options = onState(kStory, step.args);
            options.input = Input::kPipe;
            options.inputText = "1\n";
            EXPECT_THAT(box.run(options).out, testing::Not(testing::HasSubstr("Error")));
        } else {
            watchRebuild(step.args);
        }
        for (const auto& [row, text] : rowsOf(step.changes))
            wanted[row] = text;
        ASSERT_EQ(wanted, rows(kStory));
    }
}

TEST_F(LifeStory, OverlappingRunsLoseNothing) {
    rows(kTwenty);
    std::vector<std::thread> runs;
    for (unsigned slot = 0; slot < kDrives; ++slot) {
        runs.emplace_back([this, slot, options = onState(kTwenty, "-pdhsp -ghs -pd[:" + std::to_string(slot) + "]")] {
            EXPECT_EQ("Information - Controller[0] Settings have been changed PD(Physical Drive) " +
                          std::to_string(slot) + ".\n",
                      box.run(options).out);
        });
    }
    for (auto& run : runs)
        run.join();
    EXPECT_EQ(kDrives, spares(rows(kTwenty)));
    EXPECT_TRUE(LogFile(box.log()).everyLineExact());
}

TEST_F(LifeStory, KilledRunLeavesAStateThatLoads) {
    std::string all;
    for (unsigned slot = 0; slot < kDrives; ++slot)
        all += (slot != 0 ? ",:" : ":") + std::to_string(slot);
    auto options = onState(kTwenty, "-pdhsp -ghs -pd[" + all + "]");
    const auto whole = std::chrono::duration_cast<milliseconds>(box.run(options).wallTime);
    ASSERT_EQ(kDrives, spares(rows(kTwenty)));
    options.mayTimeOut = true;
    constexpr unsigned kMoments = 24;
    for (unsigned moment = 1; moment <= kMoments; ++moment) {
        std::filesystem::remove(state());
        options.timeLimit = whole * moment / kMoments;
        box.run(options);
        // The drives are changed in order: those before the moment are spares, the others are not.
        const auto seen = rows(kTwenty);
        for (unsigned slot = 0; slot < kDrives; ++slot) {
            EXPECT_EQ(slot < spares(seen) ? "GHS HOT SPARE HDD -" : "- Unconfig GOOD HDD -",
                      seen.at("PD" + std::to_string(slot)))
                << "killed after " << options.timeLimit.count() << " ms";
        }
    }
}

} // namespace
} // namespace zebtest
