// The simulated library in the test's own process, on a scenario and a state file of the test.
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "storelib/records/configuration.h"
#include "storelib/records/request.h"
#include "tests/support/scripted_library.h"

namespace zebtest {

/// A request type and a command of it.
struct Code {
    std::uint8_t type;
    std::uint8_t cmd;
};

inline constexpr Code kInitialise{0x00, 0x00};
inline constexpr Code kExit{0x00, 0x09};
inline constexpr Code kCtrlInfo{0x01, 0x00};
inline constexpr Code kPatrolReadInfo{0x01, 0x0F};
inline constexpr Code kPdInfo{0x02, 0x00};
inline constexpr Code kLdInfo{0x03, 0x00};
inline constexpr Code kDeleteLd{0x03, 0x03};
inline constexpr Code kReadConfig{0x04, 0x00};
inline constexpr Code kDcmd{0x06, 0x03};

/// One run of the library: from its initialisation to its exit, with the environment of the run.
class SimulatedRun {
  public:
    /// `status` says how the initialisation ended; what the library complained about is in `complaint`.
    explicit SimulatedRun(const std::map<std::string, std::string>& environment);
    ~SimulatedRun();
    SimulatedRun(const SimulatedRun&) = delete;
    SimulatedRun& operator=(const SimulatedRun&) = delete;

    std::uint32_t status = 0;
    std::string complaint;

    /// A request to the first controller. `data` goes out and takes the answer.
    std::uint32_t send(Code code, std::uint32_t ref = 0, Bytes* data = nullptr);
    /// A controller command with its payload.
    std::uint32_t dcmd(std::uint32_t opcode, std::uint8_t direction, Bytes& payload);
    /// The answer to a query as a record; fails the test when the query does.
    template <class Record>
    Record read(Code code, std::uint32_t ref = 0) {
        Bytes data(sizeof(Record));
        EXPECT_EQ(0U, send(code, ref, &data));
        Record record;
        std::memcpy(&record, data.data(), sizeof record);
        return record;
    }
    /// The whole configuration.
    Bytes configuration();

  private:
    std::uint32_t controller_ = 0;
};

class SimulatorTest : public testing::Test {
  protected:
    SimulatorTest();
    ~SimulatorTest() override;

    /// The environment of a run on the state file, which the scenario starts when it is not there yet. Time stands
    /// still.
    std::map<std::string, std::string> onState(const std::string& scenario, const std::string& faults = "");
    std::string state() const { return folder / "state.json"; }

    std::filesystem::path folder;
};

} // namespace zebtest
