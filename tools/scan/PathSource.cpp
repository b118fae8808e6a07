// What a path of the command line stands for: a file, a Maildir or a directory, or standard input.
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "DirectoryWalk.h"
#include "MessageSource.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

/// A file as a stream. What of it has not been read when the stream goes counts as passed too.
class FileStream : public ByteStream {
public:
    FileStream(std::shared_ptr<File> file, std::atomic<std::uint64_t>* passed)
        : m_file(std::move(file)), m_passed(passed), m_left(m_file->size())
    {}
    ~FileStream() override { pass(m_left); }

    std::size_t read(char* bytes, std::size_t n) override
    {
        std::size_t const got = m_file->read(bytes, n);
        pass(std::min<std::uint64_t>(got, m_left));
        return got;
    }

private:
    void pass(std::uint64_t n)
    {
        m_left -= n;
        if (m_passed) *m_passed += n;
    }

    std::shared_ptr<File> m_file;
    std::atomic<std::uint64_t>* m_passed;
    std::uint64_t m_left;
};

/// Of a pipe nobody knows how much is left.
class PipeStream : public ByteStream {
public:
    PipeStream(std::shared_ptr<File> file, std::atomic<std::uint64_t>* passed)
        : m_file(std::move(file)), m_passed(passed)
    {}
    std::size_t read(char* bytes, std::size_t n) override
    {
        std::size_t const got = m_file->read(bytes, n);
        if (m_passed) *m_passed += got;
        return got;
    }

private:
    std::shared_ptr<File> m_file;
    std::atomic<std::uint64_t>* m_passed;
};

/// A file with such a name is an mbox even if its beginning has been cut off.
bool _isNamedMbox(std::string const& name)
{
    return endsWith(name, ".mbox") || endsWith(name, ".mbx");
}

std::unique_ptr<MessageSource> _messagesOf(ScanContext const& context, NamedStream stream, std::string_view head)
{
    Content const content = contentOf(head);
    if (content == Content::Archive) return messagesOfArchive(context, std::move(stream));
    bool const mbox = context.mbox || _isNamedMbox(stream.file);
    return messagesOfStream(context, std::move(stream), mbox ? Content::Mbox : content);
}

std::unique_ptr<MessageSource> _messagesOfFile(ScanContext const& context, std::string const& name,
                                               std::shared_ptr<File> const& file)
{
    if (!file->isRegular()) {
        auto pipe = std::make_unique<PipeStream>(file, context.bytesDone);
        std::string head = readHead(*pipe, headSize);
        NamedStream stream{name, "", std::make_unique<PrefixedStream>(head, std::move(pipe)), nullptr};
        return _messagesOf(context, std::move(stream), head);
    }
    std::string head(headSize, '\0');
    head.resize(file->readAt(0, head.data(), head.size()));
    NamedStream stream{name, "", std::make_unique<FileStream>(file, context.bytesDone), file};
    return _messagesOf(context, std::move(stream), head);
}

class PathMessages : public MessageSource {
public:
    PathMessages(ScanContext const& context, std::string const& path)
        : m_context(context), m_walk(path, [&context](std::string const& place, std::string const& reason, bool bad) {
              context.complain(bad ? Severity::Unreadable : Severity::LeftOut, place, reason);
          })
    {}

    bool next(FoundMessage& message, bool keep) override
    {
        for (;;) {
            if (m_file && m_file->next(message, keep)) return true;
            m_file.reset();
            DirectoryWalk::Found found;
            if (!m_walk.next(found)) return false;
            if (found.isMessage) return takeUnopened(found.path, message, keep);
            try {
                m_file = _messagesOfFile(m_context, found.path, File::openRegular(found.path));
            } catch (ScanFailure const& failure) {
                message.file = found.path;
                message.failure = failure.what();
                return true;
            }
        }
    }

private:
    /// The thread that reads the message will open it.
    bool takeUnopened(std::string const& path, FoundMessage& message, bool keep)
    {
        message.file = path;
        if (keep) message.bytes = MessageBytes::atPath(path);
        struct stat status;
        if (m_context.bytesDone && ::stat(path.c_str(), &status) == 0)
            *m_context.bytesDone += static_cast<std::uint64_t>(status.st_size);
        return true;
    }

    ScanContext const& m_context;
    DirectoryWalk m_walk;
    std::unique_ptr<MessageSource> m_file; // the present one, if it is open
};

class ListedMessages : public MessageSource {
public:
    ListedMessages(ScanContext const& context, std::function<bool(std::string&)> nextPath)
        : m_context(context), m_nextPath(std::move(nextPath))
    {}

    bool next(FoundMessage& message, bool keep) override
    {
        for (std::string path;;) {
            if (m_path && m_path->next(message, keep)) return true;
            m_path.reset();
            if (!m_nextPath(path)) return false;
            m_path = messagesOfPath(m_context, path);
        }
    }

private:
    ScanContext const& m_context;
    std::function<bool(std::string&)> m_nextPath;
    std::unique_ptr<MessageSource> m_path;
};

} // namespace

std::unique_ptr<MessageSource> messagesOfPath(ScanContext const& context, std::string const& path)
{
    if (path == "-") return _messagesOfFile(context, "(standard input)", File::standardIn());
    return std::make_unique<PathMessages>(context, path);
}

std::unique_ptr<MessageSource> messagesOfPaths(ScanContext const& context, std::function<bool(std::string&)> nextPath)
{
    return std::make_unique<ListedMessages>(context, std::move(nextPath));
}

} // namespace VelmaraCommand
