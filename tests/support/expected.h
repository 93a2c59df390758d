// Whole-output comparison, byte for byte, with texts kept in tests/command/expected.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/patterns.h"

namespace zebtest {

/// A text with its control and non-ASCII bytes made visible ("^M", "M-b"), each newline as "$" and a newline.
std::string visible(std::string_view text);

/// Whether two texts are the same; if not, says the first line that differs, made visible, of both.
testing::AssertionResult sameText(std::string_view got, std::string_view wanted);

/// Whether a text is the same as the kept file of that name. With ZEB_UPDATE_EXPECTED=1 in the environment the file is
/// rewritten instead, and the answer is still no, so that an update never passes for a test.
testing::AssertionResult matchesKept(const std::string& name, std::string_view got);
/// The same for a file that lies anywhere.
testing::AssertionResult matchesFile(const std::filesystem::path& path, std::string_view got);

} // namespace zebtest
