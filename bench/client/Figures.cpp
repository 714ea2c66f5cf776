#include "Figures.h"

#include <algorithm>
#include <cstdio>

namespace {

double seconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace

void figures::report(const char *name, double value)
{
    std::printf("{\"name\": \"%s\", \"value\": %.6g}\n", name, value);
    std::fflush(stdout);
}

double figures::median(QVector<double> values)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 ? values.at(middle) : (values.at(middle - 1) + values.at(middle)) / 2;
}

double figures::now()
{
    return seconds(CLOCK_MONOTONIC);
}

double figures::threadTime()
{
    return seconds(CLOCK_THREAD_CPUTIME_ID);
}

double figures::processTime()
{
    return seconds(CLOCK_PROCESS_CPUTIME_ID);
}
