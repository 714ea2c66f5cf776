#include "chain/PageProgram.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Installation.h"
#include "output/SafeText.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

void becomePageProgram()
{
    QFile commandLine(QStringLiteral("/proc/self/cmdline"));
    commandLine.open(QIODevice::ReadOnly);
    QByteArrayList texts = commandLine.readAll().split('\0');
    texts.removeLast(); // each ends with a NUL
    std::vector<char *> arguments;
    for (QByteArray &text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    const QString program = Installation::pageProgram();
    execv(QFile::encodeName(program).constData(), arguments.data());
    const QString why = QString::fromLocal8Bit(std::strerror(errno));
    throw missing(QStringLiteral("noPage"),
        Text::tr("The page can't be served, since %1 can't be started: %2. Install the "
                 "program again, as a whole.")
            .arg(quoted(program), why));
}
