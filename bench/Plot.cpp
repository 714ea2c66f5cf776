#include "Plot.h"

#include "Figures.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int width = 300;
constexpr int height = 240;
constexpr int left = 52;
constexpr int right = 14;
constexpr int top = 34;
constexpr int bottom = 34;
constexpr int plotsInARow = 3;

/// Where the numbers of one curve lie in its plot.
class Scale
{
public:
    explicit Scale(const Curve &curve)
        : m_decades(
            std::ceil(std::log10(*std::max_element(curve.counts.begin(), curve.counts.end()))))
        , m_highest(1.4 * *std::max_element(curve.costs.begin(), curve.costs.end()))
    {
    }
    int decades() const { return int(m_decades); }
    double x(double count) const
    {
        return left + (width - left - right) * std::log10(count) / m_decades;
    }
    double y(double cost) const
    {
        return height - bottom - (height - top - bottom) * cost / m_highest;
    }

private:
    double m_decades;
    double m_highest;
};

QString text(double x, double y, const QString &anchor, const QString &words)
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\">%4</text>\n")
        .arg(x)
        .arg(y)
        .arg(anchor, words);
}

QString axes(const Scale &scale)
{
    QString out;
    for (int decade = 0; decade <= scale.decades(); ++decade) {
        const double count = std::pow(10, decade);
        out += QStringLiteral("<path class=\"grid\" d=\"M%1 %2V%3\"/>\n")
                   .arg(scale.x(count))
                   .arg(top)
                   .arg(height - bottom);
        out += text(scale.x(count), height - bottom + 14, QStringLiteral("middle"),
            QString::number(qint64(count)));
    }
    return out
        + QStringLiteral("<path class=\"axis\" d=\"M%1 %2V%3H%4\"/>\n")
              .arg(left)
              .arg(top)
              .arg(height - bottom)
              .arg(width - right);
}

QString band(const Scale &scale, double median)
{
    return QStringLiteral("<rect class=\"band\" x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\"/>\n")
               .arg(left)
               .arg(scale.y(1.2 * median))
               .arg(width - left - right)
               .arg(scale.y(0.8 * median) - scale.y(1.2 * median))
        + text(
            left - 4, scale.y(median) + 4, QStringLiteral("end"), QString::number(median, 'g', 3));
}

QString line(const Scale &scale, const Curve &curve)
{
    QString points;
    QString dots;
    for (int i = 0; i < curve.counts.size(); ++i) {
        const double x = scale.x(curve.counts.at(i));
        const double y = scale.y(curve.costs.at(i));
        points += QStringLiteral("%1,%2 ").arg(x).arg(y);
        dots += QStringLiteral("<circle cx=\"%1\" cy=\"%2\" r=\"2.5\"/>\n").arg(x).arg(y);
    }
    return QStringLiteral("<polyline points=\"%1\"/>\n").arg(points.trimmed()) + dots;
}

QString plot(const Curve &curve)
{
    const Scale scale(curve);
    return band(scale, figures::median(curve.costs)) + axes(scale) + line(scale, curve)
        + text(left, 18, QStringLiteral("start"), curve.title)
        + text(width - right, top - 2, QStringLiteral("end"), curve.unit);
}

const char style[] = "<style>text{font:11px sans-serif;fill:#333}.grid{stroke:#ddd}"
                     ".axis{stroke:#888;fill:none}.band{fill:#eee}"
                     "polyline{stroke:#1f6fb2;stroke-width:1.5;fill:none}circle{fill:#1f6fb2}"
                     "</style>\n";

} // namespace

QString drawPlots(const QVector<Curve> &curves)
{
    const int rows = (curves.size() + plotsInARow - 1) / plotsInARow;
    QString out = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" "
                                 "viewBox=\"0 0 %1 %2\">\n")
                      .arg(width * plotsInARow)
                      .arg(height * rows)
        + QLatin1String(style)
        + QStringLiteral("<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n");
    for (int i = 0; i < curves.size(); ++i)
        out += QStringLiteral("<g transform=\"translate(%1,%2)\">\n")
                   .arg(i % plotsInARow * width)
                   .arg(i / plotsInARow * height)
            + plot(curves.at(i)) + QStringLiteral("</g>\n");
    return out + QStringLiteral("</svg>\n");
}
