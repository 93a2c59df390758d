#include "log/site_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

SiteFile openSiteFile(const char* path) {
    const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    struct stat info {};
    std::FILE* file = fd >= 0 && fstat(fd, &info) == 0 && S_ISREG(info.st_mode) ? fdopen(fd, "r") : nullptr;
    if (file == nullptr && fd >= 0)
        close(fd);
    return SiteFile(file);
}
