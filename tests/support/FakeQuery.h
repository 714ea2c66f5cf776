#pragma once

#include <QRegularExpression>
#include <QVariantMap>

/// The few search criteria that the plug-in sends: nothing, or one `name op "value"`.
class FakeQuery
{
public:
    explicit FakeQuery(const QString &text)
    {
        static const QRegularExpression one(QStringLiteral(
            R"re(^\(?([A-Za-z]+) (contains|derivedfrom) "((?:[^"\\]|\\["\\])*)"\)?$)re"));
        const QRegularExpressionMatch match = one.match(text);
        m_name = match.captured(1);
        m_value = match.captured(3).replace(
            QRegularExpression(QStringLiteral(R"(\\(["\\]))")), QStringLiteral("\\1"));
        m_valid = text.isEmpty()
            || QStringList{"Artist", "Album", "DisplayName", "Type"}.contains(m_name);
    }

    bool isValid() const { return m_valid; }

    bool matches(const QVariantMap &properties) const
    {
        const QString value = properties.value(m_name).toString();
        if (m_name == QLatin1String("Type"))
            return m_value == QLatin1String("audio")
                && (value == QLatin1String("audio") || value == QLatin1String("music"));
        return m_name.isEmpty() || value.contains(m_value);
    }

private:
    QString m_name;
    QString m_value;
    bool m_valid;
};
