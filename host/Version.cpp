#include "Version.h"

#include "Text.h"
#include "chain/Installation.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QFileInfo>

#include <dlfcn.h>

namespace {

/// The file that a link leads to has the version in its name.
QString fileText(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() ? file.canonicalFilePath()
                         : path + QLatin1Char(' ') + Text::tr("(isn't there)");
}

QString sdkLibrary()
{
    Dl_info info = {};
    return dladdr(reinterpret_cast<const void *>(&orkaDBusConnection), &info) != 0
        ? QString::fromLocal8Bit(info.dli_fname)
        : QString();
}

} // namespace

std::string versionText(const QString &plugin)
{
    const QString file = plugin.isEmpty() ? Installation::plugin() : plugin;
    return QStringLiteral("orka %1\nQt %2\nSDK %3\nplug-in %4")
        .arg(QStringLiteral(ORKA_VERSION), QString::fromLatin1(qVersion()),
            safeText(fileText(sdkLibrary())), safeText(fileText(file)))
        .toStdString();
}
