// The blocks of the creation request that are kept by hand, byte by byte, in tests/command/expected/creation.
#pragma once

#include <string>

namespace zebtest {

/// A block in hexadecimal, by the name of its file.
std::string keptBlock(const std::string& name);

/// The name of a block by what is in it; empty when no such block is kept.
std::string keptBlockOf(const std::string& hex);

} // namespace zebtest
