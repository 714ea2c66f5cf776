#pragma once

#include <QRegularExpression>

/// The few search criteria that are sent: nothing, or one `name op "value"`.
class FakeQuery
{
public:
    explicit FakeQuery(const QString &text)
    {
        static const QRegularExpression relation(
            QStringLiteral(R"re(([@:\w]+) (=|contains|derivedfrom) "((?:[^"\\]|\\.)*)")re"));
        const QRegularExpressionMatch match = relation.match(text);
        name = match.captured(1);
        m_op = match.captured(2);
        m_value = match.captured(3).replace(
            QRegularExpression(QStringLiteral("\\\\(.)")), QStringLiteral("\\1"));
    }

    /// What is looked at; empty where everything fits.
    QString name;
    bool fits(const QString &text) const
    {
        return name.isEmpty() || text == m_value
            || (m_op == QLatin1String("contains") && text.contains(m_value, Qt::CaseInsensitive))
            || (m_op == QLatin1String("derivedfrom") && text.startsWith(m_value + '.'));
    }

private:
    QString m_op, m_value;
};
