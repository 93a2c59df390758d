// The terminal of `watch`: its width, its keys, and its mode, which is put back on every way out.
#pragma once

#include <chrono>
#include <cstddef>

namespace zebstat {

/// While it lives, keys come at once and are not echoed, where standard output and input are a terminal.
class Terminal {
  public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Whether standard output is a terminal, on which lines can be drawn again.
    bool isTerminal() const { return isTerminal_; }

    /// Columns and rows; 80 and 24 where they are not known.
    struct Size {
        std::size_t columns;
        std::size_t rows;
    };
    Size size() const;

    /// Waits so long for a key that ends the watching: q or the end of the input. True when it came.
    bool endKeyWithin(std::chrono::duration<double> time);

    /// With which status Ctrl-C ends the program from now on.
    static void setEndStatus(int status);

    /// Puts the mode back; can be called from anywhere, more than once.
    static void restore();

  private:
    bool isTerminal_;
    bool hasKeys_ = false;
};

} // namespace zebstat
