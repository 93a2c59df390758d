#include "console/xltcli_kbhit.h"

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
    char key = 0;
    const ssize_t got = read(STDIN_FILENO, &key, 1);
    setMinimum(1);
    return got == 1;
}

void Tkbhit::setMinimum(cc_t characters) {
    mode_.c_cc[VMIN] = characters;
    tcsetattr(STDIN_FILENO, TCSANOW, &mode_);
}
