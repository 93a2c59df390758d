// The command log of a test that runs in the test's own process, in a folder that goes with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "log/raidctl.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"

namespace zebtest {

/// A folder that is removed with the object.
class TempFolder {
  public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "zebtest-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            ADD_FAILURE() << "no temporary folder " << name;
        path_ = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// The log, open while the object lives.
class TempLog {
  public:
    explicit TempLog(unsigned int budget = 2000000) : budget_(budget) { reopen(); }
    ~TempLog() { finContData(); }
    TempLog(const TempLog&) = delete;
    TempLog& operator=(const TempLog&) = delete;

    std::filesystem::path path() const { return folder_.path() / "zebcli.log"; }
    LogFile file() const { return LogFile(path()); }

    /// Closes and opens the log, as the next run of the tool does.
    void reopen() const { EXPECT_EQ(1, initLog(path().c_str(), budget_)); }

    /// What was logged since the last call: the messages, a line each, and below them their dumps, pointers masked.
    std::string take() const {
        EXPECT_TRUE(file().everyLineExact());
        const std::string text = masked(file().masked(), {{"\\[TIME\\] pid=PID( \\w+\\(LINE\\))? ", ""}});
        finContData();
        std::filesystem::remove(path());
        reopen();
        return text;
    }

  private:
    TempFolder folder_;
    unsigned int budget_;
};

} // namespace zebtest
