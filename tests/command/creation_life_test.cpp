// The life of a configuration on one state file, each step by the tool, from an empty controller to an empty one.
#include "tests/support/operation_test.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace zebtest {
namespace {

// Five disks at hand; five more and two SSDs that are bad until they are made good.
constexpr char kEmpty[] = R"({"controllers": [{"cacheCadeCapacity": 512, "cacheBackup": {},
  "enclosures": [{"slots": 12}], "patrolRead": {"mode": "manual"},
  "drives": [{"repeat": 5}, {"slot": 5, "repeat": 5, "state": "bad"},
             {"slot": 10, "repeat": 2, "media": "SSD", "blocks": 389545984, "state": "bad"}]}]})";

class CreationLife : public OperationTest {
  protected:
    std::string step(const std::string& args, const std::string& answers = "", const std::string& speed = "0") {
        auto options = optionsFor(kEmpty, args);
        options.input = Input::kPipe;
        options.inputText = answers;
        options.env["ZEBSIM_STATE"] = box.root() / "state.json";
        options.env["ZEBSIM_SPEED"] = speed;
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        EXPECT_EQ("", result.err);
        return result.out;
    }

    /// Does a step, whose output ends as told, and expects the report to name the groups.
    void does(const std::string& args, const std::string& answers, const std::string& end, const std::string& groups) {
        SCOPED_TRACE(args);
        const std::string out = step(args, answers);
        EXPECT_TRUE(out.ends_with(end)) << out;
        EXPECT_EQ(groups, groupsNow());
    }

    /// "RG0 RAID5 836.625GB, ..." of the report: group, level and the capacities of its LDs.
    std::string groupsNow() {
        std::istringstream report(step("-ldpdinfo"));
        std::string groups;
        std::string lds;
        for (std::string line; std::getline(report, line);) {
            std::istringstream parts(line);
            std::string word;
            parts >> word;
            if (word.starts_with(">LD"))
                lds += " " + word.substr(1);
            if (line.starts_with("RG No.  "))
                groups += (groups.empty() ? "" : ", ") + line.substr(line.find(": ") + 2);
            if (line.starts_with("RAID Level  ")) {
                groups += " " + line.substr(line.find(": ") + 2) + lds;
                groups.erase(std::remove(groups.begin(), groups.end(), '\r'), groups.end());
                lds.clear();
            }
        }
        return groups;
    }

    /// The words behind a drive in the table of progress.
    std::string drive(unsigned slot, const std::string& speed = "0") {
        std::istringstream report(step("-ldpdprog", "", speed));
        for (std::string line; std::getline(report, line);) {
            const auto parts = words(line);
            if (parts.size() > 1 && parts[0] == "PD" + number(slot))
                return line.substr(line.find(parts[1]));
        }
        return "";
    }
    void waitFor(unsigned slot, const std::string& state) {
        for (int turn = 0; turn < 300; ++turn)
            if (drive(slot, "20000").find(state) != std::string::npos)
                return;
        ADD_FAILURE() << "PD" << slot << " does not become " << state << ": " << drive(slot);
    }
};

TEST_F(CreationLife, FromAnEmptyControllerToAnEmptyOne) {
    EXPECT_EQ("", groupsNow());
    does("-lde", "1\n2\ny\n",
         "has been created.\nInformation - Controller[0] Settings have been changed PD(Physical Drive) 4.\n",
         "RG0 RAID5 LD0");
    does("-pdmakegood -pd[:5,:6,:7,:8,:9,:10,:11]", "", "", "RG0 RAID5 LD0");
    does("-ldc -r10 -array0[:5,:6] -array1[:7,:8] -sz100000", "y\n", "LD(Logical Drive) 1 has been created.\n",
         "RG0 RAID5 LD0, RG1 RAID10 LD1");
    does("-ldc -r10 -array0[:7,:8] -array1[:6,:5]", "y\n", "LD(Logical Drive) 2 has been created.\n",
         "RG0 RAID5 LD0, RG1 RAID10 LD1 LD2");
    does("-pdhsp -dhs -pd[:9]", "1\n", "Settings have been changed PD(Physical Drive) 9.\n",
         "RG0 RAID5 LD0, RG1 RAID10 LD1 LD2");
    does("-ldc -cachecade[:10,:11]", "y\ny\n",
         "Information - Controller[0] LD(Logical Drive) 3 has been created.\nInformation - Controller[0] LD(Logical "
         "Drive) "
         "Settings have been changed on LD(Logical Drive) 0,1,2.\n",
         "RG0 RAID5 LD0, RG1 RAID10 LD1 LD2, scRG0 RAID0 LD3");
    const std::string all = "RG0 RAID5 LD0, RG1 RAID10 LD1 LD2, scRG0 RAID0 LD3";
    does("-ldsetprop -ra -L0", "", "changed on LD(Logical Drive) 0.\n", all);
    does("-ctrlpr -enblauto -week", "", "Information - Controller[0] Settings have been changed.\n", all);
    EXPECT_NE(std::string::npos, step("-ldpdinfo -L3").find("Associated CacheCade LD  :\r\n  LD0 ("));
    does("-pdoffline -pd[:0]", "", "", all);
    waitFor(4, "ONLINE");
    EXPECT_NE(std::string::npos, drive(0).find("Unconfig BAD"));
    does("-pdmakegood -pd[:0]", "", "", all);
    does("-lddel", "1\ny\ny\n", "LD(Logical Drive) 1 has been deleted.\n",
         "RG0 RAID5 LD0, RG1 RAID10 LD2, scRG0 RAID0 LD3");
    EXPECT_NE(std::string::npos, drive(9).find("HOT SPARE")) << "a spare of a group that is there stays";
    const std::string last = step("-lddel", "2\ny\ny\n");
    EXPECT_NE(std::string::npos, last.find("  Released     : RG1 and DHS PD9\n")) << last;
    EXPECT_EQ("RG0 RAID5 LD0, scRG0 RAID0 LD3", groupsNow());
    does("-lddel", "3,0\ny\ny\n", "LD(Logical Drive) 0,3 has been deleted.\n", "");
    for (unsigned slot = 0; slot < 12; ++slot)
        EXPECT_NE(std::string::npos, drive(slot).find("Unconfig GOOD")) << drive(slot);
    const std::string state = readFile(box.root() / "state.json");
    for (const char* key : {"\"arrays\"", "\"lds\"", "\"spares\""})
        EXPECT_EQ(std::string::npos, state.find(key)) << "the configuration is empty";
}

} // namespace
} // namespace zebtest
