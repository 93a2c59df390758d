// What the wire tests share: a wrapper's whole conversation as data, and the drive through it.
#pragma once

#include <cctype>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "storelib/dll_mod.h"
#include "storelib/records/physical_drive.h"
#include "tests/support/scripted_library.h"
#include "tests/support/temp_log.h"

namespace zebtest {

/// The targets of the tests: none is the first, and no two numbers are alike.
inline constexpr unsigned char kCont = 1;
inline constexpr std::uint8_t kLd = 0x2B;
inline constexpr std::uint8_t kSlot = 0xC8;
inline constexpr std::uint16_t kDevice = 0x0309;

inline ExpectedRequest request(std::uint8_t type, std::uint8_t cmd, std::uint32_t ref = 0, std::uint32_t size = 0,
                               Bytes answer = {}, std::optional<Bytes> sends = {}) {
    ExpectedRequest wanted{.type = type, .cmd = cmd, .contNo = kCont, .ref = ref, .size = size};
    wanted.answer = std::move(answer);
    wanted.sends = std::move(sends);
    return wanted;
}

/// A request that goes to the library itself.
inline ExpectedRequest direct(std::uint8_t cmd, std::uint32_t size = 0, Bytes answer = {}) {
    ExpectedRequest wanted = request(0x00, cmd, 0, size, std::move(answer), Bytes{});
    wanted.contNo = std::nullopt;
    return wanted;
}

inline ExpectedRequest failing(ExpectedRequest wanted, std::uint32_t status) {
    wanted.answer.clear();
    wanted.status = status;
    return wanted;
}

/// A wrapper as a function of its data, which is that large.
struct Call {
    std::uint32_t size; ///< bytes
    std::function<std::uint32_t(void*)> call;

    std::uint32_t operator()(void* data) const { return call(data); }
};

/// The size of a record, or of a plain number or block that stands for one; nothing for a block of any size.
template <class Record>
inline constexpr std::uint32_t kSizeOf = sizeof(Record);
template <>
inline constexpr std::uint32_t kSizeOf<void> = 0;

template <class Record>
Call on(std::uint32_t (*wrapper)(unsigned char, Record*)) {
    return {kSizeOf<Record>, [=](void* data) { return wrapper(kCont, static_cast<Record*>(data)); }};
}
template <class Arg, class Record>
Call on(std::uint32_t (*wrapper)(unsigned char, Arg, Record*), std::type_identity_t<Arg> arg) {
    return {kSizeOf<Record>, [=](void* data) { return wrapper(kCont, arg, static_cast<Record*>(data)); }};
}

/// A hex dump as TempLog::take shows it, none of its rows left out. The pointer bytes are masked.
inline std::string dumpText(const Bytes& data, std::size_t pointerAt = SIZE_MAX) {
    std::string text = std::string(77, '-') + "\n";
    char part[32];
    for (std::size_t row = 0; row < data.size(); row += 16) {
        std::string hex;
        std::string letters;
        for (std::size_t i = row; i < std::min(row + 16, data.size()); ++i) {
            std::snprintf(part, sizeof part, i >= pointerAt ? "pp " : "%02X ", data[i]);
            hex += part + std::string(i == row + 7 ? " " : "");
            letters += i >= pointerAt ? 'p' : std::isalnum(data[i]) != 0 ? static_cast<char>(data[i]) : '.';
        }
        std::snprintf(part, sizeof part, "%08zX: ", row);
        hex.resize(49, ' ');
        text += part + hex + " " + letters + "\n";
    }
    return text + "\n";
}

/// The line that ends the trace of a request.
inline std::string statusLine(const std::string& func, std::uint32_t status) {
    static const std::map<std::uint32_t, std::string> kTexts{{0x00, "Command was executed successfully"},
                                                             {0x04, "invalid sequence number"},
                                                             {0x0C, "invalid device ID / select-timeout"}};
    char number[32];
    std::snprintf(number, sizeof number, " (rval = 0x%08X)\n", status);
    return (status != 0 ? "!ERR func=" : "func=") + func + ": " + kTexts.at(status) + number;
}

inline std::string requestTrace(const std::string& func, const ExpectedRequest& wanted, std::uint32_t status) {
    _SL_LIB_CMD_PARAM_T header{};
    header.cmdType = wanted.dcmd ? 0x06 : wanted.type;
    header.cmd = wanted.dcmd ? 0x03 : wanted.cmd;
    header.ctrlId = wanted.contNo ? ctrlList.ctrl[*wanted.contNo] : 0;
    header.ref.all = wanted.ref;
    std::copy(wanted.param.begin(), wanted.param.end(), header.param.bytes);
    header.dataSize = wanted.dcmd ? std::uint32_t{sizeof(_SL_DCMD_INPUT_T)} : wanted.size;
    return "func=" + func + ": CmdParam >\n" + dumpText(bytesOf(header), offsetof(_SL_LIB_CMD_PARAM_T, data)) +
           statusLine(func, status);
}

/// One request of a wrapper.
struct Step {
    ExpectedRequest request;
    /// Who tells of its failure: the first with the request, the others without. Empty: nobody.
    std::vector<std::string> reporters;
    std::string before{}; ///< what is left in the log before it is sent
    bool always = false; ///< success is told as well
};

class WireTest : public testing::Test {
  protected:
    /// Calls the wrapper once with every request succeeding and, for each status and each request, once with that one
    /// failing. Each time the requests, the status and the whole trace must be right; `after` looks at the rest.
    void check(
        const std::string& name, const std::vector<Step>& steps, const std::function<std::uint32_t()>& call,
        const std::function<void(bool succeeded)>& after = [](bool) {},
        const std::vector<std::uint32_t>& statuses = {0x0C, 0x04}) {
        run(name, steps, call, after, steps.size(), 0);
        for (std::size_t i = 0; i < steps.size() * statuses.size(); ++i)
            run(name, steps, call, after, i / statuses.size(), statuses[i % statuses.size()]);
    }

    /// Lets the requests of a wrapper succeed and expects no trace.
    void pass(const std::vector<ExpectedRequest>& requests, const std::function<std::uint32_t()>& call) {
        for (const auto& wanted : requests)
            script.expect(wanted);
        EXPECT_EQ(0U, call());
        script.finish();
        EXPECT_EQ("", log.take());
    }

    TempLog log;
    ScriptedLibrary script{{0x11, 0x00A10B22}};

  private:
    void run(const std::string& name, const std::vector<Step>& steps, const std::function<std::uint32_t()>& call,
             const std::function<void(bool)>& after, std::size_t failed, std::uint32_t status) {
        SCOPED_TRACE(name + ", request " + std::to_string(failed + 1) + " fails with " + std::to_string(status));
        std::string trace;
        for (std::size_t i = 0; i < steps.size() && i <= failed; ++i) {
            const auto& [wanted, reporters, before, always] = steps[i];
            trace += before;
            if (i == failed || always)
                for (const auto& func : reporters)
                    trace += func == reporters.front() ? requestTrace(func, wanted, i == failed ? status : 0)
                                                       : statusLine(func, status);
            script.expect(i == failed ? failing(wanted, status) : wanted);
        }
        EXPECT_EQ(status, call());
        script.finish();
        EXPECT_TRUE(sameText(log.take(), trace));
        after(failed == steps.size());
    }
};

/// A disk, or another device, as the PD list holds it.
inline _MR_PD_ADDRESS device(std::uint16_t deviceId, std::uint8_t slotNo, std::uint8_t type = 0) {
    return {deviceId, 0, 0, slotNo, type, 0, {}};
}

inline ExpectedRequest pdList(const std::vector<_MR_PD_ADDRESS>& devices) {
    _MR_PD_LIST list{};
    list.count = static_cast<std::uint32_t>(devices.size());
    std::copy(devices.begin(), devices.end(), list.addr);
    return request(0x01, 0x04, 0, sizeof list, bytesOf(list));
}

} // namespace zebtest
