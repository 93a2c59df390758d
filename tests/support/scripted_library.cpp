#include "tests/support/scripted_library.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "storelib/dll_mod.h"

namespace zebtest {
namespace {

/// What a library says to a command that it does not know.
constexpr std::uint32_t kUnknownCommand = 0x800E;
constexpr std::uint8_t kDcmdType = 0x06;
constexpr std::uint8_t kDcmdCmd = 0x03;

ScriptedLibrary* installed = nullptr;

std::string hex(const std::uint8_t* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        std::array<char, 4> byte{};
        std::snprintf(byte.data(), byte.size(), "%02x ", bytes[i]);
        text += byte.data();
    }
    return text;
}

std::string describe(std::size_t index, std::uint8_t type, std::uint8_t cmd) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "request %zu (%02x/%02x)", index + 1, type, cmd);
    return text.data();
}

/// Compares the fields of one request with the script's.
struct Comparison {
    std::string name;

    void check(const char* field, std::uint64_t got, std::uint64_t wanted) const {
        if (got != wanted)
            ADD_FAILURE() << name << ": " << field << std::hex << ": got 0x" << got << ", wanted 0x" << wanted;
    }

    void checkBytes(const char* field, const std::uint8_t* got, const std::uint8_t* wanted, std::size_t count) const {
        const auto same = static_cast<std::size_t>(std::mismatch(got, got + count, wanted).first - got);
        if (same != count) {
            const std::size_t shown = std::min<std::size_t>(count - same, 16);
            ADD_FAILURE() << name << ": " << field << " from byte " << same << " on: got " << hex(got + same, shown)
                          << ", wanted " << hex(wanted + same, shown);
        }
    }

    /// The data that the header names, or null when its size is not the wanted one.
    std::uint8_t* checkHeader(const _SL_LIB_CMD_PARAM_T& got, const ExpectedRequest& wanted) const {
        const std::uint32_t size = wanted.dcmd ? std::uint32_t{sizeof(_SL_DCMD_INPUT_T)} : wanted.size;
        check("command type", got.cmdType, wanted.dcmd ? kDcmdType : wanted.type);
        check("command", got.cmd, wanted.dcmd ? kDcmdCmd : wanted.cmd);
        check("reserved bytes", got.reserved0[0] | got.reserved0[1], 0);
        check("controller id", got.ctrlId, wanted.contNo ? ctrlList.ctrl[*wanted.contNo] : 0);
        check("reference", got.ref.all, wanted.ref);
        checkBytes("parameters", got.param.bytes, wanted.param.data(), wanted.param.size());
        check("data size", got.dataSize, size);
        check("data pointer is set", got.data != nullptr, size != 0);
        return got.dataSize == size ? static_cast<std::uint8_t*>(got.data) : nullptr;
    }

    std::uint8_t* checkDcmd(const std::uint8_t* data, const ExpectedRequest& wanted) const {
        _SL_DCMD_INPUT_T got{};
        std::memcpy(&got, data, sizeof got);
        check("DCMD opcode", got.opcode, wanted.dcmd->opcode);
        check("DCMD direction", got.direction, wanted.dcmd->direction);
        check("DCMD data size", got.dataSize, wanted.size);
        const std::uint8_t noBytes[sizeof got.reserved] = {};
        checkBytes("DCMD reserved bytes", got.reserved, noBytes, sizeof noBytes);
        checkBytes("DCMD mailbox", got.mailbox, wanted.dcmd->mailbox.data(), wanted.dcmd->mailbox.size());
        check("DCMD data pointer is set", got.data != nullptr, wanted.size != 0);
        return got.dataSize == wanted.size ? static_cast<std::uint8_t*>(got.data) : nullptr;
    }

    void exchange(std::uint8_t* data, const ExpectedRequest& wanted) const {
        if (wanted.sends) {
            Bytes bytes = *wanted.sends;
            check("size of the stated bytes", std::max<std::size_t>(bytes.size(), wanted.size), wanted.size);
            bytes.resize(wanted.size);
            checkBytes("outgoing data", data, bytes.data(), bytes.size());
        }
        const std::size_t end = wanted.answerAt + wanted.answer.size();
        check("end of the answer", std::max<std::size_t>(end, wanted.size), wanted.size);
        if (end <= wanted.size)
            std::ranges::copy(wanted.answer, data + wanted.answerAt);
    }
};

} // namespace

Bytes randomBytes(std::uint32_t seed, std::size_t count) {
    std::mt19937 engine(seed);
    Bytes bytes(count);
    std::ranges::generate(bytes, [&engine] { return static_cast<std::uint8_t>(engine() >> 24); });
    return bytes;
}

ScriptedLibrary::ScriptedLibrary(std::vector<std::uint32_t> controllers) : controllers_(std::move(controllers)) {
    install();
}

ScriptedLibrary::~ScriptedLibrary() {
    finish();
    uninstall();
}

void ScriptedLibrary::install() {
    installed = this;
    libMRPresent = true;
    pfnProcessLibCommandMR = &ScriptedLibrary::entry;
    ctrlList = {};
    ctrlList.count = static_cast<std::uint16_t>(std::min<std::size_t>(controllers_.size(), std::size(ctrlList.ctrl)));
    std::copy_n(controllers_.begin(), ctrlList.count, ctrlList.ctrl);
}

void ScriptedLibrary::uninstall() {
    installed = nullptr;
    libMRPresent = false;
    pfnProcessLibCommandMR = nullptr;
    ctrlList = {};
}

void ScriptedLibrary::finish() {
    for (; next_ < script_.size(); ++next_) {
        const ExpectedRequest& missing = script_[next_];
        ADD_FAILURE() << describe(next_, missing.dcmd ? kDcmdType : missing.type, missing.dcmd ? kDcmdCmd : missing.cmd)
                      << " has not come";
    }
    script_.clear();
    next_ = 0;
}

std::uint32_t ScriptedLibrary::entry(_SL_LIB_CMD_PARAM_T* request) {
    if (request == nullptr || installed == nullptr) {
        ADD_FAILURE() << (request == nullptr ? "a null request" : "a request to a library that is not there");
        return kUnknownCommand;
    }
    const Comparison comparison{describe(installed->next_, request->cmdType, request->cmd)};
    if (installed->next_ == installed->script_.size()) {
        ADD_FAILURE() << comparison.name << ": unexpected, the script has ended";
        return kUnknownCommand;
    }
    const ExpectedRequest& wanted = installed->script_[installed->next_++];
    std::uint8_t* data = comparison.checkHeader(*request, wanted);
    if (wanted.dcmd && data != nullptr)
        data = comparison.checkDcmd(data, wanted);
    if (data != nullptr)
        comparison.exchange(data, wanted);
    return wanted.status;
}

} // namespace zebtest
