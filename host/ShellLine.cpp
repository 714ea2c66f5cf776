#include "ShellLine.h"

#include <cstring>

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n';
}

/// Whether a backslash before this one takes away its meaning.
bool isEscaped(char c, char quote)
{
    return quote == 0 || (quote == '"' && c != 0 && std::strchr("\"\\$`", c) != nullptr);
}

} // namespace

ShellLine parseShellLine(const QByteArray &line)
{
    ShellLine parsed;
    QByteArray word;
    bool isBetween = true;
    for (int i = 0; i < line.size(); ++i) {
        const char c = line.at(i);
        if (parsed.quote == 0 && isBlank(c)) {
            if (!isBetween)
                parsed.words.append(QString::fromUtf8(word));
            word.clear();
            isBetween = true;
            continue;
        }
        if (isBetween)
            parsed.start = i;
        isBetween = false;
        if (c == '\\' && parsed.quote != '\'' && i + 1 == line.size())
            break; // what it stands before isn't written yet
        if (c == '\\' && parsed.quote != '\'' && isEscaped(line.at(i + 1), parsed.quote)) {
            word += line.at(++i);
        } else if (c == parsed.quote) {
            parsed.quote = 0;
        } else if (parsed.quote == 0 && (c == '"' || c == '\'')) {
            parsed.quote = c;
        } else {
            word += c;
        }
    }
    if (isBetween)
        parsed.start = line.size();
    parsed.words.append(QString::fromUtf8(word));
    return parsed;
}

QString quotedForShell(const QString &text, char quote)
{
    static const QString special = QStringLiteral(" \t!\"#$&'()*,;<>?[\\]^`{|}~:=@");
    QString result;
    for (const QChar c : text) {
        if (quote == '\'' && c == QLatin1Char('\'')) {
            result += QStringLiteral(R"('\'')");
            continue;
        }
        const bool isSpecial =
            quote == '"' ? QStringLiteral("\"\\$`").contains(c) : quote == 0 && special.contains(c);
        if (isSpecial)
            result += QLatin1Char('\\');
        result += c;
    }
    return result;
}
