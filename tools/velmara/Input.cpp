#include "Input.h"

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

} // namespace

std::string readStandardIn()
{
    std::string bytes;
    char block[64 * 1024];
    for (;;) {
        ssize_t const got = ::read(STDIN_FILENO, block, sizeof block);
        if (got == 0) return bytes;
        if (got > 0) bytes.append(block, static_cast<size_t>(got));
        if (got < 0 && errno != EINTR) {
            Velmara::Exception failure("read", 6, nullptr, 0);
            failure.stringParameter(std::generic_category().message(errno));
            throw failure;
        }
    }
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
        m_media = Velmara::FileMediaIn(path);
        return;
    }
    m_standardIn = readStandardIn();
    m_media = Velmara::BufferMediaIn(m_standardIn.data(), m_standardIn.size());
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
