#pragma once

#include <QString>
#include <QVector>

/// One line of a plot: cost per unit over the number of units, both from 1 or above.
struct Curve
{
    QString title;
    /// What a unit costs, such as "µs a row".
    QString unit;
    QVector<double> counts;
    QVector<double> costs;
};

/// Small plots beside each other, one for each curve, as an SVG document: counts on a logarithmic
/// scale, costs from 0. A grey band shows 20 % around the median cost.
QString drawPlots(const QVector<Curve> &curves);
