// What the programs of the recorder have in common: their arguments, their refusals and their end.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zebrec {

/// Status of a program that could not do its work.
inline constexpr int kCannotStart = 3;

/// Says one line on standard error, with the program's name before it, and returns kCannotStart.
int refuse(const std::string& program, const std::string& message);

/// Runs what a program does, and returns its status. What is thrown ends it with one line and kCannotStart.
int runProgram(const char* program, const std::function<int()>& run);

/// Says what is to be said when the command has ended; its status stays the same when there is no memory for that.
void sayAtEnd(const char* program, const std::function<void()>& say);

/// The options of a command line up to "--" or the first word that is no option.
struct Arguments {
    std::map<std::string, std::string> options; ///< those without a value have an empty one
    std::vector<std::string> words; ///< before "--"
    std::vector<std::string> command; ///< behind "--"
    std::string error; ///< not empty: what is wrong

    bool has(const char* option) const { return options.count(option) != 0; }
    /// What stands behind an option, or nothing without it.
    std::optional<std::string> value(const char* option) const;
};

/// `known` says of each option whether it takes a value.
Arguments parseArguments(int argc, char** argv, const std::map<std::string, bool>& known);

} // namespace zebrec
