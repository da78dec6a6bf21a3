// Runs a program and prints what it took: wall-clock, user and system seconds and the peak of its memory in bytes. A
// program of its own, since a child is charged with the peak of whatever started it.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

double Seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::execv(argv[1], argv + 1);
        ::_exit(127);
    }
    int status = 0;
    rusage used{};
    if (child < 0 || ::wait4(child, &status, 0, &used) != child)
        return 2;
    const std::chrono::duration<double> wall = Clock::now() - start;
    std::fprintf(stderr, "%.6f %.6f %.6f %ld\n", wall.count(), Seconds(used.ru_utime), Seconds(used.ru_stime),
                 used.ru_maxrss * 1024);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 126;
}
