#pragma once

#include "GlobalOptions.h"

/// How the page is to be served.
struct PageOptions
{
    /// A numeric address; where it isn't a loopback one, the page is for who has the token.
    QString listen = QStringLiteral("127.0.0.1");
    quint16 port = 8770;
    /// Where the port is taken.
    bool mayTakeNextPort = true;
    /// Files in PEM. Without a certificate we make our own; without a key it is in the same file.
    QString certificate;
    QString key;
    /// Shows it in this machine's browser.
    bool opensBrowser = false;
};

/// Serves the page until a signal ends it. Throws as a command does. Null but in the program
/// orka-page.
[[gnu::weak]] int runPage(const PageOptions &options, const GlobalOptions &global);
