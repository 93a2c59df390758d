// The least that any program could do in a command's place: what zebcli costs is measured against it.
//
//   bench_floor LOG              a refused command: one line, two log records
//   bench_floor LOG RECORDING    a served one: the recorded requests, as many bytes of output, two log records
//   bench_floor -ring LOG        a refused command that reads a full log once to its end
//
// A recording holds the output's length and the requests of one run of zebcli; recording.pl makes it from a trace.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

enum { kRecord = 200, kRoom = 1 << 20, kDcmdHead = 28, kPassThrough = 6, kDcmd = 3, kLongestData = 64 << 10 };

struct Request {
    uint8_t header[32];
    void* data;
};
typedef uint32_t (*EntryPoint)(struct Request*);

// One request of a recording, followed by what goes out with it.
struct Recorded {
    uint8_t header[32];
    uint32_t hasData;
    uint32_t outSize;
};

static uint8_t recording[kRoom];
static uint8_t data[kLongestData];
static uint8_t payload[kLongestData];
static char output[4 * kRoom];

static void fillData(const struct Recorded* recorded, const uint8_t* out) {
    if (recorded->header[0] != kPassThrough || recorded->header[1] != kDcmd) {
        memcpy(data, out, recorded->outSize);
        return;
    }
    void* second = payload;
    memcpy(data, out, kDcmdHead);
    memcpy(data + kDcmdHead, &second, sizeof second);
    memcpy(payload, out + kDcmdHead, recorded->outSize - kDcmdHead);
}

// Sends every request; returns the recorded length of the output.
static uint32_t replay(EntryPoint entry, const uint8_t* at, const uint8_t* end) {
    uint32_t outputLength;
    memcpy(&outputLength, at, sizeof outputLength);
    at += sizeof outputLength;
    while (at < end) {
        struct Recorded recorded;
        struct Request request = {.data = data};
        memcpy(&recorded, at, sizeof recorded);
        at += sizeof recorded;
        memcpy(request.header, recorded.header, sizeof request.header);
        if (recorded.hasData == 0)
            request.data = NULL;
        fillData(&recorded, at);
        at += recorded.outSize;
        entry(&request);
    }
    return outputLength;
}

static int serve(const char* path) {
    const int fd = open(path, O_RDONLY);
    const ssize_t size = read(fd, recording, sizeof recording);
    close(fd);
    void* library = dlopen("libstorelib.so", RTLD_LAZY);
    if (library == NULL || size < (ssize_t)sizeof(uint32_t) || size == (ssize_t)sizeof recording)
        return 2;
    EntryPoint entry;
    *(void**)&entry = dlsym(library, "ProcessLibCommand");
    const uint32_t length = replay(entry, recording, recording + size);
    dlclose(library);
    return length <= sizeof output && write(STDOUT_FILENO, output, length) == (ssize_t)length ? 0 : 2;
}

static int refuse(void) {
    static const char line[] = "Error - Invalid input at or near token nonsense.\n";
    return write(STDOUT_FILENO, line, sizeof line - 1) > 0 ? 0 : 2;
}

// A record is two lines of the log: its own and the one that marks the end.
static int writeRecord(int log) {
    static char record[kRecord];
    flock(log, LOCK_EX);
    const ssize_t written = write(log, record, sizeof record) + write(log, record, sizeof record);
    flock(log, LOCK_UN);
    return written == 2 * kRecord ? 0 : 2;
}

int main(int argc, char** argv) {
    const int ring = argc == 3 && strcmp(argv[1], "-ring") == 0;
    if (argc < 2)
        return 2;
    const int log = open(argv[1 + ring], O_RDWR | O_CREAT | O_CLOEXEC, 0744);
    while (ring && read(log, data, sizeof data) > 0) {
    }
    lseek(log, 0, ring ? SEEK_SET : SEEK_END);
    const int first = writeRecord(log);
    const int done = argc == 3 && !ring ? serve(argv[2]) : refuse();
    return first | done | writeRecord(log);
}
