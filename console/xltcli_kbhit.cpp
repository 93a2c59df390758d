#include "console/xltcli_kbhit.h"

#include <poll.h>
#include <unistd.h>

Tkbhit::Tkbhit() {
    tcgetattr(STDIN_FILENO, &saved_);
    mode_ = saved_;
    mode_.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
    mode_.c_cc[VTIME] = 0;
    setMinimum(0);
}

Tkbhit::~Tkbhit() {
    tcsetattr(STDIN_FILENO, TCSANOW, &saved_);
}

bool Tkbhit::_kbhit() {
    setMinimum(0);
    pollfd input{STDIN_FILENO, POLLIN, 0}; // a pipe, unlike the terminal, has no mode that keeps a read from waiting
    char key = 0;
    const bool hit = poll(&input, 1, 0) == 1 && read(STDIN_FILENO, &key, 1) == 1;
    setMinimum(1);
    return hit;
}

void Tkbhit::setMinimum(cc_t characters) {
    mode_.c_cc[VMIN] = characters;
    tcsetattr(STDIN_FILENO, TCSANOW, &mode_);
}
