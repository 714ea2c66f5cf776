// bm_process NAME RUNS COMMAND…: whole-process figures of a command on the session bus: medians of
// its processor time (user and system), elapsed time and peak memory. What the command prints is
// dropped; a command that fails ends this one.

#include "Figures.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Usage
{
    double processor;
    double elapsed;
    double megabytes;
};

double seconds(const timeval &time)
{
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

[[noreturn]] void become(char **command)
{
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

Usage run(char **command)
{
    const double start = figures::now();
    const pid_t child = fork();
    if (child == 0)
        become(command);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "%s failed and can't be compared.\n", command[0]);
        std::exit(3);
    }
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), figures::now() - start,
        double(usage.ru_maxrss) / 1024};
}

} // namespace

int main(int argc, char **argv)
{
    const int runs = argc > 3 ? QByteArray(argv[2]).toInt() : 0;
    if (runs < 1) {
        std::fputs("usage: bm_process NAME RUNS COMMAND…\n", stderr);
        return 2;
    }
    QVector<double> processor;
    QVector<double> elapsed;
    QVector<double> megabytes;
    for (int i = 0; i < runs; ++i) {
        const Usage usage = run(argv + 3);
        processor.append(usage.processor * 1e3);
        elapsed.append(usage.elapsed * 1e3);
        megabytes.append(usage.megabytes);
    }
    const QByteArray name = argv[1];
    figures::report(name + ", user and system ms", figures::median(processor));
    figures::report(name + ", elapsed ms", figures::median(elapsed));
    figures::report(name + ", peak MB", figures::median(megabytes));
}
