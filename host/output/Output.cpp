#include "output/Output.h"

#include "Failure.h"
#include "Text.h"
#include "output/Progress.h"
#include "output/SafeText.h"

#include <api/core/OrkaHash.h>

#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {
bool anythingIsWritten = false;
} // namespace

bool isAnythingWritten()
{
    return anythingIsWritten;
}

void writeLine(const QString &line)
{
    writeText(line.toUtf8() + '\n');
}

void writeText(const QByteArray &bytes)
{
    Progress::hide();
    anythingIsWritten = true;
    const bool written =
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size())
        && std::fflush(stdout) == 0;
    if (!written && errno == EPIPE)
        throw ReaderGone();
    if (!written) {
        throw Failure(AnsweredWithError, QStringLiteral("output"),
            Text::tr("The answer could not be written to standard output: %1.")
                .arg(QString::fromLocal8Bit(std::strerror(errno))));
    }
}

QString withoutRawControls(const QString &json)
{
    if (std::none_of(
            json.begin(), json.end(), [](QChar c) { return obeyedByTerminals(c.unicode()); })) {
        return json;
    }
    QString safe;
    safe.reserve(json.size());
    for (const QChar c : json) {
        if (obeyedByTerminals(c.unicode())) {
            safe += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            safe += c;
        }
    }
    return safe;
}

void writeJson(const OrkaHash &document)
{
    writeLine(withoutRawControls(document.toJsonString()));
}

void tell(const QString &sentence)
{
    Progress::hide();
    QStringList lines = sentence.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = safeText(line);
    const QString text = QStringLiteral("orka: %1\n").arg(lines.join(QLatin1Char('\n')));
    std::fputs(text.toUtf8().constData(), stderr);
}
