#pragma once

#include "output/Playlist.h"

/// Throws Failure (missing) where there is no such player.
void requirePlayer(const QString &command);

/// Hands the items to a player as one M3U8 file, its last argument, and waits for the player's
/// end. `command` is the program with its arguments, which spaces
/// separate and double quotes hold together. Says on
/// standard error which track plays: each one where the player is mpv, the first and their number
/// where it is another. Returns the player's exit status, 128 and the signal where one ended it.
/// With `quietOutput` what the player prints goes to standard error.
///
/// Throws Failure (missing) where there is no such player and InterruptedBySignal on Ctrl-C, after
/// which the player runs no longer.
int playItems(const PlayListItems &items, const QString &command, bool quietOutput);
