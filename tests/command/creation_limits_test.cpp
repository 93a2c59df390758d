// Creation where everything is full or a lie.
#include <array>
#include <cstring>

#include <gmock/gmock.h>

#include "storelib/records/configuration.h"
#include "storelib/records/physical_drive.h"
#include "tests/support/answers.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr std::uint32_t kAddConfiguration = 0x04020000;

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
        std::string given;
        for (const auto& request : parseTrace(box.run(options).trace)) {
            std::array<_MR_ARRAY, 2> made{};
            const auto dcmd = request.dcmd();
            if (!dcmd || dcmd->opcode != kAddConfiguration ||
                request.payload.size() < sizeof(_MR_CONFIG_DATA) + sizeof made)
                continue;
            std::memcpy(made.data(), &request.payload[sizeof(_MR_CONFIG_DATA)], sizeof made);
            given += number(made[0].arrayRef) + " " + number(made[1].arrayRef);
        }
        return given;
    };
    EXPECT_EQ("0 1", refs(R"({"ref": 2, "drives": [0]})"));
    EXPECT_EQ("3 4", refs(R"({"ref": 0, "drives": [0]}, {"ref": 2, "drives": [1]})"));
}

TEST_F(CreationLimits, TwoHundredAndFiftyFiveDrives) {
    const std::string many = R"({"controllers": [{"maxPds": 255, "drives": [{"repeat": 255}]}]})";
    EXPECT_THAT(run(many, "-ldc -r0[:0,:127,:254]", "y\n"), EndsWith("LD(Logical Drive) 0 has been created.\n"));
    EXPECT_THAT(run(many, "-lde", "1\n1\ny\n"), testing::AllOf(HasSubstr("\nPD254  * -"), HasSubstr(" is over 16.\n"),
                                                               EndsWith("LD(Logical Drive) 0 has been created.\n")));
}

TEST_F(CreationLimits, CountsThatLieAreCut) {
    constexpr char kPlain[] =
        R"({"controllers": [{"id": 3, "maxPds": 4, "drives": [{"repeat": 4}], "arrays": [{"drives": [0, 1]}],
        "lds": [{"level": 1, "spans": [{"blocks": 204800}]}]}]})";
    const auto patched = [](const char* code, std::initializer_list<std::pair<Place, std::uint64_t>> changes) {
        return std::string("[{") + code + patch(changes) + "}]";
    };
    for (const auto& faults :
         {patched(R"("type":1,"cmd":4,)", {{ZEB_AT(_MR_PD_LIST, count), ~0U}}),
          patched(R"("type":1,"cmd":13,)", {{ZEB_AT(_MR_LD_LIST, count), ~0U}}),
          patched(R"("type":4,"cmd":0,)",
                  {{ZEB_AT(_MR_CONFIG_DATA, arrayCount), 0xFFFF}, {ZEB_AT(_MR_CONFIG_DATA, ldCount), 0xFFFF}}),
          patched(R"("type":4,"cmd":0,)", {{ZEB_AT(_MR_ARRAY, numDrives).behind(sizeof(_MR_CONFIG_DATA)), 255}}),
          patched(R"("type":4,"cmd":8,)", {{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 255},
                                           {ZEB_AT(_SL_ARRAY_INFO_T, pdCount), 255},
                                           {ZEB_AT(_SL_ARRAY_INFO_T, freeCount), 255}}),
          patched(R"("type":3,"cmd":0,)",
                  {{ZEB_AT(_MR_LD_INFO, config.numDrives), 255}, {ZEB_AT(_MR_LD_INFO, config.spanDepth), 255}})}) {
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
    const std::string lies = R"([{"type":4,"cmd":8,)" +
                             patch({{ZEB_AT(_SL_ARRAY_INFO_T, freeCount), 3},
                                    {ZEB_AT(_SL_ARRAY_INFO_T, freeSegment[0].startBlock), 100},
                                    {ZEB_AT(_SL_ARRAY_INFO_T, freeSegment[0].size), ~0ULL},
                                    {ZEB_AT(_SL_ARRAY_INFO_T, freeSegment[1]), 0},
                                    {ZEB_AT(_SL_ARRAY_INFO_T, freeSegment[2].startBlock), ~0ULL},
                                    {ZEB_AT(_SL_ARRAY_INFO_T, freeSegment[2].size), 1}}) +
                             "}]";
    const std::string out = run(kPlain, "-ldc -r1[:0,:1]", "n\n", lies);
    EXPECT_THAT(out, HasSubstr(">LD1 (LD_1, 278.874GB, RAID1)\n")) << "584,843,264 less the 128 up to the first stripe";
    EXPECT_THAT(out, HasSubstr("  Free Space     : 0.000GB\n"));
}

} // namespace
} // namespace zebtest
