// Deletion of LDs on a terminal, and of those that Linux uses. The rest is in transcripts/deletion.txt.
#include "tests/support/operation_test.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/expected.h"

namespace zebtest {
namespace {

using Deletion = OperationTest;

TEST_F(Deletion, AsTheManualShowsItOnATerminal) {
    auto options = optionsFor("", "-lddel");
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{"Controller No.(\"Q\"->Quit) :", "0\n"},
                       {"Please input LD number or Q :", "2\n"},
                       {"lost.(Y/N)?\n", "y\n"},
                       {"delete?(Y/N)?\n", "y\n"}};
    EXPECT_TRUE(matchesKept("deletion/transcript.txt", box.run(options).out));
}

TEST_F(Deletion, WhatLinuxUsesIsNotDeleted) {
    // Held by this test like by a mount; where somebody else holds it, all the better.
    const int held = open("/dev/loop0", O_RDONLY | O_EXCL | O_CLOEXEC);
    ASSERT_TRUE(held >= 0 || errno == EBUSY) << "this test needs /dev/loop0";
    const auto deletes = [&](const std::string& devices, const std::string& faults = "[]") {
        auto options = optionsFor(R"({"controllers": [{"id": 3, "drives": [{}, {}], "arrays": [{"drives": [0, 1]}],
            "lds": [{"id": 7, "level": 1, "spans": [{}], "osDevices": [)" +
                                      devices + "]}]}]}",
                                  "-lddel");
        options.input = Input::kPipe;
        options.inputText = "7\ny\ny\nQ\n";
        options.env["ZEBSIM_FAULTS"] = faults;
        const std::string out = box.run(options).out;
        const std::size_t answered = out.find("or Q :");
        return answered == out.npos ? out : out.substr(answered + 6);
    };
    const auto used = [](const std::string& name) {
        return "Error - Controller[0] LD(Logical Drive) 7 is used by OS(" + name + ").\n";
    };
    // Names that fill their field of 28 bytes, or stand elsewhere, are not opened.
    const std::string whole = "/dev/" + std::string(22, 'z');
    const std::string cut = whole + "z";
    for (const std::string& name : {whole, cut})
        std::filesystem::create_symlink("/dev/loop0", box.root() / name.substr(1));
    std::filesystem::create_symlink("/dev/loop0", box.opt() / "loop");
    ASSERT_EQ(0, mkfifo((box.root() / "dev/fifo").c_str(), 0600));
    const std::pair<std::string, std::string> cases[] = {
        {R"("/dev/loop0")", "/dev/loop0"},
        {R"("/dev/zt", "/dev/null", "/dev/fifo", "/dev/loop0")", "/dev/loop0"},
        {'"' + whole + R"(", "/dev/loop0")", whole}};
    for (const auto& [devices, name] : cases)
        EXPECT_TRUE(deletes(devices).starts_with(used(name))) << devices;
    const std::string others = R"("/opt/loop", "loop0", "/dev/zt", ")" + cut + '"';
    EXPECT_TRUE(deletes(others).ends_with("LD(Logical Drive) 7 has been deleted.\n"));
    // A mapping that cannot be read opens nothing; the last look reads it once more.
    const std::string out = deletes(cases[0].first, R"([{"type": 1, "cmd": 12, "nth": 3, "status": "0x801C"}])");
    EXPECT_TRUE(out.ends_with("Proceed with delete?(Y/N)?\n" + used("/dev/loop0"))) << out;
    close(held);
}

} // namespace
} // namespace zebtest
