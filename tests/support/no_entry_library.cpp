// A library that a start-up must survive: its entry point has another name, and calls a function that is nowhere, which
// only a loader that binds everything at once would notice.
extern "C" unsigned isNowhere(void* request);
extern "C" __attribute__((visibility("default"))) unsigned AnotherCommand(void* request);

unsigned AnotherCommand(void* request) {
    return isNowhere(request);
}
