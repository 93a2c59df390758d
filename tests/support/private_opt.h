// Runs part of a test's own process where the tool's fixed paths are the test's.
#pragma once

#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <thread>

#include <gtest/gtest.h>

namespace zebtest {

/// Does the work on a thread that sees the folder as /opt and has a working directory of its own. Needs what a sandbox
/// needs; fails the current test otherwise.
template <class Work>
void withOpt(const std::filesystem::path& opt, Work work) {
    std::thread([&] {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(opt.c_str(), "/opt", nullptr, MS_BIND, nullptr) != 0) {
            ADD_FAILURE() << "no private /opt here";
            return;
        }
        work();
    }).join();
}

} // namespace zebtest
