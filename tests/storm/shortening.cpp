#include "tests/storm/shortening.h"

#include <utility>

namespace zebstorm {
namespace {

constexpr unsigned kMostTrials = 400; ///< runs of a history that making one shorter may take

/// Plays the steps; what was found at the last of them, if anything was found at all.
std::optional<Failure> replay(Stage& stage, const zebsim::Model& hardware, const std::vector<Step>& steps) {
    stage.begin(hardware);
    for (std::size_t i = 0; i < steps.size(); ++i)
        if (auto finding = stage.play(steps[i]))
            return Failure{hardware, {steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(i) + 1}, *finding};
    return std::nullopt;
}

class Shortening {
  public:
    Shortening(Stage& stage, Failure failure) : stage_(stage), best_(std::move(failure)) {}

    Failure result() {
        for (std::size_t group = best_.steps.size() / 2; group > 0; group /= 2)
            for (std::size_t at = 0; at + group < best_.steps.size();)
                at += tryWithout(at, group) ? 0 : group;
        for (std::size_t at = 0; at < best_.steps.size(); ++at)
            simplify(at);
        return best_;
    }

  private:
    bool tryOut(const std::vector<Step>& steps) {
        if (++trials_ > kMostTrials)
            return false;
        auto failure = replay(stage_, best_.hardware, steps);
        if (!failure || failure->finding.check != best_.finding.check)
            return false;
        best_ = *failure;
        return true;
    }
    bool tryWithout(std::size_t at, std::size_t count) {
        auto steps = best_.steps;
        steps.erase(steps.begin() + static_cast<std::ptrdiff_t>(at),
                    steps.begin() + static_cast<std::ptrdiff_t>(at + count));
        return tryOut(steps);
    }
    void simplify(std::size_t at) {
        const auto change = [&](auto edit) {
            auto steps = best_.steps;
            if (at < steps.size() && edit(steps[at]))
                tryOut(steps);
        };
        change([](Step& step) { return !std::exchange(step.faults, "").empty(); });
        change([](Step& step) { return !std::exchange(step.input, "").empty(); });
        for (std::size_t arg = 16; arg > 0; --arg)
            change([&](Step& step) {
                if (arg >= step.args.size())
                    return false;
                step.args.erase(step.args.begin() + static_cast<std::ptrdiff_t>(arg));
                return true;
            });
    }

    Stage& stage_;
    Failure best_;
    unsigned trials_ = 0;
};

} // namespace

Failure shortened(Stage& stage, const Failure& failure) {
    return failure.steps.empty() ? failure : Shortening(stage, failure).result();
}

} // namespace zebstorm
