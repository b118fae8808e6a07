#include "Input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>

#include "Verb.h"

namespace VelmaraCommand {

namespace {

/// The library's exceptions carry "PATH: REASON" where a file is at fault.
std::string _reason(Velmara::Exception const& failure, std::string const& path)
{
    std::string const& detail = failure.stringParameter();
    if (detail.empty()) return failure.asString();
    return detail.compare(0, path.size() + 2, path + ": ") == 0 ? detail.substr(path.size() + 2) : detail;
}

[[noreturn]] void _fail(int error)
{
    Velmara::Exception failure("read", 6, nullptr, 0);
    failure.stringParameter(std::generic_category().message(error));
    throw failure;
}

std::string _readAll(int file)
{
    std::string bytes;
    char block[64 * 1024];
    for (;;) {
        ssize_t const got = ::read(file, block, sizeof block);
        if (got == 0) return bytes;
        if (got > 0) bytes.append(block, static_cast<size_t>(got));
        if (got < 0 && errno != EINTR) _fail(errno);
    }
}

bool _isPipe(std::string const& path)
{
    struct stat there;
    return ::stat(path.c_str(), &there) == 0 && S_ISFIFO(there.st_mode);
}

std::string _readPipe(std::string const& path)
{
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) _fail(errno);
    std::string const bytes = _readAll(file);
    ::close(file);
    return bytes;
}

} // namespace

std::string readStandardIn()
{
    return _readAll(STDIN_FILENO);
}

std::vector<std::string> linesOf(std::vector<std::string> const& texts)
{
    if (!texts.empty() && texts != std::vector<std::string>{"-"}) return texts;
    std::vector<std::string> lines;
    std::string const input = readStandardIn();
    for (size_t at = 0; at < input.size();) {
        size_t const end = std::min(input.find('\n', at), input.size());
        lines.push_back(input.substr(at, end - at));
        if (!lines.back().empty() && lines.back().back() == '\r') lines.back().pop_back();
        at = end + 1;
    }
    return lines;
}

Input::Input(std::string const& path) : m_name(path == "-" ? "(standard input)" : path)
{
    if (path != "-") {
        m_fileName = path.substr(path.rfind('/') + 1);
        if (!_isPipe(path)) {
            m_media = Velmara::FileMediaIn(path);
            return;
        }
    }
    m_held = path == "-" ? readStandardIn() : _readPipe(path);
    m_media = Velmara::BufferMediaIn(m_held.data(), m_held.size());
}

int forEachInput(std::vector<std::string> const& paths, std::function<int(Input&)> const& work)
{
    int status = Done;
    for (std::string const& path : paths) {
        try {
            Input input(path);
            status = std::max(status, work(input));
        } catch (Velmara::Exception const& failure) {
            complain(path == "-" ? "(standard input)" : path, _reason(failure, path));
            status = WrongUseOrUnreadable;
        }
    }
    return status;
}

void complain(std::string const& place, std::string const& reason)
{
    std::cout.flush();
    std::cerr << "velmara: " << place << ": " << reason << '\n';
}

} // namespace VelmaraCommand
