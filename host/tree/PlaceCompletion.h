#pragma once

#include <QStringList>

class Session;

/// Places that begin with what is written of one: titles from a media server down, the last of
/// them with a slash where it is a folder. What can't be written on one line is left out, and what
/// can't be read is an empty list.
QStringList completePlace(Session &session, const QString &text);
