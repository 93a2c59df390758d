// The recorder between the tool and the library, in every run of the tool, so that the tests of the tool hold it to
// changing nothing.
#pragma once

#include "tests/support/sandbox.h"

namespace zebtest {

enum class Between {
    kNothing,
    kRecorder, ///< each run under zebcli-record
    kReplay, ///< the same, and once more from the recording alone, whose result counts
};

/// What ZEB_TEST_BETWEEN says: "recorder", "replay" or nothing.
Between betweenOfEnvironment();

/// Whether the run is one of the tool as it is installed, for which that can be done.
bool canStandBetween(const RunOptions& options);

/// The same run under a program of the recorder; `before` stands before the tool's command line.
RunOptions runUnder(const char* program, std::vector<std::string> before, RunOptions options);

} // namespace zebtest
