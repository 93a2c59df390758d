// What the harness's own tests run: `probe syslog TEXT`, `probe leak`, `probe overflow`, `probe load` (the vendor
// library).
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <syslog.h>

int main(int argc, char** argv) {
    const std::string_view verb = argc > 1 ? argv[1] : "";
    if (verb == "syslog") {
        openlog("probe", LOG_PID, LOG_USER);
        syslog(LOG_ERR, "%s", argc > 2 ? argv[2] : "");
        closelog();
    } else if (verb == "leak") {
        void* volatile lost = std::malloc(100);
        lost = nullptr;
        return lost == nullptr ? 0 : 1;
    } else if (verb == "overflow") {
        volatile int past = argc + 100;
        auto* block = static_cast<char*>(std::calloc(1, 100));
        const int byte = block[past];
        std::free(block);
        return byte == 0 ? 0 : 1;
    } else if (verb == "load") {
        void* library = dlopen("libstorelib.so", RTLD_LAZY);
        const bool found = library != nullptr && dlsym(library, "ProcessLibCommand") != nullptr;
        std::puts(library == nullptr ? "no library" : found ? "entry point" : "no entry point");
    }
    return 0;
}
