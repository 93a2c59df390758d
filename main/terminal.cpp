#include "main/terminal.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <unistd.h>

int term_set_flg = 0;
termios old_term_set{};
termios new_term_set{};

namespace {

termios beforeRun{};

/// Whether the terminal belongs to another job just now. Whoever changes its mode then is stopped.
bool inBackground() {
    const pid_t front = tcgetpgrp(STDIN_FILENO);
    return front >= 0 && front != getpgrp();
}

bool sameMode(const termios& a, const termios& b) {
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag && a.c_lflag == b.c_lflag &&
           std::equal(std::begin(a.c_cc), std::end(a.c_cc), std::begin(b.c_cc));
}

/// Puts a changed copy of the mode in force, which lands in old_term_set.
template <class Change>
void changeMode(Change change) {
    tcgetattr(STDIN_FILENO, &old_term_set);
    new_term_set = old_term_set;
    change(new_term_set.c_lflag);
    tcsetattr(STDIN_FILENO, TCSANOW, &new_term_set);
}

void quieten(tcflag_t& flags) {
    flags &= ~static_cast<tcflag_t>(ECHO | ISIG);
}

/// As at exit, but back to before the run; a signal may come amid a change, when the old mode is still in force.
void leaveOnSignal(int signal) {
    termios present{};
    if (tcgetattr(STDIN_FILENO, &present) == 0 && (sameMode(present, new_term_set) || sameMode(present, old_term_set)))
        tcsetattr(STDIN_FILENO, TCSANOW, &beforeRun);
    raise(signal);
}

void leaveOnSignals() {
    struct sigaction action {};
    action.sa_handler = leaveOnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaddset(&action.sa_mask, SIGTTOU); // in the background too
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        struct sigaction present {};
        if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

} // namespace

void enterTerminal() {
    if (tcgetattr(STDIN_FILENO, &old_term_set) != 0)
        return; // no terminal, no mode to set and to put back
    beforeRun = old_term_set;
    if (!inBackground()) {
        leaveOnSignals();
        changeMode(quieten);
    }
    term_set_flg = 1;
}

void CliCmdProcessDetach() {
    termios present{};
    if (term_set_flg == 1 && !inBackground() && tcgetattr(STDIN_FILENO, &present) == 0 &&
        sameMode(present, new_term_set))
        tcsetattr(STDIN_FILENO, TCSANOW, &old_term_set);
}

EchoedInput::EchoedInput() {
    changeMode([](tcflag_t& flags) { flags |= ECHO; });
}

EchoedInput::~EchoedInput() {
    changeMode(quieten);
}
