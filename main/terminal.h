// The terminal for the length of a run: echo and signal keys off, echo on while an answer is typed, and as it was at
// the end.
#pragma once

#include <termios.h>

/// Set to 1 once the run's mode is in force, so that old_term_set is to be put back at exit.
extern int term_set_flg;
/// The mode to put back: that of before the run, after a question that of the last input.
extern termios old_term_set;
/// The mode that was put in force last.
extern termios new_term_set;

/// Switches echo and signal keys off; line input stays on. From then on the signals that end a run put the terminal
/// back first. Where standard input is no terminal nothing happens; that of another job is left as it is.
void enterTerminal();

/// For atexit: puts old_term_set back where the run's mode was set and is still in force. Who took the terminal over
/// meanwhile, a pager, keeps its own mode.
void CliCmdProcessDetach();

/// Echo is on while it lives, and off with the signal keys afterwards. Both times the mode in force lands in
/// old_term_set on purpose: after any question the mode that is put back at exit is the one of the last input.
class EchoedInput {
  public:
    EchoedInput();
    ~EchoedInput();
    EchoedInput(const EchoedInput&) = delete;
    EchoedInput& operator=(const EchoedInput&) = delete;
};
