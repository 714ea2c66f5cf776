#include "tree/NearestTitles.h"

#include "Text.h"
#include "output/SafeText.h"
#include "tree/Place.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int longest = 64; // characters compared, so that long titles cost little
constexpr int kept = 3;

/// Levenshtein distance.
int editDistance(const QString &a, const QString &b)
{
    QVector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < b.size(); ++j) {
            const int replaced = diagonal + (a.at(i) == b.at(j) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.last();
}

} // namespace

NearestTitles::NearestTitles(const QString &wanted)
    : m_wanted(wanted.left(longest).toCaseFolded())
{
}

int NearestTitles::distanceTo(const QString &title) const
{
    const QString folded = title.left(longest).toCaseFolded();
    if (folded == m_wanted)
        return 0;
    if (!folded.isEmpty() && (folded.contains(m_wanted) || m_wanted.contains(folded)))
        return 1;
    return 1 + editDistance(folded, m_wanted);
}

void NearestTitles::add(const QString &title)
{
    const int distance = distanceTo(title);
    if (distance > 2 + m_wanted.size() / 3)
        return;
    const QPair<int, QString> entry(distance, title);
    if (m_best.contains(entry))
        return;
    m_best.insert(std::upper_bound(m_best.begin(), m_best.end(), entry), entry);
    if (m_best.size() > kept)
        m_best.removeLast();
}

QStringList NearestTitles::titles() const
{
    QStringList titles;
    for (const auto &entry : m_best)
        titles.append(entry.second);
    return titles;
}

QString NearestTitles::question() const
{
    QStringList names;
    for (const QString &title : titles())
        names.append(quoted(titleInPlace(title)));
    return names.isEmpty() ? QString()
                           : Text::tr(" Did you mean %1?").arg(names.join(Text::tr(" or ")));
}
