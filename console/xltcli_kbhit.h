// A test whether a key was pressed, without waiting for one.
#pragma once

#include <termios.h>

/// While it lives, standard input is read key by key, unechoed and without signal keys; then the mode of before is put
/// back.
class Tkbhit {
  public:
    Tkbhit();
    ~Tkbhit();
    Tkbhit(const Tkbhit&) = delete;
    Tkbhit& operator=(const Tkbhit&) = delete;

    /// True when a key was pressed; the key is taken.
    bool _kbhit();

  private:
    void setMinimum(cc_t characters);

    termios saved_{};
    termios mode_{};
};
