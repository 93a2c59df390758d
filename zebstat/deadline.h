// An end to waiting for a library that does not answer.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace zebstat {

/// While it lives, a run may take so long; then a thread of its own says the last words and ends the process with
/// kUntold, whatever the library is doing.
class Deadline {
  public:
    Deadline(std::chrono::duration<double> limit, std::function<void()> lastWords);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    /// Why nothing watches over the run; empty when something does.
    const std::string& problem() const { return problem_; }

  private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
    std::string problem_;
};

} // namespace zebstat
