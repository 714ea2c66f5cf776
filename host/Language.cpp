#include "Language.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QTranslator>

#include <clocale>

namespace {

const QString folder = QStringLiteral(":/translations");

QString codeOf(const QLocale &locale)
{
    return locale.language() == QLocale::C ? QStringLiteral("en")
                                           : locale.name().section('_', 0, 0);
}

/// Then LANGUAGE counts for nothing.
bool isWithoutLanguage()
{
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QByteArray value = qgetenv(name);
        if (!value.isEmpty())
            return value == "C" || value == "POSIX" || value.startsWith("C.");
    }
    return true;
}

/// English numbers and dates are those of C, which all programs write.
QLocale wantedLocale()
{
    if (isWithoutLanguage())
        return QLocale::c();
    const QStringList names = QLocale::system().uiLanguages();
    for (const QString &name : names) {
        const QLocale locale(name);
        if (locale.language() == QLocale::English)
            break;
        if (QFile::exists(QStringLiteral("%1/orka_%2.qm").arg(folder, codeOf(locale))))
            return locale;
    }
    return QLocale::c();
}

} // namespace

void Language::choose()
{
    QLocale::setDefault(wantedLocale());
    addWorkersTexts();
}

void Language::addWorkersTexts()
{
    QCoreApplication *const application = QCoreApplication::instance();
    const QDir texts(folder, QStringLiteral("*_%1.qm").arg(codeOf(QLocale())));
    for (const QString &name : texts.entryList()) {
        if (application->findChild<QTranslator *>(name) != nullptr)
            continue;
        auto *translator = new QTranslator(application);
        translator->setObjectName(name);
        if (translator->load(texts.filePath(name)))
            QCoreApplication::installTranslator(translator);
    }
}

void Language::becomeEnglish()
{
    qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator *>());
    std::setlocale(LC_MESSAGES, "C");
    QLocale::setDefault(QLocale::c());
    addWorkersTexts();
}
