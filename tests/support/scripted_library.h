// A vendor library in the test's own process that knows beforehand which requests it must get, and takes no other.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <optional>
#include <vector>

#include "storelib/records/request.h"

namespace zebtest {

using Bytes = std::vector<std::uint8_t>;

/// The same bytes for the same seed, without a pattern: a field that nobody copies shows up.
Bytes randomBytes(std::uint32_t seed, std::size_t count);

template <class Record>
Bytes bytesOf(const Record& record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

/// A PD or LD reference as the request's 32-bit number: device or target id below, sequence number above.
constexpr std::uint32_t reference(std::uint16_t id, std::uint16_t seqNo = 0) {
    return id | static_cast<std::uint32_t>(seqNo) << 16;
}

/// What the input record of a controller command must hold besides its data.
struct DcmdInput {
    std::uint32_t opcode = 0;
    std::uint8_t direction = 0;
    std::array<std::uint8_t, 12> mailbox{};
};

/// One request of the script and its answer. What is not stated must be zero in the request; with a size of zero the
/// data pointer must be null. With `dcmd` set, type and command are those of the pass-through, and size, sends and
/// answer are those of the controller command's own data.
struct ExpectedRequest {
    std::uint8_t type = 0;
    std::uint8_t cmd = 0;
    std::optional<std::uint8_t> contNo = 0; ///< nullopt: the request names no controller
    std::uint32_t ref = 0;
    std::array<std::uint8_t, 16> param{};
    std::uint32_t size = 0;
    std::optional<DcmdInput> dcmd{};
    std::optional<Bytes> sends{}; ///< what the data holds when it arrives; zeros behind these bytes
    Bytes answer{}; ///< is put into the data, from answerAt on
    std::size_t answerAt = 0;
    std::uint32_t status = 0;
};

/// Stands in for the loaded library while it lives; one at a time. A request that is unexpected, differs, or is still
/// missing at the end fails the current test with the field, what came and what was wanted.
class ScriptedLibrary {
  public:
    /// Installs itself with these controller list entries.
    explicit ScriptedLibrary(std::vector<std::uint32_t> controllers = {0x00000011, 0x00000022});
    ~ScriptedLibrary();
    ScriptedLibrary(const ScriptedLibrary&) = delete;
    ScriptedLibrary& operator=(const ScriptedLibrary&) = delete;

    /// Appends a request to the script.
    void expect(ExpectedRequest request) { script_.push_back(std::move(request)); }
    /// Fails the current test when requests of the script have not come; the script is then empty.
    void finish();

    void install();
    void uninstall();

  private:
    static std::uint32_t entry(_SL_LIB_CMD_PARAM_T* request);
    std::vector<std::uint32_t> controllers_;
    std::deque<ExpectedRequest> script_;
    std::size_t next_ = 0;
};

} // namespace zebtest
