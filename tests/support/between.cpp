#include "tests/support/between.h"

#include "tests/support/paths.h"

#include <cstdlib>
#include <string_view>

namespace fs = std::filesystem;

namespace zebtest {

namespace {

bool released() {
    return *paths::releaseZebcli != '\0';
}

/// Puts back what a folder held.
class KeptFolder {
  public:
    KeptFolder(fs::path folder, fs::path copy) : folder_(std::move(folder)), copy_(std::move(copy)) {
        fs::copy(folder_, copy_, kAll);
    }
    ~KeptFolder() {
        std::error_code ignored;
        fs::remove_all(copy_, ignored);
    }
    KeptFolder(const KeptFolder&) = delete;
    KeptFolder& operator=(const KeptFolder&) = delete;

    /// The folder itself stays, as it may be mounted elsewhere.
    void putBack() const {
        for (const auto& entry : fs::directory_iterator(folder_))
            fs::remove_all(entry.path());
        fs::copy(copy_, folder_, kAll);
    }

  private:
    static constexpr auto kAll = fs::copy_options::recursive | fs::copy_options::copy_symlinks;
    fs::path folder_;
    fs::path copy_;
};

} // namespace

Between betweenOfEnvironment() {
    const char* text = std::getenv("ZEB_TEST_BETWEEN");
    const std::string_view what = text != nullptr ? text : "";
    if (what == "recorder")
        return Between::kRecorder;
    return what == "replay" ? Between::kReplay : Between::kNothing;
}

bool canStandBetween(const RunOptions& options) {
    return options.program.empty() && options.argv0 == "zebcli" && options.uid == 0 && !options.libraryDir &&
           !options.fileSizeLimit && !options.env.contains("LD_PRELOAD");
}

RunOptions runUnder(const char* program, std::vector<std::string> before, RunOptions options) {
    before.insert(before.end(), {"--", "zebcli"});
    before.insert(before.end(), options.args.begin(), options.args.end());
    options.args = std::move(before);
    options.argv0 = program;
    options.program = fs::path(released() ? paths::releaseRecorderDir : paths::recorderDir) / "sbin" / program;
    if (released())
        options.libraryDir = paths::releaseLibraryDir;
    return options;
}

RunResult Sandbox::run(const RunOptions& options) {
    const Between between = betweenOfEnvironment();
    if (between == Between::kNothing || !canStandBetween(options))
        return runAlone(options);
    if (const fs::path tool = bin() / "zebcli"; !fs::exists(tool))
        fs::create_symlink(released() ? paths::releaseZebcli : paths::zebcli, tool);
    const fs::path recording = root_ / "recording.between";
    const KeptFolder before(opt(), root_ / "opt.before");
    RunResult result = runAlone(runUnder("zebcli-record", {recording, "--no-redact"}, options));
    if (between == Between::kReplay && fs::exists(recording)) {
        before.putBack();
        result = runAlone(runUnder("zebcli-replay", {recording}, options));
    }
    fs::remove(recording);
    constexpr int kSignalled = 128;
    if (result.exitStatus > kSignalled && result.exitStatus <= kSignalled + 64) {
        result.signal = result.exitStatus - kSignalled;
        result.exitStatus = -1;
    }
    return result;
}

} // namespace zebtest
