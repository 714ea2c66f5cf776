#pragma once

#include <QString>

/// The text as a QR code of block characters, for a dark or light terminal; empty where it is too
/// long for one.
QString qrCode(const QString &text);
