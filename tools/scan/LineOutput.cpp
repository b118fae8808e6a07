#include "LineOutput.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include <nlohmann/json.hpp>

#include "facts/OutputFile.h"

namespace VelmaraCommand {

namespace {

constexpr std::size_t _bufferSize = 256 << 10;

bool _isNoFile(std::string const& path)
{
    struct stat there;
    return ::stat(path.c_str(), &there) == 0 && !S_ISREG(there.st_mode);
}

std::string _readAt(int descriptor, std::uint64_t begin, std::uint64_t end)
{
    std::string bytes(static_cast<std::size_t>(end - begin), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        ssize_t const got =
            ::pread(descriptor, bytes.data() + filled, bytes.size() - filled, static_cast<off_t>(begin + filled));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) throw ScanFailure::ofSystem();
        filled += static_cast<std::size_t>(got);
    }
    return bytes;
}

/// The position behind the last LF in front of `end`, 0 if there is none.
std::uint64_t _lineStart(int descriptor, std::uint64_t end)
{
    while (end > 0) {
        std::uint64_t const begin = end - std::min<std::uint64_t>(end, 64 << 10);
        std::size_t const lineFeed = _readAt(descriptor, begin, end).rfind('\n');
        if (lineFeed != std::string::npos) return begin + lineFeed + 1;
        end = begin;
    }
    return 0;
}

std::string _whatDiffers(std::string const& before, std::string const& now)
{
    nlohmann::json const was = nlohmann::json::parse(before, nullptr, false);
    nlohmann::json const is = nlohmann::json::parse(now, nullptr, false);
    if (!was.is_object()) return "it cannot be read";
    std::string names;
    for (auto const& field : is.items())
        if (!was.contains(field.key()) || was[field.key()] != field.value())
            names += (names.empty() ? "" : ", ") + field.key();
    return "these differ: " + names;
}

} // namespace

LineOutput::LineOutput() : m_path("standard output")
{}

LineOutput::LineOutput(std::string const& path, std::string const& settings, bool resume) : m_path(path)
{
    if (_isNoFile(path)) {
        m_descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_descriptor < 0) fail(path);
        if (resume) throw FileFailure(path, "is no file, so there is nothing to resume");
        return;
    }
    m_target = behindLinks(path);
    m_path = m_target + ".part";
    open();
    if (resume)
        goOn(settings);
    else
        begin(settings);
}

LineOutput::~LineOutput()
{
    if (m_descriptor > 2) ::close(m_descriptor);
}

void LineOutput::fail(std::string const& path) const
{
    throw FileFailure(path, std::generic_category().message(errno));
}

void LineOutput::open()
{
    m_descriptor = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_descriptor < 0) fail(m_path);
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) throw FileFailure(m_path, "is being written by another scan");
}

void LineOutput::begin(std::string const& settings)
{
    if (::ftruncate(m_descriptor, 0) != 0) fail(m_path);
    std::string const path = m_path + ".json";
    std::ofstream file(path, std::ios::binary);
    file << settings << '\n';
    if (!file.flush()) fail(path);
}

void LineOutput::goOn(std::string const& settings)
{
    off_t const size = ::lseek(m_descriptor, 0, SEEK_END);
    if (size < 0) fail(m_path);
    if (size == 0) return begin(settings);
    std::ifstream file(m_path + ".json", std::ios::binary);
    std::string const before{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (before != settings + "\n")
        throw FileFailure(m_path, "was begun by a scan with other settings (" + _whatDiffers(before, settings) +
                                      "); give those again, or begin anew without --resume");
    try {
        m_wholeLines = _lineStart(m_descriptor, static_cast<std::uint64_t>(size));
        if (m_wholeLines > 0)
            m_lastLine = _readAt(m_descriptor, _lineStart(m_descriptor, m_wholeLines - 1), m_wholeLines);
    } catch (ScanFailure const& failure) {
        throw FileFailure(m_path, failure.what());
    }
    if (::ftruncate(m_descriptor, static_cast<off_t>(m_wholeLines)) != 0) fail(m_path);
    ::lseek(m_descriptor, 0, SEEK_END);
}

void LineOutput::write(std::string_view line)
{
    m_buffer += line;
    if (m_buffer.size() >= _bufferSize) flush();
}

void LineOutput::flush()
{
    std::size_t done = 0;
    while (done < m_buffer.size()) {
        ssize_t const written = ::write(m_descriptor, m_buffer.data() + done, m_buffer.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            int const error = errno;
            m_wholeLines += done == 0 ? 0 : m_buffer.rfind('\n', done - 1) + 1; // npos + 1 is 0
            m_buffer.clear();
            if (!m_target.empty() && ::ftruncate(m_descriptor, static_cast<off_t>(m_wholeLines)) != 0) fail(m_path);
            errno = error;
            fail(m_path);
        }
        done += static_cast<std::size_t>(written);
    }
    m_wholeLines += m_buffer.size();
    m_buffer.clear();
}

void LineOutput::finish()
{
    flush();
    if (m_target.empty()) return;
    if (::fsync(m_descriptor) != 0 || ::rename(m_path.c_str(), m_target.c_str()) != 0) fail(m_path);
    ::unlink((m_path + ".json").c_str());
}

} // namespace VelmaraCommand
