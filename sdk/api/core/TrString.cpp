#include "TrString.h"

#include <QCoreApplication>

#include <private/PrettyFunction.h>

class TrStringData : public QSharedData
{
public:
    QString plain;
    QByteArray context;
    QByteArray source;
    QStringList args;
    int n = -1;

    bool isPlain() const { return source.isEmpty(); }
};

QByteArray trExtractContext(const char *prettyFunction)
{
    return QByteArray::fromStdString(parsePrettyFunction(prettyFunction).scope);
}

namespace {
// The length of the number at `at`, two digits at most as with QString::arg().
int digitsAt(const QString &text, int at)
{
    int count = 0;
    while (count < 2 && at + count < text.size() && text[at + count].isDigit())
        ++count;
    return count;
}

// All markers in one pass, so that nothing in an argument is taken for a marker.
QString withArgs(const QString &text, const QStringList &args)
{
    if (args.isEmpty())
        return text;
    QString result;
    for (int at = 0; at < text.size(); ++at) {
        const int digits = text[at] == QLatin1Char('%') ? digitsAt(text, at + 1) : 0;
        const int number = text.midRef(at + 1, digits).toInt();
        if (number >= 1 && number <= args.size()) {
            result += args.at(number - 1);
            at += digits;
        } else {
            result += text[at];
        }
    }
    return result;
}

QString withCount(QString text, int n)
{
    return n < 0 ? text : text.replace(QLatin1String("%n"), QString::number(n));
}
} // namespace

TrString::TrString()
    : d(new TrStringData)
{
}

TrString::TrString(const QString &plain)
    : TrString()
{
    d->plain = plain;
}

TrString::TrString(
    const QByteArray &context, const char *sourceText, const QStringList &args, int n)
    : TrString()
{
    d->context = context;
    d->source = sourceText;
    d->args = args;
    d->n = n;
}

TrString::TrString(const TrString &other) = default;
TrString::TrString(TrString &&other) noexcept = default;
TrString &TrString::operator=(const TrString &other) = default;
TrString &TrString::operator=(TrString &&other) noexcept = default;
TrString::~TrString() = default;

bool TrString::isEmpty() const
{
    return d->isPlain() && d->plain.isEmpty();
}

QString TrString::toString() const
{
    if (d->isPlain())
        return d->plain;
    return withArgs(QCoreApplication::translate(d->context, d->source, nullptr, d->n), d->args);
}

QString TrString::sourceString() const
{
    if (d->isPlain())
        return d->plain;
    return withArgs(withCount(QString::fromUtf8(d->source), d->n), d->args);
}

QByteArray TrString::context() const
{
    return d->context;
}

bool operator==(const TrString &a, const TrString &b)
{
    return a.d == b.d
        || (a.d->plain == b.d->plain && a.d->context == b.d->context && a.d->source == b.d->source
            && a.d->args == b.d->args && a.d->n == b.d->n);
}
