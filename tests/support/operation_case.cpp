#include "tests/support/operation_case.h"

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <sstream>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"

namespace zebtest {
namespace {

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

template <class Bytes>
std::string hexOfAll(const Bytes& bytes) {
    return toHex({reinterpret_cast<const char*>(std::data(bytes)), std::size(bytes)});
}

std::uint32_t reference(unsigned id, unsigned seqNo) {
    return std::bit_cast<std::uint32_t>(
        wire::_MR_PD_REF{.deviceId = static_cast<std::uint16_t>(id), .seqNo = static_cast<std::uint16_t>(seqNo)});
}

std::string statusText(std::uint32_t status) {
    static const std::map<std::uint32_t, std::string> kTexts{{0x00, "Command was executed successfully"},
                                                             {0x02, "DCMD opcode is invalid"},
                                                             {0x04, "invalid sequence number"},
                                                             {0x0C, "invalid device ID / select-timeout"},
                                                             {0x1B, "LD is not OPTIMAL"},
                                                             {0x1C, "LD Rebuild is in progress"},
                                                             {0x1F, "too many spares assigned"},
                                                             {0x21, "error writing MFC data to SEEPROM"},
                                                             {0x22, "required HW is missing (i.e. Alarm or BBU)"},
                                                             {0x24, "LD drives are not within an enclosure"},
                                                             {0x27, "Patrol Read is disabled"},
                                                             {0x32, "command issues while FW in wrong state"},
                                                             {0x54, "Controller has LD cache pinned"},
                                                             {0x55, "Requested operation is already in progress"},
                                                             {0x58, "No PD is available for patrol read"},
                                                             {0x8023, "Failed to get partition"}};
    return kTexts.at(status);
}

std::string fault(const Wire& wire, const std::string& code, unsigned nth, int ref, const std::string& action) {
    return formatted(R"([{"ctrl": %u, "type": "0x%s", "cmd": "0x%s", )", wire.ctrlId, code.substr(0, 2).c_str(),
                     code.substr(3).c_str()) +
           (nth != 0 ? formatted(R"("nth": %u, )", nth) : "") + (ref >= 0 ? formatted(R"("ref": %d, )", ref) : "") +
           action + "}]";
}

/// As the log shows a message: line breaks as blanks, none at the end.
std::string onOneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// A message that fills its record is cut; a shorter one is not.
bool isLogged(const std::string& got, const std::string& wanted) {
    constexpr std::size_t kShortestCut = 110;
    return got == wanted || (got.size() >= kShortestCut && wanted.starts_with(got));
}

/// Requests up to and with the last one of the snapshot, counted in a run that sends no others. The snapshot of one
/// scenario never changes.
std::size_t snapshotLength(RunOptions options, const std::string& scenario) {
    static std::map<std::string, std::size_t> known;
    const auto found = known.find(scenario);
    if (found != known.end())
        return found->second;
    options.args = {"-h"};
    Sandbox own; // the caller's log is part of what it looks at
    const auto requests = parseTrace(own.run(options).trace);
    return known[scenario] = requests.size() - 1;
}

} // namespace

std::string toHex(std::string_view bytes) {
    std::string text;
    for (const char c : bytes)
        text += formatted("%02x", static_cast<unsigned char>(c));
    return text;
}

Lines sent(const std::string& wrapper, std::uint32_t status) {
    return {traced("func=" + wrapper + ": CmdParam >"),
            traced((status != 0 ? "!ERR func=" : "func=") + wrapper + ": " + statusText(status) +
                   formatted(" (rval = 0x%08X)", status))};
}

Lines operator+(Lines all, const Lines& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::string Wire::request(const char* code, std::uint32_t ref, const std::string& rest) const {
    return formatted("%u %s ref=%08x", ctrlId, code, ref) + rest + "\n";
}

std::string Wire::pdChange(const char* code, unsigned slot, const std::string& rest) const {
    return pdList() + pdList() + pdInfo(slot) + request(code, reference(slot + 8, slot + 10), rest);
}

std::string Wire::ldChange(const char* code, unsigned ld, const std::string& rest) const {
    return ldInfo(ld) + request(code, reference(ld, ld + 32), rest);
}

std::string Wire::dcmd(std::uint32_t opcode, std::uint8_t direction, std::uint32_t size, const std::string& payload,
                       const std::string& rest) const {
    wire::_SL_DCMD_INPUT_T input{};
    input.dataSize = size;
    input.opcode = opcode;
    input.direction = direction;
    const std::string sent = hexOf(input).substr(0, 2 * offsetof(wire::_SL_DCMD_INPUT_T, data));
    return request("06/03", 0, " size=36 out=" + sent + (payload.empty() ? "" : ":" + payload) + rest);
}

std::string Wire::fails(const char* code, std::uint32_t status, unsigned nth, int ref) const {
    return fault(*this, code, nth, ref, formatted(R"("status": %u)", status));
}

std::string Wire::outdates(const char* code, unsigned nth, int ref) const {
    return fault(*this, code, nth, ref, R"("bumpSeq": true)");
}

std::string requestLine(const TracedRequest& request) {
    const auto& header = request.header;
    std::string text = formatted("%u %s", header.ctrlId, request.brief().c_str());
    std::string param = hexOfAll(header.param.bytes);
    param.erase(param.find_last_not_of('0') + 1);
    if (!param.empty())
        text += " param=" + param + (param.size() % 2 != 0 ? "0" : "");
    if (header.dataSize != 0)
        text += formatted(" size=%u", header.dataSize);
    if (request.data.value_or(0) != header.dataSize || (request.data && *request.data == 0))
        text += " with a data pointer that disagrees";
    if (header.reserved0[0] != 0 || header.reserved0[1] != 0)
        text += " with reserved bytes set";
    if (!request.out.empty())
        text += " out=" + hexOfAll(request.out);
    if (!request.payload.empty())
        text += ":" + hexOfAll(request.payload);
    return text + (request.status != 0 ? formatted(" -> 0x%02x", request.status) : "");
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string repeated(std::string_view text, unsigned times) {
    std::string all;
    for (unsigned i = 0; i < times; ++i)
        all += text;
    return all;
}

RunOptions OperationTest::optionsFor(const std::string& scenario, const std::string& args) {
    RunOptions options;
    options.args = words(args);
    options.trace = true;
    if (!scenario.empty()) {
        writeFile(box.root() / "scenario.json", scenario);
        options.env["ZEBSIM_SCENARIO"] = box.root() / "scenario.json";
    }
    return options;
}

std::string OperationTest::requestsAfterSnapshot(const std::string& scenario, const std::string& trace) {
    const std::size_t skipped = snapshotLength(optionsFor(scenario, ""), scenario);
    const auto requests = parseTrace(trace);
    std::string text;
    for (std::size_t i = skipped; i + 1 < requests.size(); ++i)
        text += requestLine(requests[i]) + "\n";
    EXPECT_TRUE(!requests.empty() && requests.back().brief() == "00/09 ref=00000000") << "the library was not closed";
    return text;
}

std::vector<std::string> OperationTest::loggedMessages() const {
    auto messages = LogFile(box.log()).messages();
    if (!messages.empty())
        messages.erase(messages.begin());
    std::erase_if(messages, [](const auto& message) { return message.find(' ') == std::string::npos; });
    return messages;
}

RunResult OperationTest::check(const std::string& scenario, const OperationCase& expected) {
    SCOPED_TRACE("zebcli " + expected.args + (expected.faults.empty() ? "" : " with the faults " + expected.faults) +
                 (expected.input.empty() ? "" : " answered " + expected.input));
    auto options = optionsFor(scenario, expected.args);
    options.input = Input::kPipe;
    options.inputText = expected.input;
    if (!expected.faults.empty())
        options.env["ZEBSIM_FAULTS"] = expected.faults;
    std::filesystem::remove(box.log());
    auto result = box.run(options);
    std::string out;
    std::vector<std::string> log;
    for (const auto& line : expected.lines) {
        out += line.printed ? line.text : "";
        if (line.logged)
            log.push_back(onOneLine(line.text));
    }
    EXPECT_TRUE(sameText(result.out, out)) << result;
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.exitStatus);
    const auto isHandlerTrace = [](const std::string& text) { return text.find("func=CliCmdExec") != text.npos; };
    auto messages = loggedMessages();
    if (std::ranges::none_of(log, isHandlerTrace))
        std::erase_if(messages, isHandlerTrace);
    for (std::size_t i = 0; i < std::min(messages.size(), log.size()); ++i)
        messages[i] = isLogged(messages[i], log[i]) ? log[i] : messages[i];
    EXPECT_EQ(log, messages);
    EXPECT_TRUE(sameText(requestsAfterSnapshot(scenario, result.trace), expected.requests));
    return result;
}

void OperationTest::checkAll(const std::vector<OperationCase>& cases) {
    for (const auto& c : cases)
        check(scenario_, c);
}

void OperationTest::checkTokens(const std::vector<std::string>& refused, const std::string& command) {
    for (const auto& row : refused) {
        const std::size_t arrow = row.find(" -> ");
        check(scenario_, {.args = command + row.substr(0, arrow), .lines = badToken(row.substr(arrow + 4))});
    }
}

} // namespace zebtest
