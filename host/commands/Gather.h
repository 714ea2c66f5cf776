#pragma once

#include "Failure.h"
#include "GlobalOptions.h"
#include "tree/Place.h"

#include <api/core/OrkaPlayListItem.h>

#include <QStringList>
#include <QVector>

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

class Session;

/// What `queue` and `play` are to collect, as their options say.
struct GatherOptions
{
    /// "audio", "video", "image" or "all".
    std::vector<std::string> kinds = {"audio"};
    /// One request, as a device asks for a playlist, instead of a walk.
    bool quick = false;

    void declare(CLI::App &parser);
};

/// Gives each item to `take`, in the order of the places. Returns what couldn't be read; throws the
/// reason where that is why there is nothing at all. Says on standard error what a quick list may
/// lack, and where there is nothing what there is instead.
QVector<Failure> gather(Session &session, const GatherOptions &options,
    const QVector<Place> &places, const std::function<void(const OrkaPlayListItem &)> &take);

/// Tells what a playlist lacks, as an answer for programs too; no error where it is whole.
CMError tellIncomplete(const QVector<Failure> &failures);
