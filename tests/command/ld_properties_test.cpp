// LD settings where a group lies about its LDs. The rest is in transcripts/ld_properties.txt.
#include "storelib/records/configuration.h"
#include "tests/support/answers.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

using LdProperties = OperationTest;

TEST_F(LdProperties, OnlyLdsOfTheControllerAreMembersOfAGroup) {
    constexpr char kTwoLds[] = R"({"controllers": [{"drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}], "lds":
        [{"level": 1, "spans": [{"blocks": 1000000}]}, {"level": 1, "spans": [{"startBlock": 1000000}]}]}]})";
    constexpr char kGroup[] =
        "Information - Apply the same settings for all the LDs(Logical Drives) of the same RAID Group.\n";
    constexpr char kFailed[] = "Error - Controller[0] Failed to change LD(Logical Drive) 0 Settings.\n";
    const auto ld = [](std::size_t place) {
        return ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[0]).behind(place * sizeof(_SL_ARRAY_INFO_T::ldTargetId[0]));
    };
    const struct {
        std::string group;
        std::string says;
        std::vector<unsigned> written;
    } cases[] = {
        {patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 255}, {ld(2), 200}, {ld(3), 63}, {ld(4), 64}, {ld(5), 255}}),
         std::string(kGroup) +
             "Information - Controller[0] LD(Logical Drive) Settings have been changed on LD(Logical Drive) 0,1.\n",
         {0, 1}},
        {patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 0}}), kFailed, {}},
        {patch({{ld(0), 1}, {ld(1), 1}}), std::string(kGroup) + kFailed, {}}};
    for (const auto& c : cases) {
        auto options = optionsFor(kTwoLds, "-ldsetprop -ra -L0");
        options.env["ZEBSIM_FAULTS"] = R"([{"type":4,"cmd":8,"from":2,)" + c.group + "}]";
        const auto result = box.run(options);
        EXPECT_EQ(c.says, result.out);
        std::vector<unsigned> written;
        for (const auto& request : parseTrace(result.trace))
            if (request.header.cmdType == 0x03 && request.header.cmd == 0x02)
                written.push_back(request.header.ref.ldRef.targetId);
        EXPECT_EQ(c.written, written);
    }
}

} // namespace
} // namespace zebtest
