// A library that a start-up must survive: its entry point has another name.
extern "C" __attribute__((visibility("default"))) unsigned AnotherCommand(void* request);

unsigned AnotherCommand(void* /*request*/) {
    return 0;
}
