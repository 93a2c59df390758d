// The library, open for the chosen controllers.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zebstat {

/// What is wrong with the text of -a, whatever controllers there are; empty when nothing is.
std::string controllersComplaint(const std::string& text);

/// Opens the library and resolves the controllers; closes it with its end.
class Library {
  public:
    explicit Library(const std::string& controllers);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Why nothing can be asked; empty when it can.
    const std::string& problem() const { return problem_; }
    std::span<const std::uint8_t> controllers() const { return chosen_; }

  private:
    std::string choose(const std::string& controllers);

    std::string problem_;
    std::vector<std::uint8_t> chosen_;
};

} // namespace zebstat
