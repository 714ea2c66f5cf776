#include "ServerScript.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

namespace {

const char *const help = R"(A UPnP media server for tests that does as it is told.

The script is a JSON object: {"udn","name","port","interfaces":[…],"behaviour":{…},"objects":[…]}.
Standard input takes one command a line; each is answered by one line:
  {"pageCap":3}   change the behaviour     calls     {"Browse":2,…}
  leave           go with a byebye         vanish    go without one
  start           come back                quit)";

void say(const QString &line)
{
    QTextStream(stdout) << line << QLatin1Char('\n') << Qt::flush;
}

QString countedCalls(const ScriptedUpnpServer &server)
{
    QJsonObject counts;
    for (const SoapCall &call : server.calls())
        counts[call.action] = counts[call.action].toInt() + 1;
    return QString::fromUtf8(QJsonDocument(counts).toJson(QJsonDocument::Compact));
}

QString obey(ScriptedUpnpServer &server, const QByteArray &command)
{
    if (command.startsWith('{'))
        return applyBehaviour(server.behaviour, QJsonDocument::fromJson(command).object());
    if (command == "calls")
        return countedCalls(server);
    if (command == "start")
        return server.start();
    if (command == "leave")
        server.leave();
    else if (command == "vanish")
        server.vanish();
    else if (command == "quit")
        QCoreApplication::quit();
    else
        return QStringLiteral("Unknown command. See --help.");
    return {};
}

/// The whole lines that are there; quits at the end of the input.
void readCommands(ScriptedUpnpServer &server, QByteArray &pending)
{
    char bytes[4096];
    const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0)
        return QCoreApplication::quit();
    pending.append(bytes, int(count));
    for (int end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        const QString answer = obey(server, pending.left(end).trimmed());
        say(answer.isEmpty() ? QStringLiteral("ok") : answer);
        pending.remove(0, end + 1);
    }
}

QJsonObject readScript(const QString &name)
{
    QFile file(name);
    QJsonParseError error{};
    const QJsonDocument document = file.open(QIODevice::ReadOnly)
        ? QJsonDocument::fromJson(file.readAll(), &error)
        : QJsonDocument();
    if (document.isObject())
        return document.object();
    const QString why = file.isOpen() ? error.errorString() : file.errorString();
    fprintf(stderr, "The script %s can't be used: %s.\n", qPrintable(name), qPrintable(why));
    exit(2);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(help));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("script"), QStringLiteral("A JSON file."));
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    const QJsonObject script = readScript(parser.positionalArguments().constFirst());
    ScriptedUpnpServer server(
        script.value(QStringLiteral("udn"))
            .toString(QStringLiteral("uuid:5c217ed0-0000-0000-0000-000000000001")),
        script.value(QStringLiteral("name")).toString(QStringLiteral("Scripted")));
    addObjects(server.tree, script.value(QStringLiteral("objects")).toArray());
    QStringList interfaces;
    for (const QJsonValue &name : script.value(QStringLiteral("interfaces")).toArray())
        interfaces.append(name.toString());
    server.announceOn(interfaces);
    QString wrong =
        applyBehaviour(server.behaviour, script.value(QStringLiteral("behaviour")).toObject());
    if (wrong.isEmpty())
        wrong = server.start(quint16(script.value(QStringLiteral("port")).toInt()));
    if (!wrong.isEmpty()) {
        fprintf(stderr, "%s\n", qPrintable(wrong));
        return 2;
    }
    say(QStringLiteral("listening on port %1").arg(server.port()));

    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(
        &input, &QSocketNotifier::activated, &app, [&] { readCommands(server, pending); });
    return QCoreApplication::exec();
}
