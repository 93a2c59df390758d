// Preloaded where instructions are counted: one moment and one process id for every run, since the digits of both are
// formatted and counts are to repeat exactly.
#include <sys/time.h>
#include <sys/types.h>
#include <time.h>

static const time_t kMoment = 1700000000;

int gettimeofday(struct timeval* restrict now, void* restrict zone) {
    (void)zone;
    now->tv_sec = kMoment;
    now->tv_usec = 123456;
    return 0;
}

time_t time(time_t* now) {
    if (now != 0)
        *now = kMoment;
    return kMoment;
}

pid_t getpid(void);
pid_t getpid(void) {
    return 12345;
}
