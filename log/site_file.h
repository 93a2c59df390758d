// A configuration file of the site, closed with its owner.
#pragma once

#include <cstdio>
#include <memory>

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using SiteFile = std::unique_ptr<std::FILE, FileCloser>;

/// Opens it for reading; null when that fails or something else stands in its place: a pipe would not be opened until
/// somebody writes, a device never ends.
SiteFile openSiteFile(const char* path);
