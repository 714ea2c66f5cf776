#pragma once

#include <QByteArray>

/// What a picture's first bytes say that it is: "image/jpeg", "image/png", "image/gif" or
/// "image/webp"; null for everything else, whatever somebody calls it.
const char *pictureType(const QByteArray &bytes);

/// The picture made to fit a square, as JPEG, or as PNG where it is transparent; as it is where the
/// width is 0. Empty where it
/// can't be read or has more pixels than anybody needs. Any thread.
QByteArray scaledPicture(const QByteArray &bytes, int width);
