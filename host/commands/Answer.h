#pragma once

#include "GlobalOptions.h"
#include "tree/RowRange.h"
#include "tree/RowsReader.h"

class CMPath;
class Session;

/// Writes what was answered: as JSON where the options ask for it, else as text. `first` is the
/// position of the first row, `step` the distance between two.
void writeAnswer(
    const GlobalOptions &options, const CMPath &path, const Rows &rows, int first, int step = 1);
void writeAnswer(const GlobalOptions &options, const CMPath &path, const OrkaRoles &roles);

/// Reads rows in pages and writes each as it comes. Returns the status: where the rows end early it
/// is AnsweredWithError, and standard error says what is missing and why. Throws Failure where
/// nothing came at all.
int writeRowsOf(
    const GlobalOptions &options, Session &session, const CMPath &path, const RowRange &range);
