#include "simulator/session.h"

#include "simulator/background.h"
#include "simulator/scenario.h"

#include <cstdio>
#include <ctime>

namespace zebsim {

namespace {

double realClock() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// One line on standard error, whatever the texts in it hold.
void complain(const std::string& message) {
    std::string line = "zebsim: ";
    for (const char c : message)
        line.push_back(static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c);
    line.push_back('\n');
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

/// Runs a step on a file, so that its error names the file.
template <class Step>
auto about(const std::string& file, Step step) {
    try {
        return step();
    } catch (const ScenarioError& error) {
        throw ScenarioError(file, error.what());
    }
}

} // namespace

Session::Session(const Settings& settings) {
    running_ = settings.speed.has_value() || !settings.state.empty();
    speed_ = settings.speed.value_or(1);
    if (!settings.state.empty())
        state_ = about(settings.state, [&] { return std::make_unique<StateFile>(settings.state); });
    load(settings);
    if (!settings.faults.empty())
        about("ZEBSIM_FAULTS", [&] { faults_.add(settings.faults); });
}

void Session::load(const Settings& settings) {
    last_ = realClock();
    std::optional<std::string> text;
    if (state_)
        text = about(settings.state, [&] { return state_->load(); });
    const bool resumed = text.has_value();
    std::string origin = resumed ? settings.state : settings.scenario;
    if (!resumed && !settings.scenario.empty()) {
        text = about(origin, [&] { return readFile(origin); });
        if (!text)
            throw ScenarioError(origin, "name a file that exists");
    } else if (!resumed) {
        origin = "built-in scenario";
        text = kBuiltInScenario;
    }
    model_ = about(origin, [&] { return readScenario(*text); });
    if (!model_.faults.empty())
        about(origin, [&] { faults_.add(model_.faults); });
    if (resumed && model_.savedAt)
        last_ = *model_.savedAt;
    else if (state_ && !save())
        throw ScenarioError(settings.state, "make its folder writable");
}

std::unique_ptr<Session> Session::start() {
    try {
        return std::unique_ptr<Session>(new Session(Settings::fromEnvironment()));
    } catch (const ScenarioError& error) {
        complain(error.what());
        return nullptr;
    }
}

void Session::passTime() {
    if (!running_)
        return;
    const double now = realClock();
    const double seconds = (now - last_) * speed_;
    last_ = now;
    if (seconds > 0 && advance(model_, seconds))
        moved_ = true;
}

bool Session::save() {
    if (!state_)
        return true;
    model_.savedAt = last_;
    if (!state_->save(writeScenario(model_))) {
        complain(state_->path() + ": make its folder writable; the state could not be saved");
        return false;
    }
    moved_ = false;
    return true;
}

bool Session::finish() {
    passTime();
    return !moved_ || save();
}

} // namespace zebsim
