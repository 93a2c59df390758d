// The keyboard reader: whether a key was pressed, without waiting for one.
#include "console/xltcli_kbhit.h"

#include <chrono>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include "tests/support/child.h"

namespace zebtest {
namespace {

/// Standard input is that descriptor while it lives.
class StandardInput {
  public:
    explicit StandardInput(int fd) : before_(dup(STDIN_FILENO)) { dup2(fd, STDIN_FILENO); }
    ~StandardInput() { dup2(before_.get(), STDIN_FILENO); }

  private:
    Fd before_;
};

/// What three questions in a row answer, of which none may wait.
std::string threeHits(Tkbhit& keyboard) {
    const auto start = std::chrono::steady_clock::now();
    std::string hits;
    for (int i = 0; i < 3; ++i)
        hits += keyboard._kbhit() ? 'y' : 'n';
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    return hits;
}

void type(const Fd& to, std::string_view keys) {
    ASSERT_EQ(static_cast<ssize_t>(keys.size()), write(to.get(), keys.data(), keys.size()));
}

TEST(Keyboard, OnATerminalKeysCountWithoutANewline) {
    const Fd master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(master.open() && grantpt(master.get()) == 0 && unlockpt(master.get()) == 0);
    const Fd slave(open(ptsname(master.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(slave.open());
    termios before{};
    ASSERT_EQ(0, tcgetattr(slave.get(), &before));
    const StandardInput input(slave.get());
    {
        Tkbhit keyboard;
        EXPECT_EQ("nnn", threeHits(keyboard));
        type(master, "a\x03");
        EXPECT_EQ("yyn", threeHits(keyboard)) << "the interrupt key is a key like any other";
        termios during{};
        tcgetattr(slave.get(), &during);
        EXPECT_EQ(before.c_lflag & ~static_cast<tcflag_t>(ICANON | ECHO | ISIG), during.c_lflag);
        EXPECT_EQ(1, during.c_cc[VMIN]);
    }
    termios after{};
    tcgetattr(slave.get(), &after);
    EXPECT_TRUE(sameMode(before, after));
}

TEST(Keyboard, OnAPipeItDoesNotWaitEither) {
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    const Fd read(ends[0]);
    Fd write(ends[1]);
    const StandardInput input(read.get());
    Tkbhit keyboard;
    alarm(10); // a read that waits would wait for ever
    EXPECT_EQ("nnn", threeHits(keyboard));
    type(write, "ab");
    EXPECT_EQ("yyn", threeHits(keyboard));
    write.reset();
    EXPECT_EQ("nnn", threeHits(keyboard));
    alarm(0);
}

} // namespace
} // namespace zebtest
