#pragma once

#include <QString>

/// "text"_s is a QString.
inline QString operator""_s(const char *text, size_t size)
{
    return QString::fromUtf8(text, int(size));
}
