#include "web/PageFiles.h"

#include "Failure.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QDirIterator>

namespace {

const char *typeOf(const QString &suffix)
{
    static const QHash<QString, const char *> types = {
        {QStringLiteral("html"), "text/html; charset=utf-8"},
        {QStringLiteral("css"), "text/css; charset=utf-8"},
        {QStringLiteral("js"), "text/javascript; charset=utf-8"},
        {QStringLiteral("svg"), "image/svg+xml"},
        {QStringLiteral("png"), "image/png"},
        {QStringLiteral("webmanifest"), "application/manifest+json"},
    };
    return types.value(suffix);
}

} // namespace

void servePage(HttpServer &server, const QString &folder)
{
    bool hasPage = false;
    QDirIterator files(folder, QDir::Files);
    while (files.hasNext()) {
        QFile file(files.next());
        const char *type = typeOf(files.fileInfo().suffix());
        if (type == nullptr || !file.open(QIODevice::ReadOnly))
            continue;
        const bool isIndex = files.fileName() == QLatin1String("index.html");
        hasPage = hasPage || isIndex;
        const QByteArray path = isIndex ? "/" : '/' + files.fileName().toUtf8();
        server.route("GET", path.constData(),
            [type, body = file.readAll()](
                const ExchangePointer &exchange) { exchange->answer(200, type, body); });
    }
    if (!hasPage) {
        throw missing(QStringLiteral("noPage"),
            Text::tr("The files of the page are not in %1. Install orka anew, or build it.")
                .arg(quoted(folder)));
    }
}
