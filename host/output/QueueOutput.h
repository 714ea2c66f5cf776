#pragma once

#include "output/JsonOutput.h"
#include "output/Playlist.h"
#include "output/TextOutput.h"

#include <api/core/CMError.h>

/// Prints a playlist. A table and a JSON document are written as the items come; an M3U8 or XSPF
/// playlist at the end. Throws Failure where it can't be written.
class QueueOutput
{
public:
    enum Format { AsTable, AsJson, AsM3u8, AsXspf };

    explicit QueueOutput(Format format);

    void add(const OrkaPlayListItem &item);
    /// `error` is why the playlist isn't whole; none where it is.
    void end(const CMError &error = CMError());

private:
    void addToTable(const OrkaPlayListItem &item);

    const Format m_format;
    int m_count = 0;
    long long m_length = 0; // milliseconds
    Table m_table;
    JsonListDocument m_document;
    PlayListItems m_items;
};
