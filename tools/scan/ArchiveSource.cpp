// Tar and zip archives and compressed files, by libarchive. An entry is a stream like any other: what it
// begins with tells whether it is a message or an mbox. Archives within archives are not opened: a few
// KB could hold any number of them.
#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <utility>

#include "MessageSource.h"

namespace VelmaraCommand {

namespace {

/// Names in archives may be UTF-8 whatever the locale is, and libarchive asks the locale of the thread.
class Utf8Scope {
public:
    Utf8Scope() : m_before(::uselocale(_utf8())) {}
    ~Utf8Scope() { ::uselocale(m_before); }
    Utf8Scope(Utf8Scope const&) = delete;
    Utf8Scope& operator=(Utf8Scope const&) = delete;

private:
    static locale_t _utf8()
    {
        static locale_t const utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return utf8;
    }

    locale_t m_before;
};

struct FreeArchive {
    void operator()(archive* reader) const { ::archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, FreeArchive>;

std::string _reasonOf(archive* reader)
{
    char const* const text = ::archive_error_string(reader);
    return text && *text ? text : "cannot be read";
}

/// What libarchive reads from.
struct Feed {
    ByteStream& stream;
    File* file; // in which the stream can be moved about, or null
    char block[64 * 1024];
};

/// Runs what may fail and tells libarchive of it.
template <class Work> la_int64_t _tried(archive* reader, Work const& work)
{
    try {
        return work();
    } catch (ScanFailure const& failure) {
        ::archive_set_error(reader, EIO, "%s", failure.what());
        return ARCHIVE_FATAL;
    }
}

la_ssize_t _readFeed(archive* reader, void* data, void const** block)
{
    Feed& feed = *static_cast<Feed*>(data);
    *block = feed.block;
    return _tried(reader, [&] { return static_cast<la_int64_t>(feed.stream.read(feed.block, sizeof feed.block)); });
}

/// A zip has its table of contents at its end.
la_int64_t _moveFeed(archive* reader, void* data, la_int64_t offset, int whence)
{
    File& file = *static_cast<Feed*>(data)->file;
    return _tried(reader, [&] {
        std::uint64_t const from = whence == SEEK_SET ? 0 : whence == SEEK_END ? file.size() : file.position();
        file.moveTo(from + static_cast<std::uint64_t>(offset));
        return static_cast<la_int64_t>(file.position());
    });
}

/// Only what libarchive can do itself: of other compressions it would start programs.
void _supportKinds(archive* reader)
{
    ::archive_read_support_filter_gzip(reader);
    ::archive_read_support_filter_bzip2(reader);
    ::archive_read_support_filter_xz(reader);
    ::archive_read_support_filter_zstd(reader);
    ::archive_read_support_filter_lz4(reader);
    ::archive_read_support_filter_compress(reader);
    ::archive_read_support_format_tar(reader);
    ::archive_read_support_format_zip(reader);
    ::archive_read_support_format_raw(reader); // one compressed file
    ::archive_read_support_format_empty(reader);
}

/// Why an entry is no message, or null.
char const* _whyLeftOut(archive_entry* header)
{
    if (::archive_entry_hardlink(header)) return "is a link to another entry; its bytes stand there";
    switch (::archive_entry_filetype(header)) {
    case AE_IFREG:
        return nullptr;
    case AE_IFLNK:
        return "is a link, which an archive cannot follow";
    case AE_IFIFO:
        return "is a FIFO";
    case AE_IFSOCK:
        return "is a socket";
    default:
        return "is a device";
    }
}

std::string _nameOf(archive_entry* header)
{
    char const* const name = ::archive_entry_pathname(header);
    return name ? name : "(a name that cannot be read)";
}

/// The present entry, while the archive has not gone on to the next.
class EntryStream : public ByteStream {
public:
    EntryStream(archive* reader, bool& broken) : m_reader(reader), m_broken(broken) {}

    std::size_t read(char* bytes, std::size_t n) override
    {
        la_ssize_t const got = ::archive_read_data(m_reader, bytes, n);
        if (got == ARCHIVE_FATAL) m_broken = true;
        if (got < 0) throw ScanFailure(_reasonOf(m_reader));
        return static_cast<std::size_t>(got);
    }

private:
    archive* m_reader;
    bool& m_broken;
};

/// One message that cannot be read.
class FailedMessage : public MessageSource {
public:
    explicit FailedMessage(FoundMessage message) : m_message(std::move(message)) {}
    bool next(FoundMessage& message, bool) override
    {
        if (std::exchange(m_done, true)) return false;
        message = std::move(m_message);
        return true;
    }

private:
    FoundMessage m_message;
    bool m_done = false;
};

class ArchiveMessages : public MessageSource {
public:
    ArchiveMessages(ScanContext const& context, NamedStream stream)
        : m_context(context), m_stream(std::move(stream)), m_feed{*m_stream.bytes, m_stream.liesIn.get(), {}},
          m_reader(::archive_read_new())
    {
        if (!m_reader) throw std::bad_alloc();
        _supportKinds(m_reader.get());
        ::archive_read_set_read_callback(m_reader.get(), _readFeed);
        if (m_feed.file) ::archive_read_set_seek_callback(m_reader.get(), _moveFeed);
        ::archive_read_set_callback_data(m_reader.get(), &m_feed);
        Utf8Scope const utf8;
        m_ended = !check(::archive_read_open1(m_reader.get()));
    }

    bool next(FoundMessage& message, bool keep) override
    {
        Utf8Scope const utf8;
        while (!(m_entry && m_entry->next(message, keep))) {
            m_entry.reset();
            if (m_ended) return false;
            nextEntry();
        }
        return true;
    }

private:
    void complain(Severity severity, std::string const& entry, std::string const& reason) const
    {
        m_context.complain(severity, placeOf(m_stream.file, entry), reason);
    }

    /// Whether the archive can be read on after what libarchive said of it.
    bool check(int status) const
    {
        if (status < ARCHIVE_WARN) complain(Severity::Unreadable, "", _reasonOf(m_reader.get()));
        return status != ARCHIVE_FATAL;
    }

    void nextEntry()
    {
        archive_entry* header = nullptr;
        int const status = ::archive_read_next_header(m_reader.get(), &header);
        m_ended = status == ARCHIVE_EOF || !check(status);
        if (status == ARCHIVE_OK || status == ARCHIVE_WARN) open(header);
    }

    void open(archive_entry* header)
    {
        bool const isArchive = ::archive_format(m_reader.get()) != ARCHIVE_FORMAT_RAW;
        std::string const name = isArchive ? _nameOf(header) : std::string();
        if (isArchive && ::archive_entry_filetype(header) == AE_IFDIR) return;
        if (char const* reason = isArchive ? _whyLeftOut(header) : nullptr)
            return complain(Severity::LeftOut, name, reason);
        try {
            if (::archive_entry_is_encrypted(header)) throw ScanFailure("is encrypted");
            open(name);
        } catch (ScanFailure const& failure) {
            m_entry = std::make_unique<FailedMessage>(FoundMessage{m_stream.file, name, 0, 0, {}, failure.what()});
        }
    }

    void open(std::string const& name)
    {
        auto bytes = std::make_unique<EntryStream>(m_reader.get(), m_ended);
        std::string head = readHead(*bytes, headSize);
        Content const content = m_context.mbox ? Content::Mbox : contentOf(head);
        if (content == Content::Archive) return complain(Severity::LeftOut, name, "is an archive within an archive");
        NamedStream stream{m_stream.file, name, nullptr, nullptr};
        stream.bytes = std::make_unique<PrefixedStream>(std::move(head), std::move(bytes));
        m_entry = messagesOfStream(m_context, std::move(stream), content);
    }

    ScanContext const& m_context;
    NamedStream m_stream;
    Feed m_feed;
    Reader m_reader;
    bool m_ended = false;
    std::unique_ptr<MessageSource> m_entry;
};

} // namespace

std::unique_ptr<MessageSource> messagesOfArchive(ScanContext const& context, NamedStream stream)
{
    return std::make_unique<ArchiveMessages>(context, std::move(stream));
}

} // namespace VelmaraCommand
