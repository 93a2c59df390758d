#include "tests/simulator/simulated.h"

#include <cstdlib>

#include "tests/support/sandbox.h"

extern "C" std::uint32_t ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request);

namespace zebtest {

SimulatedRun::SimulatedRun(const std::map<std::string, std::string>& environment) {
    for (const char* name : {"SCENARIO", "STATE", "SPEED", "FAULTS", "TRACE", "LATENCY_US"})
        unsetenv((std::string("ZEBSIM_") + name).c_str());
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    Bytes list(sizeof(_SL_CTRL_LIST_T));
    testing::internal::CaptureStderr();
    status = send(kInitialise, 0, &list);
    complaint = testing::internal::GetCapturedStderr();
    _SL_CTRL_LIST_T found;
    std::memcpy(&found, list.data(), sizeof found);
    controller_ = found.ctrl[0];
}

SimulatedRun::~SimulatedRun() {
    send(kExit);
}

std::uint32_t SimulatedRun::send(Code code, std::uint32_t ref, Bytes* data) {
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = code.type;
    request.cmd = code.cmd;
    request.ctrlId = controller_;
    request.ref.all = ref;
    request.dataSize = data == nullptr ? 0 : static_cast<std::uint32_t>(data->size());
    request.data = data == nullptr ? nullptr : data->data();
    return ProcessLibCommand(&request);
}

std::uint32_t SimulatedRun::dcmd(std::uint32_t opcode, std::uint8_t direction, Bytes& payload) {
    _SL_DCMD_INPUT_T input{};
    input.opcode = opcode;
    input.direction = direction;
    input.dataSize = static_cast<std::uint32_t>(payload.size());
    input.data = payload.data();
    Bytes data = bytesOf(input);
    return send(kDcmd, 0, &data);
}

Bytes SimulatedRun::configuration() {
    Bytes data(1 << 20);
    EXPECT_EQ(0U, send(kReadConfig, 0, &data));
    _MR_CONFIG_DATA head;
    std::memcpy(&head, data.data(), sizeof head);
    data.resize(head.size);
    return data;
}

SimulatorTest::SimulatorTest() {
    std::string name = testing::TempDir() + "zebsim-XXXXXX";
    folder = mkdtemp(name.data());
}

SimulatorTest::~SimulatorTest() {
    std::filesystem::remove_all(folder);
}

std::map<std::string, std::string> SimulatorTest::onState(const std::string& scenario, const std::string& faults) {
    writeFile(folder / "scenario.json", scenario);
    return {{"ZEBSIM_SCENARIO", folder / "scenario.json"},
            {"ZEBSIM_STATE", state()},
            {"ZEBSIM_SPEED", "0"},
            {"ZEBSIM_FAULTS", faults}};
}

} // namespace zebtest
