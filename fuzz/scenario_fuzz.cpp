// The simulator's scenario reader over arbitrary text. What it accepts it must write so that it reads back the same.
#include "fuzz/support.h"
#include "simulator/scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const zebsim::Model model = zebsim::readScenario(fuzz::textOf({data, size}));
        const std::string written = zebsim::writeScenario(model);
        std::string again;
        try {
            again = zebsim::writeScenario(zebsim::readScenario(written));
        } catch (const zebsim::ScenarioError& error) {
            fuzz::require(false, error.what());
        }
        fuzz::require(again == written, "a written scenario reads back the same");
    } catch (const zebsim::ScenarioError&) {
        return 0; // refused, as it may be
    }
    return 0;
}
