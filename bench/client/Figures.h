#pragma once

#include <QVector>

#include <ctime>

/// Results of the measuring programs: one JSON object a line on standard output, which the script
/// that runs them puts into its table.
namespace figures {

/// `name` as in the table of targets; the unit is the one that the target has.
void report(const char *name, double value);

/// Of an odd number the middle one, else the mean of the two in the middle; 0 of nothing.
double median(QVector<double> values);

/// Now, in seconds of a clock that never turns back.
double now();
/// Processor time of the calling thread, in seconds.
double threadTime();
/// Processor time of all threads of this process, in seconds.
double processTime();

} // namespace figures
