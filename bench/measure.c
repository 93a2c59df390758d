// Runs command lines by turns and prints the medians of what each took: one line per command with the wall time and the
// processor time in microseconds, and the peak resident memory in KB.
//
//   bench_measure COUNT FILE PROGRAM ARGUMENT... [-- PROGRAM ARGUMENT...]...
//
// They read the file that BENCH_ANSWERS names, or nothing. Taking turns spreads a disturbance of the machine over all of them. FILE is the log that they write; before each run
// it is put back to what it held at first, so that all find the same.
#define _GNU_SOURCE
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kMostCommands = 4, kMostRuns = 10000, kLargestLog = 4 << 20 };

struct Samples {
    double wall[kMostRuns];
    double processor[kMostRuns];
    double memory[kMostRuns];
};
static struct Samples samples[kMostCommands];
static char logged[kLargestLog];
extern char** environ;

static double seconds(struct timeval time) {
    return (double)time.tv_sec + (double)time.tv_usec / 1e6;
}

static double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

static void runOnce(char** argv, const posix_spawn_file_actions_t* files, struct Samples* to, int run) {
    pid_t pid;
    int status = 0;
    struct rusage usage;
    const double start = now();
    if (posix_spawn(&pid, argv[0], files, NULL, argv, environ) != 0 || wait4(pid, &status, 0, &usage) != pid ||
        !WIFEXITED(status) || (WEXITSTATUS(status) != 0 && WEXITSTATUS(status) != 255)) {
        fprintf(stderr, "bench_measure: %s failed\n", argv[0]);
        exit(1);
    }
    to->wall[run] = (now() - start) * 1e6;
    to->processor[run] = (seconds(usage.ru_utime) + seconds(usage.ru_stime)) * 1e6;
    to->memory[run] = (double)usage.ru_maxrss;
}

static void putBack(int log, ssize_t size) {
    if (ftruncate(log, 0) != 0 || pwrite(log, logged, (size_t)size, 0) != size) {
        perror("bench_measure");
        exit(1);
    }
}

static int smallerFirst(const void* a, const void* b) {
    const double difference = *(const double*)a - *(const double*)b;
    return (difference > 0) - (difference < 0);
}

static double median(double* values, int count) {
    qsort(values, (size_t)count, sizeof *values, smallerFirst);
    return values[count / 2];
}

int main(int argc, char** argv) {
    const int runs = argc > 3 ? atoi(argv[1]) : 0;
    char** commands[kMostCommands] = {argv + 3};
    int count = 1;
    for (int i = 3; i < argc; ++i)
        if (strcmp(argv[i], "--") == 0 && count < kMostCommands) {
            argv[i] = NULL;
            commands[count++] = argv + i + 1;
        }
    const int log = argc > 3 ? open(argv[2], O_RDWR | O_CREAT | O_CLOEXEC, 0744) : -1;
    const ssize_t size = read(log, logged, sizeof logged);
    if (runs < 1 || runs > kMostRuns || size < 0)
        return 2;
    const char* answers = getenv("BENCH_ANSWERS");
    prctl(PR_SET_TIMERSLACK, 1UL); // inherited: a library that sleeps wakes when it asked to
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, answers != NULL ? answers : "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (int run = 0; run < runs; ++run)
        for (int i = 0; i < count; ++i) {
            putBack(log, size);
            runOnce(commands[i], &files, &samples[i], run);
        }
    for (int i = 0; i < count; ++i)
        printf("%.1f %.1f %.0f\n", median(samples[i].wall, runs), median(samples[i].processor, runs),
               median(samples[i].memory, runs));
    return 0;
}
