// Where the program's words go: standard output, standard error, a file.
#pragma once

#include <string>
#include <string_view>

namespace zebstat {

/// Says a sentence on standard error, on one line that can be printed to a terminal.
void complain(std::string_view sentence);

/// Writes all of the text to standard output; false, and a complaint, when that failed.
bool writeOutput(std::string_view text);

/// Replaces the file by one with this text, mode 0644: written whole beside it, synced and renamed. No link is followed
/// that stands in a folder which others may write, and what is no regular file is not replaced. Returns what went
/// wrong, empty when nothing did; the old file is whole then.
std::string replaceFile(const std::string& path, std::string_view text);

} // namespace zebstat
