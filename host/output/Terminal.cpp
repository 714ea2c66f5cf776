#include "output/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

int Terminal::columns(int descriptor)
{
    winsize size = {};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool Terminal::hasColours()
{
    static const bool has = isatty(STDOUT_FILENO) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR")
        && !qEnvironmentVariableIsEmpty("TERM") && qgetenv("TERM") != "dumb";
    return has;
}

QString Terminal::styled(const QString &text, Style style)
{
    // ECMA-48's "select graphic rendition"; red, green and yellow are the terminal's own.
    static const char *const codes[] = {"", "2", "1", "32", "33", "31"};
    if (style == Style::Plain || text.isEmpty() || !hasColours())
        return text;
    return QStringLiteral("\033[%1m").arg(QLatin1String(codes[int(style)])) + text
        + QStringLiteral("\033[0m");
}
