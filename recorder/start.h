// How the programs that put the recorder before the real library begin.
#pragma once

#include "recorder/real_library.h"
#include "recorder/run_command.h"

namespace zebrec {

/// What such a program has found and made before it does anything.
struct Start {
    Folders folders;
    std::string realLibrary; ///< path
    SessionPage* page = nullptr;
    int pageFile = -1;

    /// The environment of a command whose requests pass through here.
    std::map<std::string, std::string> environment() const {
        return recorderEnvironment(folders.recorder, realLibrary, pageFile);
    }
};

/// Finds the real library (the one that is named, if any) and makes the page. On failure the reason was said.
std::optional<Start> beginSession(const std::string& program, Mode mode, const std::optional<std::string>& library);

} // namespace zebrec
