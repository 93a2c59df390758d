// The simulated library inside the process, whose answers the input changes at will.
#pragma once

#include "fuzz/support.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <vector>

namespace fuzz {

/// Makes it the tool's only library, with as many controllers, until the next call. Queries are answered from the
/// built-in scenario, everything else succeeds and changes nothing.
///
/// The changes to the answers are a row of records: {type (255: any request), command, low byte of the reference (255:
/// any), number of the request from which on it holds, u16 offset, length, that many bytes}. A length with bit 7 set
/// repeats the bytes to the end of the answer; a length of 0 makes the request fail with the offset as its status. An
/// answer never passes the data size.
void useLibrary(unsigned controllers, Bytes changes = {});

/// The snapshot of all controllers, allocated and released as the start-up does.
class Snapshot {
  public:
    explicit Snapshot(unsigned controllers)
        : conts_(controllers),
          filled_(AllocDriveInfo(conts_.data(), count()) == 1 && UpdateDriveInfo(conts_.data(), count()) == 1) {}
    ~Snapshot() { FreeDriveInfo(conts_.data(), count()); }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Whether it was filled; if not, no handler would be called.
    bool filled() const { return filled_; }
    _AFCONT* conts() { return conts_.data(); }
    int count() const { return static_cast<int>(conts_.size()); }

  private:
    std::vector<_AFCONT> conts_;
    bool filled_;
};

} // namespace fuzz
