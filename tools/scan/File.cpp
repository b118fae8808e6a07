#include "File.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "Interrupt.h"

namespace VelmaraCommand {

ScanFailure ScanFailure::ofSystem(std::string const& place)
{
    std::string const reason = std::generic_category().message(errno);
    return ScanFailure(place.empty() ? reason : place + ": " + reason);
}

namespace {

/// Waits until a pipe has bytes or its end, or the scan is interrupted; false for the latter. A signal
/// may reach any thread, so the wait is in steps.
bool _waitFor(int descriptor)
{
    while (!interrupted()) {
        pollfd waiting{descriptor, POLLIN, 0};
        if (::poll(&waiting, 1, 200) > 0) return true;
    }
    return false;
}

} // namespace

File::File(int descriptor) : m_descriptor(descriptor)
{
    struct stat status;
    if (::fstat(descriptor, &status) != 0) return;
    m_isRegular = S_ISREG(status.st_mode);
    if (m_isRegular) m_size = static_cast<std::uint64_t>(status.st_size);
}

File::~File()
{
    if (m_descriptor != STDIN_FILENO) ::close(m_descriptor);
}

std::shared_ptr<File> File::openRegular(std::string const& path)
{
    // What was a regular file a moment ago may be a FIFO by now: O_NONBLOCK keeps the open from waiting.
    int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) throw ScanFailure::ofSystem();
    std::shared_ptr<File> file(new File(descriptor));
    if (!file->m_isRegular) throw ScanFailure("is no regular file");
    return file;
}

std::shared_ptr<File> File::temporary()
{
    char const* folder = std::getenv("TMPDIR");
    std::string path = std::string(folder && *folder ? folder : "/tmp") + "/velmara-XXXXXX";
    int const descriptor = ::mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) throw ScanFailure::ofSystem("too large for memory, and " + path);
    ::unlink(path.c_str());
    return std::shared_ptr<File>(new File(descriptor));
}

std::shared_ptr<File> File::standardIn()
{
    std::shared_ptr<File> file(new File(STDIN_FILENO));
    if (file->m_isRegular) file->m_isRegular = file->position() == 0;
    return file;
}

std::size_t File::read(char* bytes, std::size_t n)
{
    for (;;) {
        if (!m_isRegular && !_waitFor(m_descriptor)) return 0;
        ssize_t const got = ::read(m_descriptor, bytes, n);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR && errno != EAGAIN) throw ScanFailure::ofSystem();
    }
}

std::size_t File::readAt(std::uint64_t position, char* bytes, std::size_t n) const
{
    for (;;) {
        ssize_t const got = ::pread(m_descriptor, bytes, n, static_cast<off_t>(position));
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) throw ScanFailure::ofSystem();
    }
}

std::uint64_t File::position() const
{
    off_t const at = ::lseek(m_descriptor, 0, SEEK_CUR);
    if (at < 0) throw ScanFailure::ofSystem();
    return static_cast<std::uint64_t>(at);
}

void File::moveTo(std::uint64_t position)
{
    if (::lseek(m_descriptor, static_cast<off_t>(position), SEEK_SET) < 0) throw ScanFailure::ofSystem();
}

void File::append(char const* bytes, std::size_t n)
{
    while (n > 0) {
        ssize_t const written = ::write(m_descriptor, bytes, n);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw ScanFailure::ofSystem("too large for memory, and the temporary file");
        bytes += written;
        n -= static_cast<std::size_t>(written);
    }
}

std::size_t PrefixedStream::read(char* bytes, std::size_t n)
{
    if (m_at == m_prefix.size()) return m_rest->read(bytes, n);
    std::size_t const taken = std::min(n, m_prefix.size() - m_at);
    std::memcpy(bytes, m_prefix.data() + m_at, taken);
    m_at += taken;
    return taken;
}

std::string readHead(ByteStream& stream, std::size_t n)
{
    std::string head(n, '\0');
    std::size_t filled = 0;
    while (filled < n) {
        std::size_t const got = stream.read(head.data() + filled, n - filled);
        if (got == 0) break;
        filled += got;
    }
    head.resize(filled);
    return head;
}

} // namespace VelmaraCommand
