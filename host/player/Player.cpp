#include "player/Player.h"

#include "Failure.h"
#include "Text.h"
#include "chain/ChildProcess.h"
#include "chain/Wait.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/TextOutput.h"
#include "player/MpvWatch.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace {

/// The program that a command begins with; its arguments stay in `arguments`.
QString findPlayer(const QString &command, QStringList *arguments)
{
    *arguments = QProcess::splitCommand(command);
    const QString name = arguments->isEmpty() ? QString() : arguments->takeFirst();
    QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty()) {
        throw missing(QStringLiteral("noPlayer"),
            Text::tr("There is no player %1. Install it, or name another with --player; "
                     "\"orka queue --format m3u8\" writes a playlist for any.")
                .arg(quoted(name)));
    }
    return program;
}

/// A disk that fills up takes the beginning and calls that no error; the rest then is one.
bool writeWhole(QFile &file, const QByteArray &bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 more = file.write(bytes.constData() + written, bytes.size() - written);
        if (more <= 0)
            return false;
        written += more;
    }
    return file.flush();
}

void writePlaylist(QTemporaryFile &file, const PlayListItems &items)
{
    if (!file.open() || !writeWhole(file, toM3u8(items).toUtf8())) {
        throw Failure(AnsweredWithError, QStringLiteral("output"),
            Text::tr("The playlist can't be written to %1: %2. Make room there, or set "
                     "TMPDIR to another folder.")
                .arg(quoted(QDir::tempPath()), file.errorString()));
    }
}

/// The item with this address, from `next` on and round; -1 for the playlist's own file and what
/// somebody added in the player.
int positionOf(const QString &url, const PlayListItems &items, int next)
{
    for (int i = 0; i < items.size(); ++i) {
        const int position = (next + i) % items.size();
        if (safeUrl(items.at(position).url()) == url)
            return position;
    }
    return -1;
}

void tellTrack(const PlayListItems &items, int position)
{
    const OrkaPlayListItem &item = items.at(position);
    const QString name = safeText(itemName(item));
    const QString length = lengthText(item.durationSeconds() * 1000LL);
    if (isatty(STDERR_FILENO) != 0)
        std::fputs("\r\033[K", stderr); // over the player's status line
    tell(Text::tr("Playing %1 of %2: %3")
             .arg(Text::number(position + 1), Text::number(items.size()),
                 length.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, length)));
}

int statusOf(const ChildProcess &player)
{
    return player.exitStatus() == QProcess::NormalExit ? player.exitCode()
                                                       : 128 + player.exitCode();
}

} // namespace

void requirePlayer(const QString &command)
{
    QStringList arguments;
    findPlayer(command, &arguments);
}

int playItems(const PlayListItems &items, const QString &command, bool quietOutput)
{
    QStringList arguments;
    const QString program = findPlayer(command, &arguments);
    QTemporaryFile playlist(QDir::tempPath() + QStringLiteral("/orka-XXXXXX.m3u8"));
    writePlaylist(playlist, items);

    ChildProcess player(ChildProcess::Foreground);
    player.setProcessChannelMode(QProcess::ForwardedChannels);
    player.setInputChannelMode(QProcess::ForwardedInputChannel);
    if (quietOutput)
        player.sendOutputToStderr();
    MpvWatch watch;
    int last = -1;
    QObject::connect(&watch, &MpvWatch::playing, &watch, [&](const QString &url) {
        const int position = positionOf(url, items, last + 1);
        if (position >= 0) {
            last = position;
            tellTrack(items, position);
        }
    });
    const bool isMpv = QFileInfo(program).fileName() == QLatin1String("mpv");
    if (isMpv && watch.playerDescriptor() >= 0) {
        player.inherit(watch.playerDescriptor());
        arguments << QStringLiteral("--input-ipc-client=fd://%1").arg(watch.playerDescriptor());
        // It announces each track, too, by its address. What the person set comes later and counts.
        arguments.prepend(QStringLiteral("--msg-level=cplayer=warn"));
    } else {
        tellTrack(items, 0);
    }

    Wait wait(std::chrono::hours(24));
    QObject::connect(&player, &QProcess::stateChanged, &wait, &Wait::wake);
    player.start(program, arguments << playlist.fileName());
    watch.start();
    while (!wait.until([&player] { return player.state() == QProcess::NotRunning; })) {
        // For days, if somebody likes.
    }
    if (player.error() == QProcess::FailedToStart) {
        throw missing(QStringLiteral("noPlayer"),
            Text::tr("The player %1 can't be started: %2. Name another with --player.")
                .arg(quoted(program), player.errorString()));
    }
    return statusOf(player);
}
