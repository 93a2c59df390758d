// The file that carries the model from run to run, and the lock that lets one run at a time have it.
#pragma once

#include <optional>
#include <string>

namespace zebsim {

/// A state file under its lock, from construction to destruction.
class StateFile {
  public:
    /// Follows symbolic links to the file itself, then waits for its lock, "<path>.lock". Throws ScenarioError when it
    /// cannot be taken.
    explicit StateFile(std::string path);
    ~StateFile();
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

    /// The file's text; none when there is no such file yet. Throws ScenarioError when it cannot be read.
    std::optional<std::string> load() const;

    /// Replaces the file: written beside it, synced, renamed. False on failure; the old file is whole then.
    bool save(const std::string& text) const;

    /// The file itself, behind any symbolic links.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int lock_ = -1;
};

/// A whole file; none when it does not exist. Throws ScenarioError when it cannot be read.
std::optional<std::string> readFile(const std::string& path);

} // namespace zebsim
