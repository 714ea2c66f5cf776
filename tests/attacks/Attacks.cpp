#include "Attacks.h"

#include "BridgeFixture.h"

#include <dbus/dbus.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr size_t mebibyte = 1 << 20;

std::string didl(const std::string &objects)
{
    return soapResult("Browse",
        "<Result><![CDATA[<DIDL-Lite>" + objects
            + "</DIDL-Lite>]]></Result><NumberReturned>20</NumberReturned><TotalMatches>20"
              "</TotalMatches>");
}

/// Answers every Browse with these objects.
auto browse(const std::string &objects)
{
    return [answer = std::make_shared<std::string>(httpAnswer(didl(objects)))](
               const std::string &request, const Send &send) {
        return request.find("#Browse") != std::string::npos && send(*answer);
    };
}

/// Begins with `head` and goes on with `rest` as long as anybody reads.
auto endless(const char *what, const std::string &head, const std::string &rest)
{
    return [=](const std::string &request, const Send &send) {
        if (request.find(what) == std::string::npos)
            return false;
        for (bool goesOn = send(head); goesOn;)
            goesOn = send(rest);
        return true;
    };
}

DBusMessage *newCall(const std::string &path, const char *interface, const char *method)
{
    return dbus_message_new_method_call("com.intel.dleyna-server", path.c_str(), interface, method);
}

void send(DBusConnection *bus, DBusMessage *call)
{
    dbus_connection_send(bus, call, nullptr);
    dbus_message_unref(call);
}

void addTexts(DBusMessageIter *to, int type, size_t count, const char *text)
{
    DBusMessageIter array;
    dbus_message_iter_open_container(
        to, DBUS_TYPE_ARRAY, type == DBUS_TYPE_STRING ? "s" : "o", &array);
    while (count-- > 0)
        dbus_message_iter_append_basic(&array, type, &text);
    dbus_message_iter_close_container(to, &array);
}

DBusMessage *newListing(
    const std::string &path, unsigned max, size_t filterNames, const char *method = "ListChildren")
{
    DBusMessage *call = newCall(path, "org.gnome.UPnP.MediaContainer2", method);
    const unsigned offset = 0;
    dbus_message_append_args(
        call, DBUS_TYPE_UINT32, &offset, DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID);
    DBusMessageIter body;
    dbus_message_iter_init_append(call, &body);
    addTexts(&body, DBUS_TYPE_STRING, filterNames, "*");
    return call;
}

void listOnce(DBusConnection *bus, const std::string &server, unsigned max = 20)
{
    DBusMessage *call = newListing(server, max, 1);
    if (DBusMessage *answer = dbus_connection_send_with_reply_and_block(bus, call, 9000, nullptr))
        dbus_message_unref(answer);
    dbus_message_unref(call);
}

void sortOnce(DBusConnection *bus, const std::string &server)
{
    const std::string order = times(8 * mebibyte / 5, "Date,");
    const char *text = order.c_str();
    DBusMessage *call = newListing(server, 20, 1, "ListChildrenEx");
    dbus_message_append_args(call, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    send(bus, call);
    dbus_connection_flush(bus);
    usleep(300'000);
}

void browseMany(DBusConnection *bus, const std::string &server, size_t count)
{
    DBusMessage *call = newCall(server, "com.intel.dLeynaServer.MediaDevice", "BrowseObjects");
    DBusMessageIter body;
    dbus_message_iter_init_append(call, &body);
    addTexts(&body, DBUS_TYPE_OBJECT_PATH, count, "/com/intel/dLeynaServer/none");
    addTexts(&body, DBUS_TYPE_STRING, 1, "*");
    send(bus, call);
    dbus_connection_flush(bus);
    usleep(200000);
}

void listMany(DBusConnection *bus, const std::string &server, int count)
{
    for (int i = 0; i < count; ++i)
        send(bus, newListing(server, 20, 1));
    dbus_connection_flush(bus);
    for (int i = 0; i < 30; ++i)
        dbus_connection_read_write_dispatch(bus, 10);
}

/// One listing of each of these servers, all at once.
void listAll(DBusConnection *bus, const std::string &firstServer, int servers)
{
    send(bus, newListing(firstServer, 200, 1));
    for (int i = 1; i < servers; ++i)
        send(bus, newListing(firstServer + std::to_string(i), 200, 1));
    listMany(bus, firstServer, 0);
}

void listAndCancel(DBusConnection *bus, const std::string &server)
{
    listMany(bus, server, 4'900);
    send(bus, newCall(server, "com.intel.dLeynaServer.MediaDevice", "Cancel"));
    listMany(bus, server, 0);
}

void introspectMany(DBusConnection *bus)
{
    for (int i = 0; i < 30'000; ++i)
        send(bus,
            newCall("/com/intel/dLeynaServer/server", DBUS_INTERFACE_INTROSPECTABLE, "Introspect"));
    dbus_connection_flush(bus);
    for (int i = 0; i < 100; ++i)
        dbus_connection_read_write_dispatch(bus, 10);
}

/// New names of 1,250 machines, 12,000 a second.
void announceMany()
{
    static unsigned name = 0;
    for (const unsigned last = name + 1'200; name < last; ++name) {
        const std::string host =
            "10.78." + std::to_string(name / 250 % 5) + '.' + std::to_string(1 + name % 250);
        announce("uuid:" + std::to_string(name), host.c_str(), 9);
        if (name % 120 == 0)
            usleep(10000);
    }
}

void sendDescriptors(DBusConnection *bus)
{
    const int descriptor = eventfd(0, EFD_CLOEXEC);
    for (int i = 0; i < 80; ++i) {
        DBusMessage *call =
            newCall("/com/intel/dLeynaServer", "com.intel.dLeynaServer.Manager", "GetServers");
        for (int n = 0; n < 16; ++n)
            dbus_message_append_args(call, DBUS_TYPE_UNIX_FD, &descriptor, DBUS_TYPE_INVALID);
        send(bus, call);
    }
    dbus_connection_flush(bus);
    close(descriptor);
}

} // namespace

void serveDecently(const std::string &request, const Send &send)
{
    const auto asks = [&](const char *what) {
        return request.find(what) != std::string::npos;
    };
    if (request.compare(0, 4, "GET ") == 0)
        send(httpAnswer(description(request.substr(5, request.find(' ', 5) - 5))));
    else if (asks("#GetSearchCapabilities"))
        send(httpAnswer(soapResult("GetSearchCapabilities", "<SearchCaps/>")));
    else if (asks("#GetSortCapabilities"))
        send(httpAnswer(soapResult("GetSortCapabilities", "<SortCaps/>")));
    else
        send(httpAnswer(didl("<item id='1'><dc:title>1</dc:title></item>")));
}

std::vector<Attack> attacks()
{
    const auto list = [](DBusConnection *bus, const std::string &server) {
        listOnce(bus, server);
    };
    const auto named = [](const std::string &more) {
        return [more] {
            return httpAnswer(description(hostileUdn, more));
        };
    };
    const std::string ok = "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n";
    const std::string chunk = "1000\r\n" + std::string(0x1000, 'x') + "\r\n";
    std::vector<Attack> all;
    all.push_back({"a description without end", {},
        endless("GET ", ok + "Transfer-Encoding: chunked\r\n\r\n", chunk), 200});
    all.push_back({"102 Processing over and over", {},
        endless("GET ", "", "HTTP/1.1 102 Processing\r\n\r\n")});
    all.push_back({"trailers without end", {},
        endless("#Browse", ok + "Transfer-Encoding: chunked\r\n\r\n0\r\n", "a: b\r\n"), 1, list});
    all.push_back({"a piece's length without end", {},
        endless("#Browse", ok + "Transfer-Encoding: chunked\r\n\r\n5;", times(0x10000, "x")), 1,
        list});
    all.push_back(
        {"a description of 1 MiB of <a/>", named(times(mebibyte / 4 - 500, "<a/>")), {}, 40});
    all.push_back({"a description in pieces of a byte", {},
        endless("GET ", ok + "Transfer-Encoding: chunked\r\n\r\n", times(10'000, "1\r\nx\r\n")),
        40});
    all.push_back(
        {"an answer of 1 MiB of <item/>", {}, browse(times(mebibyte / 7, "<item/>")), 1, list});
    all.push_back({"an item of 1 MiB of <res/>", {},
        browse("<item id='1'>" + times(mebibyte / 6, "<res/>") + "</item>"), 1, list});
    all.push_back({"20 rows of 16 KiB texts of 0xff", {},
        browse(times(20,
            "<item id='1'>"
                + times(20, "<upnp:artist>" + std::string(16'000, '\xff') + "</upnp:artist>")
                + "</item>")),
        1, list});
    all.push_back({"a fault with 6 MiB of text", {},
        [](const std::string &request, const Send &send) {
            return request.find("#Browse") != std::string::npos
                && send(httpAnswer("<s:Envelope><s:Body><s:Fault><faultstring>"
                    + std::string(6 * mebibyte, 'f') + "</faultstring></s:Fault></s:Body>"));
        },
        1,
        [](DBusConnection *bus, const std::string &server) {
            listOnce(bus, server, 0);
        }});
    all.push_back({"100 times capabilities of 60 KiB", {},
        [](const std::string &request, const Send &send) {
            return request.find("#GetSearchCapabilities") != std::string::npos
                && send(httpAnswer(soapResult("GetSearchCapabilities",
                    "<SearchCaps>" + times(30'000, "a,") + "</SearchCaps>")));
        },
        100});
    all.push_back(
        {"80 calls with 16 descriptors", {}, {}, 0, [](DBusConnection *bus, const std::string &) {
             sendDescriptors(bus);
             usleep(100000);
         }});
    all.push_back(
        {"a million paths", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
             browseMany(bus, server, 1'000'000);
         }});
    all.push_back({"5,000 paths", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
                       browseMany(bus, server, 5'000);
                   }});
    all.push_back({"two million names in a filter", {}, {}, 1,
        [](DBusConnection *bus, const std::string &server) {
            send(bus, newListing(server, 20, 2'000'000));
            dbus_connection_flush(bus);
            usleep(200000);
        }});
    all.push_back(
        {"a sort order of 8 MiB", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
             sortOnce(bus, server);
         }});
    all.push_back({"1,000 listings", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
                       listMany(bus, server, 1'000);
                   }});
    const auto rowsOf = [](size_t rows) {
        return browse(times(
            rows, "<item id='1'><dc:title>" + std::string(2'400, 't') + "</dc:title></item>"));
    };
    all.push_back({"long answers of 60 servers", {}, rowsOf(200), 60,
        [](DBusConnection *bus, const std::string &server) { listAll(bus, server, 60); }, false,
        30});
    const auto hang = [](const std::string &request, const Send &) {
        return request.find("#Browse") != std::string::npos;
    };
    all.push_back({"a server that hangs, and clients leave", {}, hang, 1,
        [](DBusConnection *bus, const std::string &server) {
            listMany(bus, server, 12);
        }});
    all.push_back({"4,900 calls that are cancelled", {}, hang, 1, &listAndCancel});
    all.push_back({"half a page, then a fault", {},
        [](const std::string &request, const Send &send) {
            const bool isFirst = request.find("<StartingIndex>0<") != std::string::npos;
            return request.find("#Browse") != std::string::npos
                && send(
                    httpAnswer(isFirst ? soapResult("Browse",
                                   "<Result>&lt;x/&gt;</Result><NumberReturned>1"
                                   "</NumberReturned><TotalMatches>99</TotalMatches>")
                                       : "<s:Envelope><s:Body><s:Fault/></s:Body></s:Envelope>"));
        },
        1,
        [](DBusConnection *bus, const std::string &server) {
            listOnce(bus, server, 0);
        }});
    all.push_back({"introspection of 100 servers", {}, {}, 100,
        [](DBusConnection *bus, const std::string &) { introspectMany(bus); }, false, 1'000});
    all.push_back({"names of 1,250 machines", {}, {}, 0, [](DBusConnection *, const std::string &) {
                       announceMany();
                   }});
    all.push_back({"announcements of 8 KiB", {}, {}, 0, [](DBusConnection *, const std::string &) {
                       for (int i = 0; i < 100; ++i)
                           announce(hostileUdn, "10.77.0.1", 9, times(1'900, "a:\r\n"));
                       usleep(5'000);
                   }});
    all.push_back({"a bus that stands still", {}, rowsOf(80), 0, {}, true});
    return all;
}
