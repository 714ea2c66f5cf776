#include "output/Progress.h"

#include "Text.h"
#include "output/SafeText.h"
#include "output/Terminal.h"

#include <cstdio>
#include <unistd.h>

namespace {

bool isShown = false;

QElapsedTimer &programClock()
{
    static QElapsedTimer clock;
    return clock;
}

} // namespace

void Progress::startClock()
{
    programClock().start();
}

Progress::Progress(const QString &doing)
    : m_doing(safeText(doing))
{
    if (m_doing.isEmpty() || isatty(STDERR_FILENO) == 0)
        return;
    if (!programClock().isValid())
        startClock();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { show(); });
    m_timer.start(500);
}

Progress::~Progress()
{
    hide();
}

void Progress::setDoing(const QString &doing)
{
    m_doing = safeText(doing);
}

void Progress::hide()
{
    if (isShown)
        std::fputs("\r\033[K", stderr);
    isShown = false;
}

void Progress::show()
{
    if (programClock().elapsed() < 1000)
        return;
    isShown = true;
    const QString rest = QStringLiteral(" … ")
        + Text::tr("%1 s (Ctrl-C stops)").arg(programClock().elapsed() / 1000);
    // A line that wraps couldn't be taken back.
    const int room = Terminal::columns(STDERR_FILENO) - displayWidth(rest) - 1;
    const QString line = QStringLiteral("\r\033[K") + shortenedInTheMiddle(m_doing, room) + rest;
    std::fputs(line.toUtf8().constData(), stderr);
}
