#pragma once

struct GlobalOptions;

/// Sets log4cplus up before any worker is loaded: silent where nobody asked, lines on standard
/// error for -v and more, or what --log-config says. Messages are made safe for terminals. Qt's own
/// messages go to the logger "Qt". Throws Failure (wrong usage) when the file can't be read.
void startLogging(const GlobalOptions &options);
