// A preview changes nothing and lists what the same command changes when it is run.
#include "tests/recorder/recorded.h"

#include "recorder/request.h"
#include "tests/support/paths.h"
#include "tests/support/request_trace.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace zebtest {
namespace {

class Preview : public RecorderTest {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        if (IsSkipped())
            return;
        // One run makes the state that all begin with.
        RunOptions options = tool("built_in", {"-v"});
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        box.run(options);
        before_ = readFile(state());
        ASSERT_FALSE(before_.empty());
    }
    std::filesystem::path state() const { return box.root() / "state.json"; }
    RunOptions onState(const ToolRun& run) const {
        RunOptions options = tool("built_in", run);
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        return options;
    }

    void check(const ToolRun& run);

    std::string before_;
};

zebrec::Request requestOf(const TracedRequest& traced) {
    zebrec::Header header;
    std::memcpy(header.data(), &traced.header, header.size());
    auto data = traced.out;
    data.resize(std::max(data.size(), sizeof(_SL_SCSI_PASSTHRU_T)));
    return zebrec::Request::of(header, data);
}

/// The changing requests of a trace, as a preview lists them but for the controller.
std::vector<std::string> changesOf(const std::string& trace) {
    std::vector<std::string> changes;
    for (const TracedRequest& traced : parseTrace(trace)) {
        const auto request = requestOf(traced);
        if (request.effect() != zebrec::Effect::kChanges)
            continue;
        changes.push_back("held back: " + describe(request, 9));
    }
    return changes;
}

std::vector<std::string> heldBack(std::string err) {
    std::vector<std::string> lines;
    std::istringstream text(err);
    for (std::string line; std::getline(text, line);) {
        const std::size_t number = line.find(": controller ");
        if (line.rfind("held back: ", 0) != 0)
            continue;
        if (number != std::string::npos)
            line[number + std::strlen(": controller ")] = '9';
        lines.push_back(line);
    }
    return lines;
}

/// The requests up to the first that changes something.
std::vector<std::string> askedBeforeChange(const std::string& trace) {
    std::vector<std::string> asked;
    for (const TracedRequest& traced : parseTrace(trace)) {
        if (requestOf(traced).effect() == zebrec::Effect::kChanges)
            break;
        asked.push_back(traced.brief());
    }
    return asked;
}

void Preview::check(const ToolRun& run) {
    SCOPED_TRACE(run.args);
    const std::string before = readFile(state());
    const RunResult previewed = box.run(under("zebcli-preview", {}, onState(run)));
    EXPECT_EQ(readFile(state()), before);
    const RunResult real = box.run(onState(run));
    const auto held = heldBack(previewed.err);
    const auto changed = changesOf(real.trace);
    ASSERT_FALSE(changed.empty()) << real;
    ASSERT_FALSE(held.empty()) << previewed;
    EXPECT_EQ(held.front(), changed.front());
    EXPECT_NE(previewed.err.find("nothing was changed; "), std::string::npos);
    if (previewed.err.find("true up to here") == std::string::npos)
        EXPECT_EQ(held, changed);
    const auto asked = askedBeforeChange(real.trace);
    auto askedInPreview = askedBeforeChange(previewed.trace);
    ASSERT_GE(askedInPreview.size(), asked.size());
    askedInPreview.resize(asked.size());
    EXPECT_EQ(askedInPreview, asked);
}

TEST_F(Preview, OfEveryChangingCommandLeavesTheStateAndListsWhatWouldChange) {
    for (const ToolRun& run : kChangingRuns) {
        check(run);
        writeFile(state(), before_);
    }
}

TEST_F(Preview, SaysTheListInWords) {
    const RunResult result = box.run(under("zebcli-preview", {}, onState({"-pdoffline -pd[252:3] -a0"})));
    EXPECT_EQ(result.err,
              "held back: 02/02 set physical drive offline: controller 0, device id 11, sequence number 13\n"
              "nothing was changed; 1 request was held back\n");
    const RunResult reading = box.run(under("zebcli-preview", {}, onState({"-pdinfo -a0"})));
    EXPECT_EQ(reading.err, "nothing was changed; no request was held back\n");
}

TEST_F(Preview, HandsNothingOnWhenItsProgramCannotBeReached) {
    // As without /proc: the recorder cannot know that this is a preview.
    RunOptions options = onState({"-pdoffline -pd[252:3] -a0"});
    options.env["ZEBREC_PAGE"] = "/proc/self/fd/999";
    options.env["ZEBREC_LIBRARY"] = std::string(paths::libraryDir) + "/libstorelib.so";
    options.libraryDir = std::string(paths::recorderDir) + "/lib/zebcli/recorder";
    const RunResult result = box.run(options);
    EXPECT_EQ(result.out, "Error - Failed to initialize.\n");
    EXPECT_EQ(result.err, "zebrec: the program that started the recorder cannot be reached (is /proc there?); "
                          "no request is handed on\n");
    EXPECT_EQ(readFile(state()), before_);
}

} // namespace
} // namespace zebtest
