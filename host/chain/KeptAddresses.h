#pragma once

#include <QStringList>

/// Addresses of media servers that the user keeps: one a line in $XDG_CONFIG_HOME/orka/servers.
/// Lines that are empty or begin with # count for nothing, but stay, as does what isn't UTF-8.
namespace KeptAddresses {

/// For sentences, between quotation marks; without a password.
QString shown(const QString &address);

/// Throws Failure (wrong usage) for what can't be an address, and says why.
void check(const QString &address);

/// None where there is no file. Throws Failure (wrong usage) where it can't be read, or is longer
/// than 1 MB.
QStringList read();

/// Writes the file anew, as a whole, one command after another. False where it was kept before.
/// Throws Failure where it can't be written.
bool add(const QString &address);
/// False where it wasn't kept.
bool forget(const QString &address);

} // namespace KeptAddresses
