// One run of a command that changes something, held against all that must come of it: what it says, what it logs and
// every byte that it sends after the snapshot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"

namespace zebtest {

/// A piece of what a run leaves, in the order in which it appears.
struct Line {
    bool printed;
    bool logged;
    std::string text; ///< as printed, its newlines included
};
struct Lines : std::vector<Line> {
    using vector::vector;
    Lines(Line line) : vector{std::move(line)} {} // so that lines can be added up
};

inline Line said(std::string text) {
    return {true, false, std::move(text) + "\n"};
}
inline Line error(std::string text) {
    return {true, true, std::move(text) + "\n"};
}
inline Line traced(std::string text) {
    return {false, true, std::move(text)};
}
/// The refusal of an argument.
inline Line badToken(const std::string& token) {
    return error("Error - Invalid input at or near token " + token + ".");
}
inline Line manyControllers() {
    return error("Error - There are multiple RAID controllers. Please set the RAID controller number.");
}
inline Line noController(unsigned contNo) {
    return error("Error - The specified Controller " + std::to_string(contNo) + ": doesn't exist.");
}
/// What a wrapper logs after a request of its own: the request, and the status with its text.
Lines sent(const std::string& wrapper, std::uint32_t status);
Lines operator+(Lines all, const Lines& more);

/// Builds the lines that requests to one controller show as (see requestLine). Drives and LDs have the ids and sequence
/// numbers that the simulator gives unasked: device id slot + 8 and number slot + 10; number LD + 32.
struct Wire {
    unsigned ctrlId;

    std::string request(const char* code, std::uint32_t ref, const std::string& rest = "") const;
    std::string pdList() const { return request("01/04", 0, " size=6152"); }
    std::string pdInfo(unsigned slot, const std::string& rest = "") const {
        return pdList() + request("02/00", slot + 8, " size=512" + rest);
    }
    /// The reads of device id and sequence number, and the change that they are for.
    std::string pdChange(const char* code, unsigned slot, const std::string& rest = "") const;
    std::string ldInfo(unsigned ld) const { return request("03/00", ld, " size=384"); }
    std::string ldChange(const char* code, unsigned ld, const std::string& rest = "") const;
    std::string arrayInfo(unsigned array) const { return request("04/08", array, " size=2368"); }
    /// A controller command; `payload` is what goes out with it, in hexadecimal.
    std::string dcmd(std::uint32_t opcode, std::uint8_t direction, std::uint32_t size, const std::string& payload = "",
                     const std::string& rest = "") const;

    /// Faults for the n-th such request of the run (0: every one), of those with the reference when one is given: it
    /// fails, or the sequence number moves on once it is answered.
    std::string fails(const char* code, std::uint32_t status, unsigned nth = 0, int ref = -1) const;
    std::string outdates(const char* code, unsigned nth, int ref = -1) const;
};

/// One request with every field of its header that is not zero, what goes out with it, and a status other than 0:
/// "3 02/0b ref=002c002a size=33 out=01.. -> 0x1e".
std::string requestLine(const TracedRequest& request);
std::string toHex(std::string_view bytes);
template <class Record>
std::string hexOf(const Record& record) {
    return toHex({reinterpret_cast<const char*>(&record), sizeof record});
}

struct OperationCase {
    std::string args; ///< separated by blanks
    Lines lines = {}; ///< traces by a handler ("func=CliCmdExec...") count only when one is among them
    std::string requests = {};
    std::string faults = {};
    std::string input = {}; ///< standard input, a pipe that ends behind it
};

class OperationTest : public SandboxTest {
  protected:
    /// Runs zebcli on the scenario and compares. Returns the run for more.
    RunResult check(const std::string& scenario, const OperationCase& expected);
    /// The same on the scenario of the fixture.
    void checkAll(const std::vector<OperationCase>& cases);
    /// Each command line ("arguments -> token") is refused with its token before any request.
    void checkTokens(const std::vector<std::string>& refused, const std::string& command = "");
    /// The requests between snapshot and exit.
    std::string requestsAfterSnapshot(const std::string& scenario, const std::string& trace);
    /// What the next run logged, the command line and the entry marks of functions left out.
    std::vector<std::string> loggedMessages() const;
    RunOptions optionsFor(const std::string& scenario, const std::string& args);

    std::string scenario_; ///< of the fixture; empty: the built-in one
};

inline std::string number(unsigned value) {
    return std::to_string(value);
}
std::vector<std::string> words(const std::string& text);
/// The text as many times, for lines that differ in nothing.
std::string repeated(std::string_view text, unsigned times);

} // namespace zebtest
