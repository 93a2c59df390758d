#include "log/last_error.h"

namespace {
unsigned int lastCode = 0;
const char* lastCall = "";
} // namespace

void DLLSetLastError(unsigned int code, const char* call) {
    lastCode = code;
    lastCall = call;
}

unsigned int DLLGetLastError(const char** call) {
    if (call != nullptr)
        *call = lastCall;
    return lastCode;
}
