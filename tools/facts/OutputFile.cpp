#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <velmara/Exception.h>

namespace VelmaraCommand {

namespace {

/// What a new file may be read and written by. Asking for the mask means setting it.
mode_t _modeOfNewFiles()
{
    mode_t const mask = ::umask(022);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::string behindLinks(std::string const& path)
{
    char* const resolved = ::realpath(path.c_str(), nullptr);
    std::string target = resolved ? resolved : path;
    std::free(resolved);
    return target;
}

OutputFile::OutputFile(std::string const& path) : m_path(path), m_target(path)
{
    struct stat there;
    bool const exists = ::stat(path.c_str(), &there) == 0;
    if (exists && S_ISDIR(there.st_mode)) fail(EISDIR);
    if (exists && !S_ISREG(there.st_mode)) {
        m_file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_file < 0) fail(errno);
        return;
    }
    m_target = behindLinks(path);
    openBeside();
    ::fchmod(m_file, exists ? there.st_mode & 0777 : _modeOfNewFiles()); // where it cannot be, it stays private
}

void OutputFile::openBeside()
{
    std::string name = m_target + ".XXXXXX";
    m_file = ::mkostemp(name.data(), O_CLOEXEC);
    if (m_file < 0) fail(errno);
    m_beside = name;
}

OutputFile::~OutputFile()
{
    if (m_file >= 0) ::close(m_file);
    if (!m_beside.empty()) ::unlink(m_beside.c_str());
}

void OutputFile::fail(int error) const
{
    Velmara::Exception failure("OutputFile", 6, nullptr, 0);
    failure.stringParameter(m_path + ": " + std::generic_category().message(error));
    throw failure;
}

void OutputFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        ssize_t const written = ::write(m_file, bytes.data(), bytes.size());
        if (written > 0) bytes.remove_prefix(static_cast<size_t>(written));
        if (written < 0 && errno != EINTR) fail(errno);
    }
}

void OutputFile::finish()
{
    bool const isFile = !m_beside.empty();
    if (isFile && ::fsync(m_file) != 0) fail(errno);
    int const closed = ::close(m_file);
    m_file = -1;
    if (closed != 0) fail(errno);
    if (!isFile) return;
    if (::rename(m_beside.c_str(), m_target.c_str()) != 0) fail(errno);
    m_beside.clear();
}

} // namespace VelmaraCommand
