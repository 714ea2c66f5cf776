#pragma once

#include <fcntl.h>
#include <unistd.h>

/// A descriptor that the caller closed would be given to the next file or socket that is opened,
/// and what is said on it written into that. Written to this one, it fails. Before anything else
/// is opened.
inline void occupyStandardDescriptors()
{
    int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(descriptor);
}
