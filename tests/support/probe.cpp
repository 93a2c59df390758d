// What the harness's own tests run to see that a sanitizer's finding is noticed: `probe leak`, `probe overflow`.
#include <cstdlib>
#include <string_view>

int main(int argc, char** argv) {
    const std::string_view verb = argc > 1 ? argv[1] : "";
    if (verb == "leak") {
        void* volatile lost = std::malloc(100);
        lost = nullptr;
        return lost == nullptr ? 0 : 1;
    }
    volatile int past = argc + 100;
    auto* block = static_cast<char*>(std::calloc(1, 100));
    const int byte = block[past];
    std::free(block);
    return byte == 0 ? 0 : 1;
}
