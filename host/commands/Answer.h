#pragma once

#include "GlobalOptions.h"
#include "tree/RowsReader.h"

#include <api/core/CMError.h>

class CMPath;
class ContentWatch;
class RowSource;
class ServerNotes;

/// That a list isn't whole: how many of its rows are missing, and why.
QString incompleteSentence(int lacking, int rowsCount, const QString &why);

/// Writes what was answered: as JSON where the options ask for it, else as text. `first` is the
/// position of the first row; `error` is why the rows aren't all.
void writeAnswer(const GlobalOptions &options, const CMPath &path, const Rows &rows, int first,
    const CMError &error = CMError());
void writeAnswer(const GlobalOptions &options, const CMPath &path, const OrkaRoles &roles);

/// Writes rows as they come, each page at once. Returns the status: where the rows end early it is
/// AnsweredWithError, and standard error says what is missing and why. Throws Failure where nothing
/// came at all.
/// `watch` began before the first page; what `notes` say is told behind the rows.
int writeRowsOf(const GlobalOptions &options, const CMPath &path, RowSource &source,
    const ContentWatch &watch, int first, int step = 1, bool isLong = false,
    ServerNotes *notes = nullptr);
