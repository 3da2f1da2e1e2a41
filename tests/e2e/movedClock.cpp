// Preloaded: the date is wrong by the seconds that the file named by MOVED_CLOCK holds, at every moment anew.
// What measures durations goes on as before.
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

time_t moved() {
    const char* const name = getenv("MOVED_CLOCK");
    const int file = name ? open(name, O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0) return 0;
    char text[32] = {};
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    return length > 0 ? atoll(text) : 0;
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* now) {
    const long result = syscall(SYS_clock_gettime, clock, now);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) now->tv_sec += moved();
    return static_cast<int>(result);
}

extern "C" int gettimeofday(timeval* now, void*) {
    timespec exact{};
    clock_gettime(CLOCK_REALTIME, &exact);
    *now = {exact.tv_sec, exact.tv_nsec / 1000};
    return 0;
}

extern "C" time_t time(time_t* kept) {
    timespec exact{};
    clock_gettime(CLOCK_REALTIME, &exact);
    if (kept) *kept = exact.tv_sec;
    return exact.tv_sec;
}
