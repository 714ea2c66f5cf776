#pragma once

#include <QByteArray>

/// The bytes as a gzip stream, fast rather than small.
QByteArray gzipped(const QByteArray &bytes);
