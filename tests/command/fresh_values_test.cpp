// What a change is computed from is read right before it, not taken from the snapshot of the start, which may be old by
// the time a question is answered: a first reading that says something else changes nothing.
#include "tests/support/expected.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

// LDs 0 and 1 share an array; drive 3 is lost from LD 2, whose check runs; LD 3 initializes. Drive 8 fits as a spare, 9
// is a global and 10 a dedicated one, 11 is bad.
constexpr char kFreshScenario[] = R"({"controllers": [{"id": 3, "maxPds": 16, "cacheBackup": {},
    "drives": [{"repeat": 3}, {"state": "offline"}, {"repeat": 4}, {}, {}, {}, {"state": "bad"}],
    "arrays": [{"drives": [0, 1]}, {"drives": [2, 3]}, {"drives": [4, 5]}, {"drives": [6, 7]}],
    "lds": [{"name": "ZERO", "level": 1, "spans": [{"blocks": 1000000}], "cachePolicy": "0x13"},
            {"name": "ONE", "level": 1, "spans": [{"startBlock": 1000000}]}, {"level": 1, "spans": [{"array": 1}]},
            {"level": 1, "spans": [{"array": 2}], "init": 50}, {"level": 1, "spans": [{"array": 3}], "check": 50}],
    "spares": [{"drive": 9}, {"drive": 10, "arrays": [0]}]}]})";

constexpr char kCtrlAnswer[] = R"("type": 1, "cmd": 0)";
constexpr char kProperties[] = R"("type": 1, "cmd": 1)";
constexpr char kPd[] = R"("type": 2, "cmd": 0)";
constexpr char kPatrolRead[] = R"("type": 1, "cmd": 15)";
constexpr char kLd[] = R"("type": 3, "cmd": 0)";
constexpr char kFirstLd[] = R"("type": 3, "cmd": 0, "ref": 0)";

struct FreshValues {
    const char* args;
    const char* record; ///< the request whose first readings say something else
    std::vector<const char*> fields; ///< and in which fields, one run each
    unsigned readings = 1;
    const char* decides = record; ///< the request whose last reading the change is computed from
    const char* input = "";
};

const FreshValues kCases[] = {
    {.args = "-ldsetprop -ra -L0 -a0",
     .record = kLd,
     .fields = {R"("name": "OLD")", R"("defaultCachePolicy": 96)", R"("accessPolicy": 2)", R"("diskCachePolicy": 1)",
                R"("currentCachePolicy": 127)", R"("noBgi": 1)", R"("snapshotFlags": 3)", R"("seqNo": 1)",
                R"("cacheCade": 1)"}},
    {.args = "-ldsetprop -ra -L0 -a0",
     .record = kFirstLd,
     .fields = {R"("name": "OLD")", R"("currentCachePolicy": 127)", R"("noBgi": 1)", R"("snapshotFlags": 3)",
                R"("seqNo": 1)"},
     .readings = 2},
    {.args = "-ldsetprop -name NEW -L0 -a0",
     .record = kFirstLd,
     .fields = {R"("defaultCachePolicy": 96)", R"("accessPolicy": 2)", R"("diskCachePolicy": 1)"}},
    {.args = "-ldcc -start -L0,1 -a0", .record = kLd, .fields = {R"("seqNo": 1)"}},
    {.args = "-ldcc -stop -L4 -a0", .record = kLd, .fields = {R"("seqNo": 1)"}},
    {.args = "-ldinit -start -L0,1 -a0", .record = kLd, .fields = {R"("seqNo": 1)"}},
    {.args = "-ldinit -stop -L3 -a0", .record = kLd, .fields = {R"("seqNo": 1)"}},
    {.args = "-pdoffline -pd[:0] -a0", .record = kPd, .fields = {R"("seqNo": 1)"}},
    {.args = "-pdonline -pd[:3] -a0", .record = kPd, .fields = {R"("seqNo": 1)"}},
    {.args = "-pdmakegood -pd[:11] -a0", .record = kPd, .fields = {R"("seqNo": 1)"}},
    {.args = "-pdrbld -start -pd[:3] -a0", .record = kPd, .fields = {R"("fwState": 24)", R"("seqNo": 1)"}},
    {.args = "-pdrbld -start -pd[:3] -a0", .record = kPd, .fields = {R"("seqNo": 1)"}, .readings = 2},
    {.args = "-pdhsp -ghs -pd[:8] -a0",
     .record = kPd,
     .fields = {R"("fwState": 1)", R"("coercedSize": 1000)", R"("seqNo": 1)"},
     .input = "y\n"},
    {.args = "-pdhsp -dhs -pd[:8] -a0",
     .record = kPd,
     .fields = {R"("fwState": 1)", R"("coercedSize": 1000)", R"("seqNo": 1)"},
     .input = "0\n"},
    {.args = "-pdhsp -rmv -nochk -pd[:9] -a0",
     .record = kPd,
     .fields = {R"("fwState": 0)", R"("ddfType": 8)", R"("seqNo": 1)"}},
    {.args = "-pdhsp -rmv -nochk -pd[:10] -a0", .record = kPd, .fields = {R"("ddfType": 12)"}},
    {.args = "-ctrlsetprop -hddcpybkenbl -a0",
     .record = kCtrlAnswer,
     .fields = {R"("rebuildRate": 77)", R"("onOff": 35)"}},
    {.args = "-ctrlsetprop -pdfailenbl -a0", .record = kCtrlAnswer, .fields = {R"("onOff": 1)"}},
    {.args = "-ctrlsetprop -trh -a0",
     .record = kCtrlAnswer,
     .fields = {R"("cacheFlushInterval": 77)", R"("alarmEnable": 7)", R"("disableAutoRebuild": 7)"},
     .decides = kProperties},
    {.args = "-ctrlautorbld -enbl -a0",
     .record = kCtrlAnswer,
     .fields = {R"("rebuildRate": 77)", R"("patrolReadRate": 77)", R"("bgiRate": 77)", R"("ccRate": 77)",
                R"("reconRate": 77)", R"("cacheFlushInterval": 77)", R"("alarmEnable": 7)", R"("onOff": 35)"},
     .decides = kProperties},
    {.args = "-ctrlpr -enblman -a0",
     .record = kPatrolRead,
     .fields = {R"("maxPds": 7)", R"("nextExecution": 7)", R"("executionFrequency": 3600)", R"("clearFrequency": 7)"},
     .input = "y\n"},
    // Read for the plan and for the last look behind the questions; each request takes its numbers from a third
    // reading.
    {.args = "-lddel", .record = kFirstLd, .fields = {R"("seqNo": 1)"}, .readings = 2, .input = "0\ny\ny\n"},
    {.args = "-ldc -r0[:8] -a0", .record = kPd, .fields = {R"("seqNo": 1)"}, .readings = 2, .input = "y\n"},
    {.args = "-lde", .record = kPd, .fields = {R"("seqNo": 1)"}, .readings = 2, .input = "1\n1\ny\n"},
};

class FreshValuesTest : public OperationTest, public testing::WithParamInterface<FreshValues> {
  protected:
    /// What the operator sees and what the library gets.
    std::string outcome(const std::string& faults) {
        auto options = optionsFor(kFreshScenario, GetParam().args);
        options.input = Input::kPipe;
        options.inputText = GetParam().input;
        options.env["ZEBSIM_FAULTS"] = "[" + faults + "]";
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        return result.out + requestsAfterSnapshot(kFreshScenario, result.trace);
    }
};

TEST_P(FreshValuesTest, DecideTheChange) {
    const FreshValues& c = GetParam();
    const std::string undisturbed = outcome("");
    for (const std::string field : c.fields) {
        SCOPED_TRACE(std::string(c.args) + " with " + field + " at first");
        const std::string set = R"(, "fields": {)" + field + "}}";
        std::string atFirst;
        for (unsigned nth = 1; nth <= c.readings; ++nth)
            atFirst +=
                (nth > 1 ? ", {" : "{") + std::string(c.record) + R"(, "perRecord": true, "nth": )" + number(nth) + set;
        EXPECT_TRUE(sameText(outcome(atFirst), undisturbed));
        EXPECT_NE(undisturbed, outcome("{" + std::string(c.decides) + set)) << "the value does not matter";
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, FreshValuesTest, testing::ValuesIn(kCases), [](const auto& test) {
    return masked(test.param.args, {{"[^A-Za-z0-9]+", "_"}}) + "_" + number(static_cast<unsigned>(test.index));
});

} // namespace
} // namespace zebtest
