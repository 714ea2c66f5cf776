#pragma once

/// Runs the program that serves the page in this one's place, with the same arguments. It is
/// another since what it needs (HTTP, TLS, pictures) made the start of every command nearly twice
/// as long. Throws Failure (missing) where it can't be started.
[[noreturn]] void becomePageProgram();
