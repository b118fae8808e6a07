#include "Input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <string_view>
#include <system_error>

#include "Verb.h"
#include "facts/Shown.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

[[noreturn]] void _fail(int error)
{
    Velmara::Exception failure("read", 6, nullptr, 0);
    failure.stringParameter(std::generic_category().message(error));
    throw failure;
}

constexpr char const* _standardIn = "(standard input)";
constexpr size_t _blockSize = 64 << 10;

/// What is there by now, 0 at the end. What was printed is shown before it waits.
size_t _readBlock(int file, char (&block)[_blockSize])
{
    std::cout.flush();
    for (;;) {
        ssize_t const got = ::read(file, block, sizeof block);
        if (got >= 0) return static_cast<size_t>(got);
        if (errno != EINTR) _fail(errno);
    }
}

std::string _readAll(int file)
{
    std::string bytes;
    char block[_blockSize];
    while (size_t const got = _readBlock(file, block)) bytes.append(block, got);
    return bytes;
}

void _giveLine(std::string& line, std::function<void(std::string const&)> const& work)
{
    if (!line.empty() && line.back() == '\r') line.pop_back();
    work(line);
    line.clear();
}

int _forEachLineOfStandardIn(std::function<void(std::string const&)> const& work)
{
    std::string line;
    char block[_blockSize];
    try {
        while (size_t const got = _readBlock(STDIN_FILENO, block)) {
            std::string_view rest(block, got);
            for (size_t end; (end = rest.find('\n')) != std::string_view::npos; rest.remove_prefix(end + 1)) {
                line += rest.substr(0, end);
                _giveLine(line, work);
            }
            line += rest;
        }
    } catch (Velmara::Exception const& failure) {
        complain(_standardIn, reasonOf(failure, _standardIn));
        return WrongUseOrUnreadable;
    }
    if (!line.empty()) _giveLine(line, work);
    return Done;
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
    std::string bytes = _readAll(file);
    ::close(file);
    return bytes;
}

} // namespace

std::string reasonOf(Velmara::Exception const& failure, std::string const& path)
{
    std::string const& detail = failure.stringParameter();
    if (detail.empty()) return failure.asString();
    return startsWith(detail, path + ": ") ? detail.substr(path.size() + 2) : detail;
}

std::string readStandardIn()
{
    return _readAll(STDIN_FILENO);
}

int forEachLine(std::vector<std::string> const& texts, std::function<void(std::string const&)> const& work)
{
    if (texts.empty() || texts == std::vector<std::string>{"-"}) return _forEachLineOfStandardIn(work);
    for (std::string const& text : texts) work(text);
    return Done;
}

std::string nameOfInput(std::string const& path)
{
    return path == "-" ? _standardIn : path;
}

Input::Input(std::string const& path) : m_name(nameOfInput(path))
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
            complain(nameOfInput(path), reasonOf(failure, path));
            status = WrongUseOrUnreadable;
        }
    }
    return status;
}

void complain(std::string const& place, std::string const& reason)
{
    std::cout.flush();
    std::cerr << "velmara: " + shown(place) + ": " + shown(reason) + '\n';
}

} // namespace VelmaraCommand
