// A storm: seeded random histories of commands, failures and passing time, each on random hardware. A history that
// finds a fault is made shorter and printed as commands.
//
//     storm [--first SEED] [--count N] [--steps N] [--sanitized] [--show]
#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "simulator/scenario.h"
#include "tests/storm/hardware.h"
#include "tests/storm/shortening.h"
#include "tests/support/paths.h"

namespace zebstorm {
namespace {

struct Settings {
    std::uint64_t first = 1;
    std::uint64_t count = 200;
    std::size_t steps = 30;
    bool sanitized =
        false; ///< every history on this build's program; else one in eight, the others on the release build
    bool show = false; ///< print every history as it goes
};

/// Makes the history of a seed while it plays it. Each step is chosen from the hardware that the last one has left.
std::optional<Failure> playSeed(Stage& stage, std::uint64_t seed, const Settings& settings) {
    Random random(seed);
    const zebsim::Model hardware = randomHardware(random);
    stage.begin(hardware);
    std::vector<Step> steps;
    if (const std::string fault = inconsistency(hardware); !fault.empty())
        return Failure{hardware, steps, {"first hardware", fault}};
    while (steps.size() < settings.steps) {
        steps.push_back(randomStep(random, stage.hardware()));
        if (settings.show)
            std::printf("%s\n", steps.back().asCommand().c_str());
        if (auto finding = stage.play(steps.back()))
            return Failure{hardware, steps, *finding};
        if (settings.show && steps.back().kind == Step::Kind::command)
            std::printf("%s", stage.printed().c_str());
    }
    return std::nullopt;
}

void print(std::uint64_t seed, const Failure& failure) {
    std::printf("seed %llu: %s\n%s\n", static_cast<unsigned long long>(seed), failure.finding.check.c_str(),
                failure.finding.seen.c_str());
    std::printf(
        "cat >lab.json <<'END'\n%sEND\nexport ZEBSIM_SCENARIO=lab.json ZEBSIM_STATE=state.json ZEBSIM_SPEED=0\n",
        zebsim::writeScenario(failure.hardware).c_str());
    for (const Step& step : failure.steps)
        std::printf("%s\n", step.asCommand().c_str());
    std::fflush(stdout);
}

/// Plays all seeds on as many threads as there are processors. Returns how many histories found a fault.
unsigned playAll(const Settings& settings) {
    constexpr std::uint64_t kSanitizedTurn = 8;
    std::atomic<std::uint64_t> next = settings.first;
    std::atomic<unsigned> failures = 0;
    std::mutex printing;
    const auto work = [&] {
        const bool released = *paths::releaseZebcli != '\0';
        Stage own({"", std::nullopt});
        Stage fast(released ? Program{paths::releaseZebcli, paths::releaseLibraryDir} : Program{"", std::nullopt});
        for (std::uint64_t seed = next++; seed < settings.first + settings.count; seed = next++) {
            Stage& stage = settings.sanitized || seed % kSanitizedTurn == 0 ? own : fast;
            const auto failure = playSeed(stage, seed, settings);
            if (!failure)
                continue;
            ++failures;
            const Failure shortest = shortened(stage, *failure);
            const std::lock_guard guard(printing);
            print(seed, shortest);
        }
    };
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < std::max(1U, settings.show ? 1U : std::thread::hardware_concurrency()); ++i)
        workers.emplace_back(work);
    for (std::thread& worker : workers)
        worker.join();
    return failures;
}

} // namespace
} // namespace zebstorm

int main(int argc, char** argv) {
    testing::InitGoogleTest(); // for what the sandbox reports
    zebstorm::Settings settings;
    CLI::App app("Random histories of commands, failures and passing time; looks at everything after each step");
    app.add_option("--first", settings.first, "first seed")->capture_default_str();
    app.add_option("--count", settings.count, "how many seeds")->capture_default_str();
    app.add_option("--steps", settings.steps, "steps of each history")->capture_default_str();
    app.add_flag("--sanitized", settings.sanitized, "all of them on the program with the sanitizers, not one in eight");
    app.add_flag("--show", settings.show, "print each command and what it says");
    CLI11_PARSE(app, argc, argv);
    if (const std::string& reason = zebtest::Sandbox::unavailable(); !reason.empty()) {
        std::fprintf(stderr, "no sandbox here: %s\n", reason.c_str());
        return 1;
    }
    const unsigned failures = zebstorm::playAll(settings);
    std::printf("%llu histories, %u with findings\n", static_cast<unsigned long long>(settings.count), failures);
    return failures == 0 ? 0 : 1;
}
