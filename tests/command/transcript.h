// Runs of the tool kept as text: what is typed, and all that comes of it. The files lie in tests/command/transcripts.
//
//   # ...                    for the reader
//   === NAME                 begins a test; what stands before the first one belongs to all of them
//   scenario NAME            the hardware from here on: a shipped scenario, or JSON in the lines up to an empty one
//   state                    from here on the hardware, now as the scenario has it, keeps what the runs do to it
//   file NAME                in /opt/quorvel/zeb from here on, with the lines behind it ("+ ...", and "++ ..." for one
//                            without a newline); none: it is removed
//   set /POINTER VALUE       in the scenario of the next run only
//   fault {...}              in the next run only
//   < LINE                   an answer in the next run, "<< TEXT" one without its newline; "\r" and "\t" are as in C
//   $ ARGUMENTS              the run. Below it all that came of it: what was printed ("| ", a last line without a
//                            newline "|= "), logged ("~ source: message"), or both ("|~ ", further lines of the same
//                            message "|+ "), an exit status other than 0 ("exit "), what stands on standard error
//                            ("! "), at the system log ("@ "), and the requests behind those of the snapshot ("> ")
//   refused ARGUMENTS -> T   a run that prints and logs that the token T is invalid, and sends nothing
//
// With ZEB_UPDATE_EXPECTED=1 in the environment the results are written into the files, and the tests fail.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace zebtest {

/// One test of a file.
struct Transcript {
    std::string file; ///< its name without the extension
    std::string name;
    std::vector<std::string> common; ///< the lines that belong to all tests of the file
    std::vector<std::string> lines;

    friend void PrintTo(const Transcript& transcript, std::ostream* os) {
        *os << transcript.file << ".txt, " << transcript.name;
    }
};

/// All tests in the order of files and lines.
std::vector<Transcript> readTranscripts();

/// Puts these lines in the place of the test's own.
void rewriteTranscript(const Transcript& transcript, const std::vector<std::string>& lines);

/// Whether a line is a result of the run above it.
bool isResult(const std::string& line);

} // namespace zebtest
