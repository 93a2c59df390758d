// Runs the command behind "--" as if nothing stood around it.
#pragma once

#include "recorder/program.h"
#include "recorder/session_page.h"

#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zebrec {

/// Lets this program learn how its children end, whatever its caller does with SIGCHLD; a command gets that back.
void expectChildren();

/// The words as exec wants them: pointers into the words, null behind the last.
std::vector<char*> argvOf(const std::vector<std::string>& words);

/// This program's environment with further variables.
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& further);

/// Waits for a child and returns its status, 128 and the number when a signal ended it, or kCannotStart when it cannot
/// be waited for.
int waitFor(pid_t child);

/// Runs the command with the further environment and waits for it. Signals of the terminal reach the command alone;
/// those that a program sends are handed on. Returns its status, 128 and the number when a signal ended it, or nothing
/// when it could not be started; errno then says why.
std::optional<int> runCommand(const std::vector<std::string>& command, const std::map<std::string, std::string>& env);

/// Whether a status says that somebody ended the command, who wants none after it.
bool isEndedFromOutside(int status);

/// The environment with which a command loads the recorder's library, which finds the page and the real library.
std::map<std::string, std::string> recorderEnvironment(const std::string& folder, const std::string& realLibrary,
                                                       int pageFile);

/// The folder before those of LD_LIBRARY_PATH.
std::string libraryPathWith(const std::string& folder);

/// The path under which other processes of this user can open a file of this one.
std::string pathOfFile(int file);

/// Says inside of which requests processes of the command ended, and that the library could not be loaded in one.
void sayHowItEnded(const std::string& program, const SessionPage& page);

} // namespace zebrec
