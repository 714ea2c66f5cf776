#pragma once

#include "GlobalOptions.h"

#include <api/core/CMSyncWorker.h>

#include <memory>

/// Loads a worker's library and makes the worker through its entry `worker_create`. The library
/// stays loaded: types that it registered are used until the program ends.
///
/// Throws Failure (missing) with a sentence that names the file for every way in which this can
/// fail: no such file, not a library (with the loader's own words), no entry, an entry that gives
/// no worker.
std::unique_ptr<CMSyncWorker> loadWorker(const GlobalOptions &options);
