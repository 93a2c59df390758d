// What lies between the library's initialisation and its exit: the model, the faults, the state file and the clock.
#pragma once

#include "simulator/faults.h"
#include "simulator/model.h"
#include "simulator/settings.h"
#include "simulator/state_file.h"

#include <memory>

namespace zebsim {

/// One run of the library. Time passes in the model as it does on the wall, at the speed that the settings say.
class Session {
  public:
    /// Loads the state or the scenario. On failure writes one line to standard error and returns null.
    static std::unique_ptr<Session> start();

    Model& model() { return model_; }
    Faults& faults() { return faults_; }
    /// True when there is a state file, so that changes outlive the run.
    bool keepsState() const { return state_ != nullptr; }

    /// Lets the time that has gone by since the last call pass in the model too.
    void passTime();

    /// Writes the state file, if there is one. False when that failed.
    bool save();

    /// Ends the session: writes what time has changed. False when that failed.
    bool finish();

  private:
    explicit Session(const Settings& settings);

    void load(const Settings& settings);

    Model model_;
    Faults faults_;
    std::unique_ptr<StateFile> state_;
    bool running_ = false; ///< time passes
    double speed_ = 1;
    double last_ = 0; ///< real clock, s since 1970, up to which time has passed
    bool moved_ = false; ///< background work has moved since the last save
};

} // namespace zebsim
