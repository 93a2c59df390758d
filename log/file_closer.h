// A C stream that is closed with its owner.
#pragma once

#include <cstdio>
#include <memory>

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open stream, or null when opening it failed.
using OwnedFile = std::unique_ptr<std::FILE, FileCloser>;
