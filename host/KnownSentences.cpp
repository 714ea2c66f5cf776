#include "KnownSentences.h"

#include "Text.h"

#include <api/core/TrString.h>

#include <QRegularExpression>

#include <vector>

namespace {

constexpr const char *sentences[] = {
    // The command line's parser
    Text::mark("%1 is required"),
    Text::mark("%1: %2 required %3 missing"),
    Text::mark("%1: Value %2 not in range %3 to %4"),
    Text::mark("Could not convert: %1 = %2"),
    // What the bridge says of servers that it lacks
    Text::mark("The media server \"%1\" was there before, at %2, but does not answer now."),
    Text::mark(
        "The media server \"%1\" is there, at %2, but is not heard, neither announcing itself "
        "nor answering the search: multicast doesn't get through, or a firewall drops the "
        "answers."),
    Text::mark(
        "The network has just come up or changed, and media servers are still being searched "
        "for."),
    Text::mark("A media server at %1 has announced itself and not described itself yet."),
    Text::mark(
        "%1 media servers at %2 have announced themselves and not described themselves yet."),
    Text::mark("Media servers can't be heard at %1 (%2)."),
    // and of addresses
    Text::mark("A media server at %1 has not answered yet; it is still looked for."),
    Text::mark(
        "Nothing answered the search at %1, port 1900, and of the usual descriptions %2; if a "
        "media server runs there, name its port, as in \"%3\", or the URL of its description."),
    Text::mark("%1 can't be read (%2)"),
    Text::mark("%1 can't be read (%2)."),
    Text::mark("The name \"%1\" can't be resolved (%2)."),
    Text::mark("%1 is no address of a media server: %2"),
    Text::mark("give a host (nas, 10.0.0.2), a host and its port (nas:8200) or the URL of a "
               "description (http://nas:8200/rootDesc.xml)."),
    Text::mark("media servers are asked over http:// alone."),
    Text::mark("media servers are asked without a user name; leave it out."),
    Text::mark("ports go from 1 to 65535."),
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
        const QString form =
            QRegularExpression::escape(QLatin1String(text)).replace(mark, QStringLiteral("(.*)"));
        known.push_back({text, QRegularExpression(QRegularExpression::anchoredPattern(form))});
    }
    return known;
}

} // namespace

QString translatedSentence(const QString &sentence)
{
    static const std::vector<Known> known = knownSentences();
    for (const Known &one : known) {
        const QRegularExpressionMatch match = one.form.match(sentence);
        if (!match.hasMatch())
            continue;
        QStringList parts;
        for (const QString &part : match.capturedTexts().mid(1))
            parts.append(translatedSentence(part));
        return TrString("Text", one.text, parts).toString();
    }
    return sentence;
}
