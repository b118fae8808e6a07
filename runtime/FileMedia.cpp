#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

#include "runtime/BlockMediaIn.h"

namespace Velmara {

namespace {

constexpr size_t _blockSize = size_t{64} * 1024;

[[noreturn]] void _fail(char const* operation, std::string const& path, int error, unsigned int line)
{
    Exception failure(operation, 6, "FileMedia", line);
    failure.stringParameter(path + ": " + std::generic_category().message(error));
    failure.intParameter(error);
    throw failure;
}

/// An open file, closed with its owner.
class File : private NonCopyable {
public:
    File(char const* operation, std::string const& path, int flags)
        : m_operation(operation), m_path(path), m_descriptor(::open(path.c_str(), flags | O_CLOEXEC, 0666))
    {
        if (m_descriptor < 0) fail(errno, __LINE__);
    }
    ~File() { ::close(m_descriptor); }

    bool isDirectory() const
    {
        struct stat status;
        return ::fstat(m_descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    }

    size_t read(unsigned char* bytes, size_t n)
    {
        ssize_t got;
        do got = ::read(m_descriptor, bytes, n);
        while (got < 0 && errno == EINTR);
        if (got < 0) fail(errno, __LINE__);
        return static_cast<size_t>(got);
    }

    void write(unsigned char const* bytes, size_t n)
    {
        while (n > 0) {
            ssize_t const put = ::write(m_descriptor, bytes, n);
            if (put < 0 && errno == EINTR) continue;
            if (put < 0) fail(errno, __LINE__);
            bytes += put;
            n -= static_cast<size_t>(put);
        }
    }

    void seek(unsigned long position)
    {
        if (::lseek(m_descriptor, static_cast<off_t>(position), SEEK_SET) < 0) fail(errno, __LINE__);
    }

    /// The position that a seek can reach at most: behind the last byte.
    unsigned long clamped(unsigned long position) const
    {
        struct stat status;
        if (::fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return position;
        auto const size = static_cast<unsigned long>(status.st_size);
        return position < size ? position : size;
    }

    [[noreturn]] void fail(int error, unsigned int line) const { _fail(m_operation, m_path, error, line); }

private:
    char const* m_operation; // what exceptions name
    std::string m_path;
    int m_descriptor;
};

class FileMediaInImpl : public BlockMediaInImpl {
public:
    explicit FileMediaInImpl(std::string const& path)
        : m_file("FileMediaIn", path, O_RDONLY), m_block(new unsigned char[_blockSize])
    {
        if (m_file.isDirectory()) m_file.fail(EISDIR, __LINE__);
    }

    void setpos(unsigned long position) override
    {
        if (moveWithin(position)) return;
        position = m_file.clamped(position);
        if (moveWithin(position)) return;
        // Blocks start at multiples of their size, so that short moves back and forth stay within one.
        unsigned long const blockPosition = position / _blockSize * _blockSize;
        m_file.seek(blockPosition);
        m_filePosition = blockPosition;
        present(m_block.get(), 0, m_filePosition);
        if (nextBlock()) moveWithin(position);
    }

private:
    bool nextBlock() override
    {
        size_t const n = m_file.read(m_block.get(), _blockSize);
        if (n == 0) return false;
        present(m_block.get(), n, m_filePosition);
        m_filePosition += n;
        return true;
    }

    File m_file;
    std::unique_ptr<unsigned char[]> m_block;
    unsigned long m_filePosition = 0; // of the file descriptor
};

/// Nothing is held back: who looks at the file after a write finds the bytes, and a full disk is told
/// by the write that met it.
class FileMediaOutImpl : public MediaOutImpl {
public:
    explicit FileMediaOutImpl(std::string const& path) : m_file("FileMediaOut", path, O_WRONLY | O_CREAT | O_TRUNC) {}

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        m_file.write(bytes, n);
        m_written += n;
    }
    unsigned long tell() const override { return m_written; }
    void setpos(unsigned long position) override
    {
        m_file.seek(position);
        m_written = position;
    }

private:
    File m_file;
    unsigned long m_written = 0; // position of the file descriptor
};

} // namespace

FileMediaIn::FileMediaIn(std::string const& path) : MediaIn(new FileMediaInImpl(path), false)
{}

FileMediaOut::FileMediaOut() = default;

FileMediaOut::FileMediaOut(std::string const& path) : MediaOut(new FileMediaOutImpl(path), false)
{}

} // namespace Velmara
