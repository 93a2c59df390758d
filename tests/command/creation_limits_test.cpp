// Creation where everything is full, in a strange place, or a lie.
#include "tests/support/creation_case.h"

#include <gmock/gmock.h>

namespace zebtest {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

std::string joined(unsigned first, unsigned last, const std::string& item) {
    std::string all;
    for (unsigned i = first; i <= last; ++i) {
        std::string one = item;
        for (std::size_t at = one.find('#'); at != std::string::npos; at = one.find('#'))
            one.replace(at, 1, number(i));
        all += (i == first ? "" : ", ") + one;
    }
    return all;
}

class CreationLimits : public OperationTest {
  protected:
    std::string run(const std::string& scenario, const std::string& args, const std::string& answers,
                    const std::string& faults = "") {
        auto options = optionsFor(scenario, args);
        options.input = Input::kPipe;
        options.inputText = answers;
        if (!faults.empty())
            options.env["ZEBSIM_FAULTS"] = faults;
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        EXPECT_EQ("", result.err);
        return result.out;
    }
};

TEST_F(CreationLimits, TheOnlyFreeLdNumberIsTaken) {
    const std::string full =
        R"({"controllers": [{"maxPds": 3, "drives": [{"repeat": 3}], "arrays": [{"drives": [0]}], "lds": [)" +
        joined(0, 40, R"({"id": #, "spans": [{"startBlock": 1#000, "blocks": 1000}]})") + ", " +
        joined(42, 63, R"({"id": #, "spans": [{"startBlock": 1#000, "blocks": 1000}]})") + "]}]}";
    EXPECT_THAT(run(full, "-ldc -r0[:1]", "y\n"), EndsWith("Controller[0] LD(Logical Drive) 41 has been created.\n"));
    EXPECT_EQ("Error - Controller[0] The number of LDs(Logical Drives) is over 64.\n",
              run(full, "-ldc -r0[:1] -sz1 -sz1", ""));
    EXPECT_EQ("Error - Controller[0] The number of LDs(Logical Drives) is over 64.\n",
              run(full, "-ldc -r0[:0] -sz1 -sz1", ""));
    EXPECT_THAT(run(full, "-lde", "Q\n"), HasSubstr("RAID Level of LD 1\n  1: RAID1  PD  2  Hot Spare 0  278.875 GB\n"
                                                    "  2: RAID0  PD  2  Hot Spare 0  557.750 GB\n"));
}

TEST_F(CreationLimits, HundredAndTwentyEightArraysAreTheLast) {
    const auto arrays = [](unsigned last) {
        return R"({"controllers": [{"maxPds": 140, "drives": [{"repeat": 140}], "arrays": [)" +
               joined(0, last, R"({"ref": #, "drives": [#]})") + "]}]}";
    };
    EXPECT_EQ("Error - Controller[0] The number of RAID Groups is over 128.\n", run(arrays(127), "-ldc -r0[:130]", ""));
    EXPECT_THAT(run(arrays(126), "-ldc -r0[:130]", "y\n"), EndsWith("LD(Logical Drive) 0 has been created.\n"));
    EXPECT_EQ("Error - Controller[0] The number of RAID Groups is over 128.\n",
              run(arrays(126), "-ldc -r10 -array0[:130,:131] -array1[:132,:133]", ""));
}

TEST_F(CreationLimits, SpansOfARaid10TakeArraysInARowWhereThereAreSome) {
    const auto refs = [&](const std::string& arrays) {
        const std::string scenario =
            R"({"controllers": [{"maxPds": 12, "drives": [{"repeat": 12}], "arrays": [)" + arrays + "]}]}";
        auto options = optionsFor(scenario, "-ldc -r10 -array0[:8,:9] -array1[:10,:11]");
        options.input = Input::kPipe;
        options.inputText = "y\n";
        const std::string block = blockOf(box.run(options));
        return block.size() > 662 ? block.substr(84, 4) + " " + block.substr(660, 4) : block;
    };
    EXPECT_EQ("0000 0100", refs(R"({"ref": 2, "drives": [0]})"));
    EXPECT_EQ("0300 0400", refs(R"({"ref": 0, "drives": [0]}, {"ref": 2, "drives": [1]})"));
}

TEST_F(CreationLimits, TwoHundredAndFiftyFiveDrives) {
    const std::string many = R"({"controllers": [{"maxPds": 255, "drives": [{"repeat": 255}]}]})";
    EXPECT_THAT(run(many, "-ldc -r0[:0,:127,:254]", "y\n"), EndsWith("LD(Logical Drive) 0 has been created.\n"));
    EXPECT_THAT(run(many, "-lde", "1\n1\ny\n"), testing::AllOf(HasSubstr("\nPD254  * -"), HasSubstr(" is over 16.\n"),
                                                               EndsWith("LD(Logical Drive) 0 has been created.\n")));
}

TEST_F(CreationLimits, TwoEnclosuresWithTheSameSlots) {
    constexpr char kShared[] =
        R"({"controllers": [{"enclosures": [{"deviceId": 252, "slots": 2}, {"deviceId": 253, "slots": 2}],
        "drives": [{"slot": 1, "enclosure": 252}, {"slot": 1, "enclosure": 253, "deviceId": 77}]}]})";
    for (const char* args : {"-ldc -r0[252:1]", "-ldc -r0[:1]"})
        EXPECT_EQ("Error - Controller[0] PD(Physical Drive) 1 cannot be used: the slot number is not unique.\n",
                  run(kShared, args, ""));
    EXPECT_EQ("Error - Controller[0] The specified Physical Drive 1: doesn't exist.\n",
              run(kShared, "-ldc -r0[253:1]", ""));
}

TEST_F(CreationLimits, OneControllerOfTwoRefusesBoth) {
    constexpr char kTwo[] =
        R"({"controllers": [{"id": 3, "drives": [{"repeat": 2}]}, {"id": 9, "drives": [{}, {"state": "bad"}]}]})";
    check(kTwo,
          {.args = "-ldc -r0[:0,:1] -aAll",
           .lines = error("Error - Controller[1] PD(Physical Drive) 1 cannot be used: the state is Unconfig BAD."),
           .requests = Wire{3}.request("01/00", 0, " size=2048")});
}

TEST_F(CreationLimits, CountsThatLieAreCut) {
    constexpr char kPlain[] =
        R"({"controllers": [{"id": 3, "maxPds": 4, "drives": [{"repeat": 4}], "arrays": [{"drives": [0, 1]}],
        "lds": [{"level": 1, "spans": [{"blocks": 204800}]}]}]})";
    const auto patched = [](const char* code, unsigned offset, const char* hex) {
        return std::string(R"([{"type": )") + std::string(code, 1) + R"(, "cmd": )" + (code + 2) +
               R"(, "patch": [{"offset": )" + number(offset) + R"(, "hex": ")" + hex + R"("}]}])";
    };
    for (const auto& faults :
         {patched("1/4", 4, "ffffffff"), patched("1/13", 0, "ffffffff"), patched("4/0", 4, "ffffffffffffffff"),
          patched("4/8", 2, "ffffff"), patched("3/0", 36, "ffff"), patched("4/0", 40, "ff")}) {
        SCOPED_TRACE(faults);
        for (const char* args : {"-ldc -r0[:2,:3] -sz1", "-ldc -r1[:0,:1] -sz1", "-lde"}) {
            auto options = optionsFor(kPlain, args);
            options.input = Input::kPipe;
            options.inputText = "y\ny\n1\n1\ny\ny\nq\n";
            options.env["ZEBSIM_FAULTS"] = faults;
            EXPECT_EQ(0, box.run(options).exitStatus);
        }
    }
}

TEST_F(CreationLimits, OverlappingAndEmptyFreeSegmentsAreCut) {
    constexpr char kPlain[] =
        R"({"controllers": [{"id": 3, "maxPds": 2, "drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}],
        "lds": [{"level": 1, "spans": [{"blocks": 204800}]}]}]})";
    // 100 blocks into the array and far beyond its end; empty; beyond its end.
    const std::string lies = R"([{"type": 4, "cmd": 8, "patch": [{"offset": 4, "hex": "03"}, {"offset": 336, "hex":
        "6400000000000000ffffffffffffffff00000000000000000000000000000000ffffffffffffff000100000000000000"}]}])";
    const std::string out = run(kPlain, "-ldc -r1[:0,:1]", "n\n", lies);
    EXPECT_THAT(out, HasSubstr(">LD1 (LD_1, 278.874GB, RAID1)\n")) << "584,843,264 less the 128 up to the first stripe";
    EXPECT_THAT(out, HasSubstr("  Free Space     : 0.000GB\n"));
}

} // namespace
} // namespace zebtest
