// What names a machine in a scenario, to be looked for in a recording.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

namespace zebtest {

/// Texts and numbers as they may be found again: numbers in either order of their bytes and as digits.
class Originals {
  public:
    void text(const std::string& text) {
        constexpr std::size_t kTelling = 5; // shorter ones are found everywhere
        if (text.size() >= kTelling)
            found_.insert(text);
    }
    void number(std::uint64_t number);
    void harmless(const std::string& text) { found_.erase(text); }
    /// Those that stand in a text.
    std::string in(const std::string& text) const;

  private:
    std::set<std::string> found_;
};

/// Those of a scenario's text, with what the simulated hardware has by itself.
Originals originalsOf(const std::string& scenario);

/// Every byte of a recording, as it stands and decoded.
std::string everythingIn(const std::filesystem::path& file);

/// The file of "built_in" or of a kept scenario.
std::filesystem::path scenarioFile(const std::string& name);

} // namespace zebtest
