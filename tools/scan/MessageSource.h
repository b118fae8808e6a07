#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "FoundMessage.h"

namespace VelmaraCommand {

/// How bad it is that something of a scan was left out.
enum class Severity {
    LeftOut,   // it is no message: a FIFO, a loop of links
    Unreadable // it may have been one
};

/// What all sources of one scan share.
struct ScanContext {
    /// Told of what is left out, from any thread: the place and the reason, for people.
    std::function<void(Severity, std::string const& place, std::string const& reason)> complain;
    ByteCollector::Options collect;
    /// Every file that is no archive is an mbox, whatever it begins with.
    bool mbox = false;
    /// Bytes of files on disk that have been passed, for showing progress; null if nobody looks.
    std::atomic<std::uint64_t>* bytesDone = nullptr;
};

/// Messages in an order that depends on the input alone. A message that cannot be read is one too, with
/// a reason in `failure`, so that the others keep their numbers.
class MessageSource {
public:
    virtual ~MessageSource() = default;
    /// The next message, false if there is none. Without `keep` it is only passed over, as cheaply as
    /// can be: `bytes` stays empty, and `length` and `failure` may stay unknown.
    virtual bool next(FoundMessage& message, bool keep) = 0;
};

/// What the first bytes of a file say of it.
enum class Content {
    Message, // anything else too: there is no text that is no message
    Mbox,
    Archive // a tar or zip, or anything compressed
};

/// So many bytes tell.
constexpr std::size_t headSize = 4096;

Content contentOf(std::string_view head);

/// Bytes with a name.
struct NamedStream {
    std::string file;
    std::string entry; // of the file, if that is an archive
    std::unique_ptr<ByteStream> bytes;
    std::shared_ptr<File> liesIn; // in which they can be read again; null if there is none
};

/// "FILE" or "FILE: ENTRY", for complaints.
std::string placeOf(std::string const& file, std::string const& entry);

/// The messages of an mbox, or the one that a stream is; they are no archive.
std::unique_ptr<MessageSource> messagesOfStream(ScanContext const& context, NamedStream stream, Content content);

/// The members of a tar or zip, each a message or an mbox, or what is in one compressed file. Reads the
/// file from its beginning if it is a regular one; `stream` otherwise.
std::unique_ptr<MessageSource> messagesOfArchive(ScanContext const& context, NamedStream stream);

/// Of a file of any of these kinds, a Maildir, or a directory with all below it; "-" is standard input.
std::unique_ptr<MessageSource> messagesOfPath(ScanContext const& context, std::string const& path);

/// Of the paths, one behind the other. `nextPath` gives false when there are no more.
std::unique_ptr<MessageSource> messagesOfPaths(ScanContext const& context, std::function<bool(std::string&)> nextPath);

} // namespace VelmaraCommand
