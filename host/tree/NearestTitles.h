#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

/// Out of any number of titles, keeps the few that a person who wrote `wanted` may have meant.
class NearestTitles
{
public:
    explicit NearestTitles(const QString &wanted);

    void add(const QString &title);
    /// Best first, three at most.
    QStringList titles() const;
    /// " Did you mean "A" or "B"?", as they are written in a place, or nothing.
    QString question() const;

private:
    int distanceTo(const QString &title) const;

    QString m_wanted;
    QVector<QPair<int, QString>> m_best;
};
