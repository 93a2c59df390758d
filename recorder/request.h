// One request as it was sent: what of it says whether it changes something, and its description in words.
#pragma once

#include "recorder/request_table.h"
#include "storelib/records/request.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zebrec {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kHeaderSize = sizeof(_SL_LIB_CMD_PARAM_T) - sizeof(void*);
using Header = std::array<std::uint8_t, kHeaderSize>;
inline constexpr std::size_t kTypeAt = offsetof(_SL_LIB_CMD_PARAM_T, cmdType);
inline constexpr std::size_t kCommandAt = offsetof(_SL_LIB_CMD_PARAM_T, cmd);

/// What is needed to judge and to name a request: its header and, for a pass-through, the head of its data.
struct Request {
    Header header{};
    std::optional<wire::_SL_DCMD_INPUT_T> dcmd; ///< the pointer is null
    std::optional<wire::_SL_SCSI_PASSTHRU_T> scsi;

    /// Takes a request apart. `data` is what its pointer points to; too few bytes leave the pass-through unknown.
    static Request of(const Header& header, std::span<const std::uint8_t> data);

    wire::_SL_LIB_CMD_PARAM_T fields() const; ///< the pointer is null
    bool isControllerCommand() const;
    bool isScsi() const;
    Effect effect() const; ///< what is unknown changes
    Data data() const; ///< of the request's own data
    Data innerData() const; ///< of what a controller command points to
    bool sends() const; ///< its own data goes to the library, as far as is known
};

/// "02/02", for a controller command "06/03 010E0202", for a SCSI command "06/00 4D".
std::string codeOf(const Request& request);

/// "02/02 set physical drive offline: controller 0, device id 11, sequence number 13". The controller is numbered as
/// the tool numbers it; without a number its id is given.
std::string describe(const Request& request, std::optional<unsigned> contNo);

/// Numbers the controllers of a list as the tool does: by ascending id.
class ControllerNumbers {
  public:
    void learn(const wire::_SL_CTRL_LIST_T& list);
    std::optional<unsigned> numberOf(std::uint32_t ctrlId) const;

  private:
    std::vector<std::uint32_t> ids_;
};

} // namespace zebrec
