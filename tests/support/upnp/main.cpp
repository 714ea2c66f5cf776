// scripted-upnp-server UDN: a UPnP media server with a folder "f" of 20 tracks, as a process that
// a test can stop and kill. Prints a line when it is there.

#include "ScriptedUpnpServer.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ScriptedUpnpServer server(app.arguments().value(1));
    server.tree.addFolder("f", "0", "Folder", 20);
    const QString wrong = server.start();
    std::printf("%s\n", wrong.isEmpty() ? "listening" : qPrintable(wrong));
    std::fflush(stdout);
    return wrong.isEmpty() ? QCoreApplication::exec() : 2;
}
