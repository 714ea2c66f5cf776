#pragma once

#include "GlobalOptions.h"
#include "tree/RowsReader.h"

/// Writes what was answered: as JSON where the options ask for it, else as text. `first` is the
/// position of the first row, `step` the distance between two.
void writeAnswer(
    const GlobalOptions &options, const CMPath &path, const Rows &rows, int first, int step = 1);
void writeAnswer(const GlobalOptions &options, const CMPath &path, const OrkaRoles &roles);
