#pragma once

#include "core/Glib.h"

#include <functional>
#include <libsoup/soup.h>
#include <string>

namespace bridge {

enum class HttpOutcome {
    Answered,
    /// Nobody listens there, or no way leads there.
    Unreachable,
    /// The connection broke before the answer was complete.
    Broken,
    TimedOut,
    Cancelled,
};

struct HttpReply
{
    HttpOutcome outcome = HttpOutcome::Broken;
    /// HTTP status; 0 unless answered.
    unsigned status = 0;
    std::string body;
    /// What went wrong, for people; empty when answered.
    std::string problem;
};

using HttpCallback = std::function<void(HttpReply)>;

/// A session of a server's own, so that a server which hangs can't use up another's connections.
Ref<SoupSession> newHttpSession();

/// GET of `url`. `done` is called exactly once, from the main loop, never from inside this call:
/// when the server has been silent for `timeoutMs` milliseconds (while it answers other requests of
/// the session, two thirds of that later at most), and soon after `cancellable` is cancelled (it
/// may be null). An answer above 64 MiB counts as broken.
void httpGet(SoupSession *session, const std::string &url, unsigned timeoutMs,
    GCancellable *cancellable, HttpCallback done);

/// POST of a SOAP action; the rest as above. The action must only read: it is sent again where a
/// kept connection turns out to be dead.
void httpPostSoap(SoupSession *session, const std::string &url, const std::string &soapAction,
    const std::string &envelope, unsigned timeoutMs, GCancellable *cancellable, HttpCallback done);

} // namespace bridge
