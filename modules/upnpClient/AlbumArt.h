#pragma once

#include <QString>

/// A plain HTTP URL as one on the device's own HTTPS proxy at `address`, which fetches it; any
/// other, or all where there is no address, as it is.
QString albumArtUrl(const QString &url, const QString &address);
