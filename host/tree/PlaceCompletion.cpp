#include "tree/PlaceCompletion.h"

#include "chain/Session.h"
#include "output/SafeText.h"
#include "tree/Place.h"
#include "tree/PlaceResolver.h"
#include "tree/RowsReader.h"

#include <algorithm>

namespace {

/// More than anybody chooses from.
constexpr int mostRows = 2000;

/// The length of the text up to and with its last slash that belongs to no title.
int lengthOfParent(const QString &text)
{
    int length = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('\\'))
            ++i;
        else if (text.at(i) == QLatin1Char('/'))
            length = i + 1;
    }
    return length;
}

/// A shell shows the line as it is, so a title that turns it around or moves the cursor is left
/// out.
bool isPlain(const QString &title)
{
    const QVector<uint> characters = title.toUcs4();
    return !title.isEmpty()
        && std::none_of(characters.begin(), characters.end(), obeyedByTerminals);
}

} // namespace

QStringList completePlace(Session &session, const QString &text)
{
    const QString parent = text.left(lengthOfParent(text));
    const Place place =
        parsePlace(parent.isEmpty() ? QStringLiteral("/") : parent, session.options().prefix);
    const CMPath folder = PlaceResolver(session).resolve(place, PlaceResolver::Folder);
    const QStringList roles{OrkaRoles::Title(), OrkaRoles::Type()};
    const Rows rows = readRows(session, folder, {0, mostRows - 1}, roles);
    QStringList places;
    for (const OrkaRoles &row : rows.rows) {
        const QString title = row.title().toString();
        const bool isFolder = row.type() == OrkaRolesType::Container;
        const QString candidate =
            parent + titleInPlace(title) + (isFolder ? QStringLiteral("/") : QString());
        if (isPlain(title) && candidate.startsWith(text) && !places.contains(candidate))
            places.append(candidate);
    }
    return places;
}
