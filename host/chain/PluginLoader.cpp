#include "chain/PluginLoader.h"

#include "Failure.h"
#include "Language.h"
#include "Text.h"
#include "chain/Installation.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLibrary>
#include <QVariant>

#include <cstring>
#include <link.h>

namespace {

using Entry = void *(*)(const char *name, void *config);

Failure noPlugin(const QString &sentence)
{
    return missing(QStringLiteral("noPlugin"), sentence);
}

void checkFile(const QFileInfo &file)
{
    const QString path = quoted(file.filePath());
    if (!file.exists()) {
        throw noPlugin(Text::tr("There is no plug-in %1. Build or install it, or name "
                                "another with --plugin FILE.")
                           .arg(path));
    }
    if (!file.isFile()) {
        throw noPlugin(
            Text::tr("%1 is no file, so it can't be a plug-in. Name the library itself, a "
                     "file that ends in .so.")
                .arg(path));
    }
    if (!file.isReadable()) {
        throw noPlugin(Text::tr("The plug-in %1 may not be read. Give yourself the right to "
                                "read it, or name another.")
                           .arg(path));
    }
}

/// The loader maps a library that was cut off while it was copied, and dies on its missing pages.
bool isCutOff(const QString &path)
{
    QFile file(path);
    ElfW(Ehdr) header = {};
    if (!file.open(QIODevice::ReadOnly)
        || file.read(reinterpret_cast<char *>(&header), sizeof(header)) != sizeof(header)
        || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        return false; // no library at all: the loader says so
    }
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment = {};
        const bool read = file.seek(qint64(header.e_phoff) + qint64(i) * header.e_phentsize)
            && file.read(reinterpret_cast<char *>(&segment), sizeof(segment)) == sizeof(segment);
        const bool whole = read && segment.p_offset <= quint64(file.size())
            && segment.p_filesz <= quint64(file.size()) - segment.p_offset;
        if (!whole)
            return true;
    }
    return false;
}

Entry resolveEntry(const QString &path)
{
    if (isCutOff(path)) {
        throw noPlugin(Text::tr("%1 can't be loaded as a plug-in: the file is cut off. Copy "
                                "or build it again.")
                           .arg(quoted(path)));
    }
    QLibrary library(path);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load()) {
        throw noPlugin(Text::tr("%1 can't be loaded as a plug-in: %2. It is no library for "
                                "this machine, or something that it needs is missing.")
                           .arg(quoted(path), safeText(library.errorString())));
    }
    Language::addWorkersTexts();
    const auto entry = reinterpret_cast<Entry>(library.resolve("worker_create"));
    if (entry == nullptr) {
        throw noPlugin(Text::tr("%1 is a library but no plug-in: it doesn't export "
                                "worker_create. Name a worker's library.")
                           .arg(quoted(path)));
    }
    return entry;
}

} // namespace

std::unique_ptr<CMSyncWorker> loadWorker(const GlobalOptions &options)
{
    const QFileInfo file(options.plugin.isEmpty() ? Installation::plugin() : options.plugin);
    checkFile(file);
    // An absolute path: the loader looks a bare name up in the system's folders.
    const Entry create = resolveEntry(file.absoluteFilePath());

    QHash<QString, QVariant> configuration;
    configuration.insert(CMWorker::Prefix_(), options.prefix);
    if (!options.serviceId.isNull())
        configuration.insert(OrkaService_Id(), options.serviceId);
    const QByteArray name = file.completeBaseName().toUtf8();
    auto *worker = static_cast<CMSyncWorker *>(create(name.constData(), &configuration));
    if (worker == nullptr) {
        throw noPlugin(Text::tr("The plug-in %1 was loaded, but its worker_create gave no "
                                "worker. Run the command again with -vvv to see why.")
                           .arg(quoted(file.filePath())));
    }
    return std::unique_ptr<CMSyncWorker>(worker);
}
