#pragma once

#include "tree/RowsReader.h"

/// Rows that come page by page.
class RowSource
{
public:
    virtual ~RowSource() = default;

    /// Replaces `page` by the next one; false after the last. The first always comes, if without
    /// rows. Throws Failure as Session does.
    virtual bool next(Rows *page) = 0;
    /// Of the rows that there should be, how many didn't come, so far.
    virtual int lacking() const = 0;
    /// How many were left out, so far, as their kind isn't asked for.
    virtual int ofOtherKinds() const { return 0; }
};
