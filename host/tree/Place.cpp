#include "tree/Place.h"

#include "Failure.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QRegularExpression>

namespace {

QStringList splitTitles(const QString &text)
{
    QStringList titles{QString()};
    for (int i = 0; i < text.size(); ++i) {
        const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (text.at(i) == QLatin1Char('\\')
            && (next == QLatin1Char('/') || next == QLatin1Char('\\'))) {
            titles.last() += next;
            ++i;
        } else if (text.at(i) == QLatin1Char('/')) {
            titles.append(QString());
        } else {
            titles.last() += text.at(i);
        }
    }
    return titles;
}

} // namespace

Place parsePlace(const QString &text, const QString &prefix)
{
    if (text.startsWith(prefix + QLatin1Char(':')))
        return {parsePath(text), {}, text};
    if (text.isEmpty()) {
        throw wrongUsage(Text::tr("An empty place names nothing. Write a node path or titles "
                                  "joined by \"/\", like \"My NAS/Music\"; \"/\" alone is "
                                  "the list of media servers."));
    }
    QStringList titles = splitTitles(text);
    if (titles.size() > 1 && titles.first().isEmpty())
        titles.removeFirst();
    if (titles.last().isEmpty())
        titles.removeLast();
    if (titles.contains(QString())) {
        throw wrongUsage(Text::tr("The place %1 has an empty title between two slashes. A "
                                  "slash that belongs to a title is written \\/.")
                             .arg(quoted(text)));
    }
    return {CMPath(), titles, text};
}

QString titleInPlace(const QString &title)
{
    static const QRegularExpression special(QStringLiteral(R"((/|\\(?=[/\\]|$)))"));
    return QString(title).replace(special, QStringLiteral(R"(\\1)"));
}

CMPath parsePath(const QString &text)
{
    CMPath path = CMPath::fromEncoded(text);
    if (path.isEmpty()) {
        throw wrongUsage(
            Text::tr("%1 is no node path. A node path looks like "
                     "upnp:/uuid:4d69/64?itemType=container, with everything else than "
                     "letters and digits percent-encoded; \"orka --json ls\" prints them.")
                .arg(quoted(text)));
    }
    return path;
}
