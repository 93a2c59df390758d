// An end to waiting for a library that does not answer.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace zebstat {

/// While it lives, a run may take so long; then a thread of its own says the last words and ends the process with
/// kUntold, whatever the library is doing.
class Deadline {
  public:
    Deadline(std::chrono::duration<double> limit, std::function<void()> lastWords);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

  private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
};

} // namespace zebstat
