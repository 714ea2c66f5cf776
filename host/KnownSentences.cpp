#include "KnownSentences.h"

#include "Text.h"

#include <api/core/TrString.h>

#include <QRegularExpression>

#include <vector>

namespace {

/// The first that fits is taken: what says less stands behind what says more. Without full stops at
/// their ends.
constexpr const char *sentences[] = {
    // What the bridge says of servers that it lacks
    Text::mark("The media server \"%1\" was there before, at %2, but does not answer now"),
    Text::mark(
        "The media server \"%1\" is there, at %2, but is not heard, neither announcing itself "
        "nor answering the search: multicast doesn't get through, or a firewall drops the answers"),
    Text::mark(
        "The network has just come up or changed, and media servers are still being searched for"),
    Text::mark("A media server at %1 has announced itself and not described itself yet"),
    Text::mark("%1 media servers at %2 have announced themselves and not described themselves yet"),
    Text::mark("Media servers can't be heard at %1 (%2)"),
    Text::mark(
        "The media server %1, heard from %2, keeps its description at %3, which is no http:// "
        "address of its own and isn't asked"),
    Text::mark("Media servers can't be remembered in %1 (%2): one that is off at the next start "
               "won't be missed"),
    // and of addresses
    Text::mark("\"%1\" is no address of a media server: %2"),
    Text::mark("give a host (nas, 10.0.0.2), a host and its port (nas:8200) or the URL of a "
               "description (http://nas:8200/rootDesc.xml)"),
    Text::mark("media servers are asked over http:// alone"),
    Text::mark("media servers are asked without a user name; leave it out"),
    Text::mark("ports go from 1 to 65535"),
    Text::mark("it is good on one link only; name the network interface, as in \"fe80::1%eth0\""),
    Text::mark("only addresses that begin with fe80 have a network interface (%); leave it out"),
    Text::mark("Servers are looked for at %1 addresses already; forget one of them first"),
    Text::mark("A media server at %1 has not answered yet; it is still looked for"),
    Text::mark("The name \"%1\" can't be resolved (%2)"),
    Text::mark("no answer within 5 s"),
    Text::mark("The name \"%1\" stands for %2, which is good on one link only; name its network "
               "interface, as in \"%3\""),
    Text::mark("There is no network interface \"%1\" now, on which %2 could be reached"),
    Text::mark("No search can be sent to %1 (%2)"),
    Text::mark("The media server at %1 keeps its description at %2, which is no http:// address of "
               "its own and isn't asked; name that URL itself if it begins with http://"),
    Text::mark(
        "Nothing answered the search at %1, port 1900, and of the usual descriptions %2; if a "
        "media server runs there, name its port, as in \"%3\", or the URL of its description"),
    Text::mark("%1 describes \"%2\", which is no media server: it has no content directory"),
    Text::mark("%1 describes \"%2\", whose content directory is at another machine, which isn't "
               "asked"),
    Text::mark("%1 describes \"%2\", whose content directory has a user name in its address and "
               "isn't asked"),
    Text::mark("%1 describes \"%2\", which has no UDN"),
    Text::mark("%1 gives no description, but the HTTP status %2"),
    Text::mark("%1 is no description of a device"),
    Text::mark("%1 doesn't describe %2"),
    Text::mark("Nobody listens at %1, the address for calls of \"%2\""),
    Text::mark("%1 was forgotten meanwhile"),
    Text::mark("%1 is no longer announced"),
    // of what was asked
    Text::mark("the media server \"%1\" did not answer within %2 seconds. It may be busy or "
               "hanging; try again, or restart it"),
    Text::mark("Could not connect to the media server \"%1\": %2"),
    Text::mark("The connection to the media server \"%1\" broke: %2"),
    Text::mark("The answer of the media server \"%1\" is too large: %2"),
    Text::mark(
        "the media server \"%1\" asks for a password, which can't be given (HTTP status %2)"),
    Text::mark("The answer of the media server \"%1\" can't be read (HTTP status %2)"),
    Text::mark("its answer isn't HTTP"),
    Text::mark("its answer is packed"),
    Text::mark("its head is longer than %1 KiB"),
    Text::mark("it is longer than %1 KiB"),
    Text::mark("it begins over and over"),
    Text::mark("it comes in too many small pieces"),
    Text::mark("too many long answers come at once"),
    Text::mark("\"%1\" is not a URL"),
    Text::mark("The list that \"%1\" sent can't be read"),
    Text::mark("The list was not complete after 20 seconds (%1 objects so far). Ask for fewer "
               "objects at a time"),
    Text::mark("\"%1\" counts %2 objects here, but none came behind the first %3"),
    Text::mark("\"%1\" counts %2 objects here, but only %3 came. Ask for a range to get those"),
    Text::mark("The server described no object"),
    Text::mark("Too many long lists are asked for at once. Try again when the others are answered, "
               "or ask for fewer objects at a time"),
    Text::mark("Too many calls at once: wait for the answers of those that are under way"),
    Text::mark("The answer is too long for one D-Bus message (%1 MiB). Ask for fewer objects at a "
               "time, or for fewer properties"),
    Text::mark("A query of %1 bytes is too long: %2 are allowed"),
    Text::mark("Query string is not valid. It is too long or nested too deeply"),
    Text::mark("Operation cancelled"),
    Text::mark("The media bridge gave the call up"),
    Text::mark("the server refused"),
    // and of its bus
    Text::mark("Can't reach the D-Bus \"%1\": %2. Start a bus (dbus-run-session does) or name one "
               "with --bus"),
    Text::mark("The bus doesn't give the name %1: %2"),
    Text::mark("Another media service is running: %1 is taken on this bus. Use that one, or stop "
               "it first"),
    Text::mark("The bus has gone away"),
    Text::mark("Another media service has taken the name"),
    // The system's words in them
    Text::mark("Could not connect to %1: %2"),
    Text::mark("Connection refused"),
    Text::mark("Connection terminated unexpectedly"),
    Text::mark("Connection reset by peer"),
    Text::mark("Connection timed out"),
    Text::mark("Socket I/O timed out"),
    Text::mark("No route to host"),
    Text::mark("Network is unreachable"),
    Text::mark("Name or service not known"),
    Text::mark("Temporary failure in name resolution"),
    Text::mark("Permission denied"),
    Text::mark("Read-only file system"),
    Text::mark("No space left on device"),
    Text::mark("Failed to connect to socket %1: %2"),
    Text::mark("No such file or directory"),
    // The command line's parser
    Text::mark("%1 is required"),
    Text::mark("%1: %2 required %3 missing"),
    Text::mark("%1: Value %2 not in range %3 to %4"),
    Text::mark("Could not convert: %1 = %2"),
    Text::mark("%1 was not readable (missing?)"),
    // The reader of JSON
    Text::mark("unterminated object"),
    Text::mark("unterminated array"),
    Text::mark("unterminated string"),
    Text::mark("missing name separator"),
    Text::mark("missing value separator"),
    Text::mark("illegal value"),
    Text::mark("illegal number"),
    Text::mark("object is missing after a comma"),
    Text::mark("garbage at the end of the document"),
    // What begins with anything
    Text::mark("%1 can't be read: its XML is cut off or broken"),
    Text::mark("%1 can't be read (%2)"),
    Text::mark("%1 (UPnP error %2)"),
    Text::mark("%1 doesn't answer"),
};

struct Known
{
    const char *text;
    QRegularExpression form;
};

std::vector<Known> knownSentences()
{
    static const QRegularExpression mark(QStringLiteral("\\\\%\\d"));
    std::vector<Known> known;
    for (const char *text : sentences) {
        const QString form = QRegularExpression::escape(QString::fromUtf8(text))
                                 .replace(mark, QStringLiteral("(.*)"));
        known.push_back({text, QRegularExpression(QRegularExpression::anchoredPattern(form))});
    }
    return known;
}

} // namespace

QString translatedSentence(const QString &sentence)
{
    static const std::vector<Known> known = knownSentences();
    constexpr int longest = 2000; // characters: parts are looked up, too, and theirs in turn
    if (sentence.size() > longest)
        return sentence;
    const QString end = sentence.endsWith(QLatin1Char('.')) ? QStringLiteral(".") : QString();
    const QString text = sentence.chopped(end.size());
    for (const Known &one : known) {
        const QRegularExpressionMatch match = one.form.match(text);
        if (!match.hasMatch())
            continue;
        QStringList parts;
        for (const QString &part : match.capturedTexts().mid(1))
            parts.append(translatedSentence(part));
        return TrString("Text", one.text, parts).toString() + end;
    }
    return sentence;
}
