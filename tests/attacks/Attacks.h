#pragma once

#include "HostileServer.h"

#include <vector>

struct DBusConnection;

/// UDN of the hostile server.
const std::string hostileUdn = "uuid:a77acc00-0000-0000-0000-000000000001";

/// One way to attack. A part that is missing is done as a decent server or client does it.
struct Attack
{
    const char *name;
    /// The description as sent, header and all.
    std::function<std::string()> describe = {};
    /// Answers the description, or a SOAP action, in its own way; whether it did.
    std::function<bool(const std::string &request, const Send &send)> serve = {};
    /// UDNs that are announced.
    int devices = 1;
    /// What a program on the bus does, in a thread, over and over.
    std::function<void(DBusConnection *bus, const std::string &server)> call = {};
    /// The bus takes nothing while the bridge is to end.
    bool stopsBus = false;
    /// What a listing may take, in milliseconds, where the calls of this client stand before it.
    double listingMs = 0;
};

std::vector<Attack> attacks();

/// Answers as a media server with one track does.
void serveDecently(const std::string &request, const Send &send);
