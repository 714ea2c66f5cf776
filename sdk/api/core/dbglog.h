// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QDBusObjectPath>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <ostream>

class CMPath;
class OrkaHash;

/// The scoped name ("Class::function") within a compiler's pretty function text
/// ("virtual void Class::function(const T &)"); a leading "logger::" is dropped. Any thread.
ORKA_API_EXPORT std::string dbglog_scopedFunction(const char *prettyFunction, const char *logger);

/// How values look in log lines: text as it is, lists as "(a, b)", maps as "QMap((key, value)(key,
/// value))", paths in their encoded form, records as JSON.
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QVariant &value);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const CMPath &path);
#if !defined(ORKA_FOREIGN_SDK) || defined(ORKA_API_BUILD)
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QString &text);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QStringList &texts);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QVariantList &values);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QVariantMap &map);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QDBusObjectPath &path);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QList<CMPath> &paths);
ORKA_API_EXPORT std::ostream &operator<<(std::ostream &stream, const OrkaHash &record);
#endif
