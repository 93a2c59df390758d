// The document: of every scenario held, key by key, against what the scenario file says; of every request failing in
// turn against the schema.
#include "tests/support/expected.h"
#include "tests/support/request_trace.h"
#include "tests/zebstat/zebstat_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <set>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

/// What may be sent: reading requests, initialisation and exit. Of the pass-throughs a controller command is told by
/// its opcode, a SCSI command by the first byte of its CDB.
const std::set<std::array<std::uint32_t, 3>> kMayBeSent{
    {0x00, 0x00, 0},          {0x00, 0x04, 0},          {0x00, 0x08, 0},          {0x00, 0x09, 0},    {0x01, 0x00, 0},
    {0x01, 0x01, 0},          {0x01, 0x04, 0},          {0x01, 0x05, 0},          {0x01, 0x0B, 0},    {0x01, 0x0C, 0},
    {0x01, 0x0D, 0},          {0x01, 0x0F, 0},          {0x01, 0x13, 0},          {0x02, 0x00, 0},    {0x03, 0x00, 0},
    {0x04, 0x00, 0},          {0x04, 0x08, 0},          {0x05, 0x00, 0},          {0x05, 0x02, 0},    {0x05, 0x04, 0},
    {0x06, 0x03, 0x01080201}, {0x06, 0x03, 0x010E0201}, {0x06, 0x03, 0x07030000}, {0x06, 0x00, 0x4D}, {0x08, 0x00, 0},
    {0x08, 0x05, 0}};

std::array<std::uint32_t, 3> codeOf(const TracedRequest& request) {
    std::uint32_t further = 0;
    if (const auto dcmd = request.dcmd())
        further = dcmd->opcode;
    else if (const auto scsi = request.scsi())
        further = scsi->cdb[0];
    return {request.header.cmdType, request.header.cmd, further};
}

/// Nothing but reading requests, and no two alike.
void checkRequests(const std::string& trace) {
    std::set<std::string> seen;
    for (const TracedRequest& request : parseTrace(trace)) {
        EXPECT_TRUE(kMayBeSent.contains(codeOf(request))) << request.brief();
        std::string whole(reinterpret_cast<const char*>(&request.header), offsetof(_SL_LIB_CMD_PARAM_T, data));
        whole.append(request.out.begin(), request.out.end());
        EXPECT_TRUE(seen.insert(whole).second) << "asked twice: " << request.brief();
    }
}

/// The findings are sentences about the right controller; the worst stand first.
void checkFindings(const Json& findings) {
    bool warned = false;
    for (const Json& finding : findings) {
        const std::string text = finding["text"];
        if (finding["controller"].is_number())
            EXPECT_TRUE(text.starts_with("controller " + finding["controller"].dump() + ": ")) << text;
        EXPECT_FALSE(warned && finding["severity"] == "critical") << text;
        warned = warned || finding["severity"] == "warning";
    }
}

int statusFor(const Json& document) {
    if (document["health"] == "critical")
        return 2;
    return !document["complete"].get<bool>() ? 4 : document["health"] == "warning" ? 1 : 0;
}

class Documents : public SandboxTest, public testing::WithParamInterface<std::string> {};

TEST_P(Documents, TellWhatTheScenarioSays) {
    RunOptions options = zebstatRun("json", GetParam());
    options.trace = true;
    const RunResult result = box.run(options);
    if (!isServed(GetParam())) {
        EXPECT_EQ(result.exitStatus, 3) << result;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.starts_with("zebstat: ")) << result.err;
        return;
    }
    EXPECT_EQ(result.err, "");
    const Json document = Json::parse(result.out);
    const Json wanted = expectedDocument(GetParam());
    EXPECT_EQ(differences(document, wanted), "");
    checkFindings(document["findings"]);
    EXPECT_EQ(document["complete"].get<bool>(), wanted["errors"].empty());
    EXPECT_EQ(document["health"], document["findings"].empty() ? Json("ok") : document["findings"][0]["severity"]);
    EXPECT_EQ(result.exitStatus, statusFor(document)) << result;
    checkRequests(result.trace);
    EXPECT_FALSE(fs::exists(box.log())) << "a command log was opened";
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Documents, testing::ValuesIn(scenarioNames()),
                         [](const auto& scenario) { return scenario.param; });

class DocumentForm : public SandboxTest {};

TEST_F(DocumentForm, IsAsKept) {
    for (const std::string scenario : {"built_in", "maximum_fill"}) {
        const RunResult result = box.run(zebstatRun("json --pretty", scenario));
        const std::string text = masked(result.out, {{R"("host": \{[^}]*\})", R"("host": {})"}});
        EXPECT_TRUE(matchesFile(fs::path(paths::zebstatExpectedDir) / (scenario + ".json"), text));
        const RunResult plain = box.run(zebstatRun("json", scenario));
        EXPECT_EQ(std::ranges::count(plain.out, '\n'), 1);
    }
}

/// Hardware that is arranged as no kept scenario has it: device ids against the slots, a mirror of four drives with
/// room behind its LD.
TEST_F(DocumentForm, TellsAnUnusualArrangement) {
    const Json scenario = Json::parse(R"({"controllers": [{
        "drives": [{"deviceId": 30}, {"deviceId": 29}, {"deviceId": 28}, {"deviceId": 27}],
        "arrays": [{"drives": [0, 1, 2, 3]}],
        "lds": [{"level": 1, "spans": [{"blocks": 2097152}],
                 "name": "\u00ed\u00a0\u0080\u00e0\u0080\u0080\u00f4\u0090\u0080\u0080\u00f0\u008f\u00bf\u00bfA"}]}]})");
    const Json wanted = expectedDocument(scenario);
    EXPECT_EQ(differences(Json::parse(box.run(zebstatRunOn(box, scenario, "json")).out), wanted), "");
    const std::string name = wanted["controllers"][0]["logical_drives"][0]["name"];
    EXPECT_THAT(box.run(zebstatRunOn(box, scenario, "metrics")).out, testing::HasSubstr("name=\"" + name + "\""));
}

/// What a person reads of each finding.
TEST_F(DocumentForm, FindingsAreSaidAsKept) {
    const std::pair<const char*, const char*> runs[] = {
        {"words_of_controllers", "[]"},
        {"words_of_drives", "[]"},
        {"drive_missing", "[]"},
        {"drive_rebuilding", "[]"},
        {"ld_partially_degraded", "[]"},
        {"backup_unit_dead", "[]"},
        {"built_in", R"([{"type":1,"cmd":0,"ctrl":2,"status":"0x32"}])"},
        {"built_in", R"([{"type":8,"cmd":5,"status":"0x09"},{"type":2,"cmd":0,"ref":9,"status":"0x0C"}])"},
        {"built_in", R"([{"type":0,"cmd":4,"status":"0x03"},{"type":5,"cmd":0,"from":1,"status":"0x22"}])"}};
    std::string text;
    for (const auto& [scenario, faults] : runs) {
        RunOptions options = quickRun("json", scenario);
        options.env["ZEBSIM_FAULTS"] = faults;
        text += std::string(scenario) + " " + faults + "\n";
        const Json document = Json::parse(box.run(options).out);
        for (const Json& finding : document["findings"])
            text += "  " + finding["severity"].get<std::string>() + " " + finding["code"].get<std::string>() + ": " +
                    finding["text"].get<std::string>() + "\n";
    }
    EXPECT_TRUE(matchesFile(fs::path(paths::zebstatExpectedDir) / "findings.txt", text));
}

/// A request that fails marks its object and takes nothing else away.
TEST_F(DocumentForm, AFailureIsMarkedWhereItBelongs) {
    const struct {
        const char* fault;
        const char* object; ///< pointer to what carries the error; empty: nothing does
        std::vector<const char*> lost; ///< what is null because of it
        const char* finding;
    } cases[] = {
        {R"("type":1,"cmd":0,"ctrl":2)",
         "/controllers/0",
         {"/controllers/0/pci", "/controllers/0/physical_drives"},
         "controller_unreadable"},
        {R"("type":1,"cmd":11,"ctrl":2)", "", {"/controllers/0/pci/address"}, "unreadable"},
        {R"("type":1,"cmd":4,"ctrl":2)", "", {"/controllers/0/physical_drives"}, "unreadable"},
        {R"("type":1,"cmd":13,"ctrl":2)", "", {"/controllers/0/logical_drives"}, "unreadable"},
        {R"("type":4,"cmd":0,"ctrl":2)",
         "",
         {"/controllers/0/raid_groups", "/controllers/0/logical_drives/0/raid_group"},
         "unreadable"},
        {R"("type":2,"cmd":0,"ctrl":2,"ref":9)",
         "/controllers/0/physical_drives/1",
         {"/controllers/0/physical_drives/1/state"},
         "unreadable"},
        {R"("type":3,"cmd":0,"ctrl":2,"ref":1)",
         "/controllers/0/logical_drives/1",
         {"/controllers/0/logical_drives/1/write_policy"},
         "unreadable"},
        {R"("type":4,"cmd":8,"ctrl":2,"ref":1)", "", {"/controllers/0/raid_groups/1/free_segments"}, "unreadable"},
        {R"("type":5,"cmd":2)", "/controllers/0/cache_backup", {"/controllers/0/cache_backup/serial"}, "unreadable"},
        {R"("type":8,"cmd":0)",
         "/controllers/0/enclosures/0",
         {"/controllers/0/enclosures/0/vendor"},
         "enclosure_unreadable"},
        {R"("type":0,"cmd":4)", "", {"/program/library_version"}, "unreadable"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        RunOptions options = zebstatRun("json");
        options.env["ZEBSIM_FAULTS"] = "[{" + std::string(c.fault) + R"(,"status":"0x32"}])";
        const Json document = Json::parse(box.run(options).out);
        const Json failure{{"status", 0x32}, {"text", "command issues while FW in wrong state"}};
        if (*c.object != '\0')
            EXPECT_EQ(document[Json::json_pointer(c.object)]["error"], failure);
        for (const char* lost : c.lost)
            EXPECT_TRUE(document[Json::json_pointer(lost)].is_null()) << lost;
        EXPECT_EQ(document["errors"].size(), 1U);
        EXPECT_TRUE(std::ranges::any_of(document["findings"], [&](const Json& finding) {
            return finding["code"] == c.finding;
        })) << document["findings"];
    }
}

/// A drive that refuses a page tells no temperature; that is no error.
TEST_F(DocumentForm, ADriveMayRefuseItsLogPages) {
    RunOptions options = zebstatRun("json");
    options.env["ZEBSIM_FAULTS"] = R"([{"type":6,"cmd":0,"status":"0x2D"}])";
    const Json document = Json::parse(box.run(options).out);
    EXPECT_EQ(document["errors"], Json::array());
    for (const Json& drive : document["controllers"][0]["physical_drives"])
        EXPECT_TRUE(drive["temperature_celsius"].is_null());
}

} // namespace
} // namespace zebtest
