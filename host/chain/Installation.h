#pragma once

#include <QString>

/// Where the other parts of the product are: beside the program orka in the build tree, or where
/// they are installed. Each gives the place where the part should be even when it isn't there.
namespace Installation {

QString plugin();
QString privateBusConfiguration();
/// The folder of the page that `serve` shows.
QString page();
/// The program that serves it.
QString pageProgram();
/// Falls back on PATH; empty when there is none.
QString bridge();

} // namespace Installation
