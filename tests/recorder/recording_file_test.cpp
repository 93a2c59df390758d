// What is no recording is refused with the place and the reason, by every program that reads one.
#include "tests/recorder/recorded.h"

#include "recorder/hex.h"
#include "recorder/recording.h"
#include "recorder/show.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <sstream>

namespace zebtest {
namespace {

const std::string kHead = zebrec::writeHead({"t", "", "now", true}) + "\n";
const std::string kLine = R"({"n":1,"us":5,"type":1,"code":4,"header":"0104[30]","in":"ff","status":0})"
                          "\n";

TEST(RecordingFile, BadOnesAreRefusedAtTheirPlace) {
    struct Case {
        std::string text;
        std::string reason;
    };
    const Case cases[] = {
        {"", "line 0: the file is empty"},
        {"hello\n", "line 1: this is no recording"},
        {"{}\n", "line 1: this is no recording"},
        {"[1]\n", "line 1: this is no recording"},
        {R"({"format":"zebrec","version":2})"
         "\n",
         "line 1: a recording of version 2, this program reads version 1"},
        {kHead + "nonsense\n" + kLine, "line 2: damaged"},
        {kHead + "7\n", "line 2: no object"},
        {kHead + R"({"n":1,"us":1,"type":300,"code":0,"header":"[32]","status":0})"
                 "\n",
         "line 2: no number \"type\" from 0 to 255"},
        {kHead + R"({"n":1,"us":1,"type":1,"code":4,"header":"0104[31]","status":0})"
                 "\n",
         "line 2: \"header\" is not the 32 bytes of this type and code"},
        {kHead + R"({"n":1,"us":1,"type":1,"code":4,"header":"0104[30]","in":"xy","status":0})"
                 "\n",
         "line 2: \"in\" is no hexadecimal text"},
        {kHead + R"({"n":2,"us":1,"type":1,"code":4,"header":"0104[30]","in":1,"status":0})"
                 "\n",
         "line 2: names line 1, which holds no answer"},
    };
    for (const Case& one : cases) {
        std::string reason;
        EXPECT_FALSE(zebrec::readRecording(one.text, reason)) << one.text;
        EXPECT_EQ(reason, one.reason);
    }
}

TEST(RecordingFile, ACutLastLineIsPassedOver) {
    for (std::size_t cut = 1; cut < kLine.size(); ++cut) {
        std::string reason;
        const auto read = zebrec::readRecording(kHead + kLine + kLine.substr(0, cut), reason);
        ASSERT_TRUE(read) << cut << ": " << reason;
        EXPECT_EQ(read->lines.size(), 1U);
        EXPECT_TRUE(read->cut);
    }
}

TEST(RecordingFile, BytesComeBackFromTheirText) {
    zebrec::Bytes bytes;
    for (unsigned i = 0; i < 3000; ++i)
        bytes.push_back(static_cast<std::uint8_t>(i % 7 < 2 || i % 100 > 80 ? 0 : i));
    EXPECT_EQ(zebrec::bytesOfHex(zebrec::hexOf(bytes), bytes.size()), bytes);
    for (const char* bad : {"0", "[", "[5", "[]", "[-1]", "[99999999999999999999999]", "[3001]", "0g", "AA"})
        EXPECT_FALSE(zebrec::bytesOfHex(bad, bytes.size())) << bad;
}

TEST(RecordingFile, TheWorkedExampleOfTheDocumentIsTrue) {
    const std::string document = readFile(std::filesystem::path(paths::sourceDir) / "doc/recording_format.md");
    std::string text;
    std::string shown;
    bool inJson = false;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("```", 0) == 0)
            inJson = line == "```json";
        else if (inJson)
            text += line + "\n";
        else if (line.rfind("4  ", 0) == 0)
            shown = line + "\n";
    std::string reason;
    const auto read = zebrec::readRecording(text, reason);
    ASSERT_TRUE(read) << reason;
    ASSERT_EQ(read->lines.size(), 4U);
    EXPECT_EQ(read->answerOf(read->lines[0].in, false)->size(), sizeof(_SL_CTRL_LIST_T));
    const auto* enclosures = read->answerOf(read->lines[2].in, false);
    ASSERT_TRUE(enclosures);
    EXPECT_EQ(*enclosures, read->lines[1].in->bytes);
    EXPECT_EQ(enclosures->size(), 4616U);
    // What the writer makes of it is the same text.
    std::string written;
    for (const auto& line : read->lines)
        written += zebrec::writeLine(line);
    EXPECT_EQ(written, text.substr(text.find('\n') + 1));
    EXPECT_NE(zebrec::showRecording(*read).find(shown), std::string::npos) << shown;
    EXPECT_FALSE(shown.empty());
}

class RecordingPrograms : public RecorderTest {};

TEST_F(RecordingPrograms, SayOneLineAboutAFileThatIsNone) {
    writeFile(recording(), "nothing\n");
    for (const std::string program : {"zebcli-replay", "zebcli-record"}) {
        RunOptions options;
        options.program = std::filesystem::path(paths::recorderDir) / "sbin" / program;
        options.args = program == "zebcli-record" ? std::vector<std::string>{"--show", recording()}
                                                  : std::vector<std::string>{recording(), "--", "true"};
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 3);
        EXPECT_EQ(result.err, program + ": " + recording().string() + ": line 1: this is no recording\n");
    }
}

TEST_F(RecordingPrograms, NameWhatWasNeverRecorded) {
    record(tool("built_in", {"-pdinfo -a0"}));
    const RunResult result = replay(tool("built_in", {"-ctrlinfo -a0"}));
    EXPECT_EQ(result.err, "never recorded: 01/01 read controller properties: controller 0\n");
}

TEST_F(RecordingPrograms, ShowSaysARequestInWords) {
    record(tool("built_in", {"-pdoffline -pd[252:3] -a0"}));
    RunOptions options;
    options.program = std::filesystem::path(paths::recorderDir) / "sbin/zebcli-record";
    options.args = {"--show", recording()};
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_NE(result.out.find("  02/02 set physical drive offline: controller 0, device id 11, sequence number 13, "
                              "changes -> ok, "),
              std::string::npos)
        << result.out;
}

} // namespace
} // namespace zebtest
