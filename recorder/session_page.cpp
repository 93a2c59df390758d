#include "recorder/session_page.h"

#include "recorder/write_whole.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zebrec {

namespace {

SessionPage* mapPage(int file) {
    void* page = ::mmap(nullptr, sizeof(SessionPage), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return page == MAP_FAILED ? nullptr : static_cast<SessionPage*>(page);
}

} // namespace

Mention mentionOf(const Request& request, std::optional<unsigned> contNo, std::uint64_t number) {
    Mention mention{};
    mention.header = request.header;
    mention.hasDcmd = request.dcmd.has_value();
    mention.hasScsi = request.scsi.has_value();
    if (request.dcmd)
        mention.dcmd = *request.dcmd;
    if (request.scsi)
        mention.scsi = *request.scsi;
    mention.contNo = contNo ? static_cast<std::int32_t>(*contNo) : -1;
    mention.number = number;
    return mention;
}

std::optional<unsigned> contNoOf(const Mention& mention) {
    return mention.contNo < 0 ? std::nullopt : std::optional(static_cast<unsigned>(mention.contNo));
}

std::string describe(const Mention& mention) {
    Request request{mention.header, {}, {}};
    if (mention.hasDcmd)
        request.dcmd = mention.dcmd;
    if (mention.hasScsi)
        request.scsi = mention.scsi;
    return describe(request, contNoOf(mention));
}

SessionPage* openPage(const char* path) {
    const int file = ::open(path, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return nullptr;
    struct stat status {};
    const bool fits = ::fstat(file, &status) == 0 && status.st_size == sizeof(SessionPage);
    SessionPage* page = fits ? mapPage(file) : nullptr;
    ::close(file);
    if (page != nullptr && page->magic != SessionPage::kMagic) {
        ::munmap(page, sizeof *page);
        return nullptr;
    }
    return page;
}

SessionPage* makePage(int& file) {
    file = ::memfd_create("zebrec", MFD_CLOEXEC);
    if (file < 0)
        return nullptr;
    if (const int why = growTo(file, sizeof(SessionPage)); why != 0) {
        errno = why;
        return nullptr;
    }
    SessionPage* page = mapPage(file);
    if (page != nullptr)
        page->magic = SessionPage::kMagic;
    return page;
}

} // namespace zebrec
