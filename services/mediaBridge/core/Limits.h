#pragma once

#include <cstddef>
#include <cstdint>

namespace bridge::limits {

// Everything that comes from the network or the bus has its bound here. Each is several times what
// real servers and clients need; docs/media-service.md tells how reaching one shows.

/// Microseconds of one turn of the main loop that one kind of work takes where much of it waits. A
/// listing takes some ten turns, in each of which others' work comes first.
inline constexpr int64_t turnUs = 500;

// --- the bus ---

/// Bytes of one message. A system bus disconnects whoever sends more than 32 MiB; on the others an
/// array ends at 64 MiB. Room is left for what is counted roughly.
inline constexpr size_t systemMessageBytes = size_t{30} << 20;
inline constexpr size_t messageBytes = size_t{60} << 20;
/// Bytes of all answers that are being written or wait for the bus. Only those that are longer than
/// `answerAtOnce` are refused for it.
inline constexpr size_t answersBytes = size_t{80} << 20;
/// Bytes of answers that wait for the bus, above which no other call is looked at.
/// They are sent in the order they were written: those of one client's thousand calls come before
/// another's.
inline constexpr size_t unsentBytes = size_t{32} << 10;
/// Bytes of a list that needn't wait until nothing shorter is to be sent: twenty rows take 20 to 40
/// KiB, and the bus some tenth of a millisecond for so many.
inline constexpr size_t answerAtOnce = size_t{64} << 10;
/// Longer lists that wait, above which no other call is looked at of those for whom they are.
inline constexpr size_t longAnswers = 16;
/// Bytes of answers that the kernel holds until the bus reads them, 16 KiB at a time.
inline constexpr int sentBytes = 32 << 10;
/// An error's text, in bytes: a long sentence that quotes a server's name and its reason.
inline constexpr size_t errorTextBytes = 1024;
/// The object path of a call: an encoded UDN and the hex of an object id of 4 KiB.
inline constexpr size_t pathBytes = 12 << 10;
/// Names in a filter; there are some thirty properties.
inline constexpr size_t filterNames = 256;
/// Bytes of a search query and of a sort order; those of real clients have some hundred.
inline constexpr size_t queryBytes = 4 << 10;
/// Objects of one BrowseObjects: what a server answers one by one within 20 seconds.
inline constexpr size_t objectsPerCall = 5'000;
/// Bytes of their paths, of one call and of all that are under way. A path has some 100 to 300.
inline constexpr size_t pathsOfOneCall = size_t{2} << 20;
inline constexpr size_t pathsOfAll = size_t{32} << 20;
/// Unanswered calls of one client; fewer while there are very many in all.
inline constexpr size_t callsPerClient = 5'000;
inline constexpr size_t callsOfAll = 10'000;
inline constexpr size_t callsPerClientInNeed = 100;
/// File descriptors in messages that were not looked at yet: no call takes any. (A message may hold
/// more than that; the next one then waits.)
inline constexpr long descriptorsOnBus = 16;
/// Milliseconds after which the end of the program no longer waits for a bus that takes no answers.
inline constexpr unsigned farewellMs = 500;

// --- what announces itself ---

/// Bytes and lines of one announcement, and of what it says; real ones have some 400 and 12.
/// Reading one takes a hundredth of a millisecond.
inline constexpr size_t packetBytes = 2048;
inline constexpr std::ptrdiff_t packetLines = 64;
inline constexpr size_t udnBytes = 128;
inline constexpr size_t locationBytes = 1024;
/// How long an announcement holds at most, in seconds.
inline constexpr unsigned announcementSeconds = 86'400;
/// Announcements that are read at one address in two milliseconds.
inline constexpr int packetsAtOnce = 8;
/// Addresses of the machine that are listened on, and those at which one server is heard.
inline constexpr size_t ownAddresses = 64;
inline constexpr size_t addressesOfOneServer = 8;
/// Of these, how many one machine may have named that were never seen to be right: whoever names
/// silent ones is not to keep the right one out.
inline constexpr std::ptrdiff_t guessesOfOneHost = 2;
/// Announcements of unknown servers that are looked at in a hundredth of a second, and those of one
/// machine, and machines, that wait for it.
inline constexpr unsigned newcomersAtOnce = 4;
inline constexpr size_t newcomersOfOneHost = 128;
inline constexpr size_t newcomersHosts = 1024;
/// In all: what waits is taken within five seconds, and those behind it are announced again.
inline constexpr size_t newcomers = 2'048;
/// Senders of broken announcements that the log names.
inline constexpr size_t strangersNamed = 64;
/// Servers in all and of one host; those that don't answer give way to others.
inline constexpr size_t servers = 512;
inline constexpr size_t serversOfOneHost = 128;
/// Descriptions that are fetched at a time, in all and from one host.
inline constexpr unsigned looks = 16;
inline constexpr unsigned looksAtOneHost = 4;
/// Looks that begin at once; after these one each 20 ms. One takes one to three.
inline constexpr unsigned looksAtOnce = 16;
/// Hosts whose looks are counted; beyond it the count begins anew.
inline constexpr size_t hostsLookedAt = 1024;

// --- media servers ---

/// Requests under way at one server; the others wait in the bridge. Small servers take no more.
inline constexpr unsigned requestsPerServer = 6;
/// Requests under way at all servers, above which each has one at a time; half of them are for
/// servers that answered a client lately. A connection takes some 40 KiB.
inline constexpr unsigned requestsOfAll = 128;
inline constexpr int64_t latelySeconds = 5;
/// How long an idle connection is kept, in seconds.
inline constexpr unsigned keptConnectionSeconds = 5;
/// Answers such as "102 Processing" before the real one.
inline constexpr unsigned interimAnswers = 8;
/// Bytes and lines of an answer's head, and behind its body; real ones have some 300 and 10.
/// libcurl takes half a microsecond for a line.
inline constexpr size_t headBytes = size_t{64} << 10;
inline constexpr unsigned headLines = 256;
/// Bytes that are read at once. libcurl does so a hundred times in a row.
inline constexpr long readBytes = 2 << 10;
/// Bytes of all answers that are being received; where they are more, the longest ends of the host
/// whose answers have most.
inline constexpr size_t bodiesBytes = size_t{24} << 20;
/// Pieces in which an answer with so many bytes may come; each takes as long as a kilobyte.
inline constexpr size_t pieces(size_t bytes)
{
    constexpr size_t fixed = 4'000;
    constexpr size_t bytesOfPiece = 64;
    return fixed + bytes / bytesOfPiece;
}
/// Long answers that are received at a time; the bytes with which one keeps its place for so many
/// milliseconds more, or others have their turn: slow ones are not to hold up all.
inline constexpr unsigned longAnswersAtOnce = 4;
inline constexpr unsigned seatMs = 20;
inline constexpr size_t seatBytes = size_t{256} << 10;
/// Bytes of all long answers that came and aren't worked off; beyond it no others are received.
inline constexpr size_t backlogBytes = size_t{16} << 20;
/// Bytes of a device description; real ones have 2 to 10 KiB.
inline constexpr size_t descriptionBytes = size_t{1} << 20;
/// Bytes of a text or URL of it, which are kept as long as the server is; real ones have less than
/// a tenth.
inline constexpr size_t deviceTextBytes = 1024;
/// Bytes of an answer that holds no objects, such as what a server can search.
inline constexpr size_t capabilityBytes = size_t{64} << 10;
/// Bytes of an answer with so many objects. A track takes 1 to 4 KiB.
inline constexpr size_t answerBytes(uint32_t objects)
{
    constexpr size_t fixed = size_t{512} << 10;
    constexpr size_t perObject = size_t{32} << 10;
    constexpr size_t most = size_t{8} << 20;
    return objects < (most - fixed) / perObject ? fixed + objects * perObject : most;
}

/// Addresses that are named, and servers that one of them may lead to.
inline constexpr size_t namedServers = 64;
inline constexpr size_t serversOfOneName = 16;
/// Names that are resolved at a time. Each takes a thread until DNS answers or is given up, ten
/// seconds long, while the look ends sooner; with so many, all named addresses have their turn in a
/// minute.
inline constexpr unsigned namesAtOnce = 16;
/// Servers that are remembered, bytes of their names, and bytes of the file that is read.
inline constexpr size_t rememberedServers = 64;
inline constexpr size_t rememberedNameBytes = 256;
inline constexpr size_t memoryBytes = size_t{256} << 10;
/// Sentences about what can't be heard or read.
inline constexpr size_t troubles = 32;

// --- documents ---

/// Documents above this are read in a thread, in bytes: the main loop takes a millisecond for one.
inline constexpr size_t documentAtOnce = size_t{64} << 10;
/// Tags of a document with so many objects; an object has about thirty, and takes up to 128 bytes
/// for each.
inline constexpr size_t tags(size_t objects)
{
    constexpr size_t fixed = 4'000;
    constexpr size_t perObject = 256;
    constexpr size_t most = 400'000;
    return objects < (most - fixed) / perObject ? fixed + objects * perObject : most;
}
/// Attributes of a document, for each of these tags; every equals sign counts, those in URLs, too.
inline constexpr size_t attributesOfTag = 2;
/// Resources of one object, and artists, and classes that may be created in it, and DLNA abilities
/// of a device; attributes of a tag that are looked through for what a prefix means.
inline constexpr size_t repeated = 64;
/// Objects of one listing by which a page is known that was there before.
inline constexpr size_t idsOfList = 65'536;
/// Objects of one listing that are left out since they are malformed themselves.
inline constexpr uint32_t lostObjects = 20;
/// A text for people, in bytes. A longer one is cut, and ends in "…".
inline constexpr size_t textBytes = size_t{4} << 10;
/// An id and a URL, in bytes. A longer one is left out: cut, it would name something else.
inline constexpr size_t idBytes = size_t{4} << 10;
inline constexpr size_t urlBytes = size_t{4} << 10;
/// Bytes of an object that are read; what stands behind them is left out. A track has 1 to 4 KiB,
/// and the main loop takes a millisecond for so many.
inline constexpr std::ptrdiff_t objectBytes = 64 << 10;
/// Values that an answer to an action may have; the standard's have four.
inline constexpr size_t outputs = 16;
/// Names of what a server can search or sort by; those that mean nothing here aren't kept.
inline constexpr size_t capabilities = 256;

} // namespace bridge::limits
