#include "DirectoryWalk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace VelmaraCommand {

namespace {

std::string _systemReason()
{
    return errno == ELOOP ? "is a loop of links" : std::generic_category().message(errno);
}

bool _isDirectory(std::string const& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Why a file of a kind that is not opened is left out.
char const* _nameOfSpecial(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFIFO:
        return "is a FIFO; it was not opened";
    case S_IFSOCK:
        return "is a socket; it was not opened";
    default:
        return "is a device; it was not opened";
    }
}

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

} // namespace

DirectoryWalk::DirectoryWalk(std::string root, Complain complain, std::size_t namesKept)
    : m_complain(std::move(complain)), m_namesKept(namesKept), m_root(std::move(root))
{}

bool DirectoryWalk::next(Found& found)
{
    if (!m_begun) {
        m_begun = true;
        if (visit(m_root, DT_UNKNOWN, Plain, found)) return true;
    }
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.names.empty() && !(level.more && readNames(level))) {
            m_levels.pop_back();
            continue;
        }
        Name const name = std::move(level.names.back());
        level.names.pop_back();
        if (visit(level.path + name.text, name.type, level.kind, found)) return true;
    }
    return false;
}

/// True for a file with messages.
bool DirectoryWalk::visit(std::string const& path, unsigned char type, Kind in, Found& found)
{
    if (type != DT_REG && !isFile(path, in)) return false;
    if (in == Maildir) return false; // those of its directories are messages
    found = Found{path, in == MaildirMessages};
    return true;
}

/// A directory becomes the level that goes on; what is neither is told of.
bool DirectoryWalk::isFile(std::string const& path, Kind in)
{
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) {
        m_complain(path, _systemReason(), true);
        return false;
    }
    if (S_ISDIR(status.st_mode))
        enter(path, in, {status.st_dev, status.st_ino});
    else if (!S_ISREG(status.st_mode) && in != Maildir)
        m_complain(path, _nameOfSpecial(status.st_mode), false);
    return S_ISREG(status.st_mode);
}

void DirectoryWalk::enter(std::string const& path, Kind in, Identity const& identity)
{
    if (!m_entered.insert(identity).second)
        return m_complain(path, "leads to a directory that has been scanned, in a loop of links or twice", false);
    std::string const name = path.substr(path.rfind('/') + 1);
    if (in == Maildir && name == "tmp") return; // what is still being delivered
    Level level{path.back() == '/' ? path : path + "/", Plain, {}, std::string(), true};
    if (in == Maildir && (name == "cur" || name == "new"))
        level.kind = MaildirMessages;
    else if (_isDirectory(level.path + "cur") && _isDirectory(level.path + "new"))
        level.kind = Maildir;
    m_levels.push_back(std::move(level));
}

/// The names that follow the last one, as many as are kept.
bool DirectoryWalk::readNames(Level& level)
{
    std::unique_ptr<DIR, CloseDirectory> directory(::opendir(level.path.c_str()));
    level.more = false;
    if (!directory) {
        m_complain(level.path, _systemReason(), true);
        return false;
    }
    std::vector<Name>& names = level.names;
    auto const dropGreatest = [&] {
        std::nth_element(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(m_namesKept), names.end());
        names.resize(m_namesKept);
        level.more = true;
    };
    errno = 0;
    while (dirent const* entry = ::readdir(directory.get())) {
        std::string name = entry->d_name;
        if (name == "." || name == ".." || (!level.last.empty() && name <= level.last)) continue;
        names.push_back({std::move(name), entry->d_type});
        if (names.size() == 2 * m_namesKept) dropGreatest();
    }
    if (errno != 0) m_complain(level.path, _systemReason(), true);
    if (names.size() > m_namesKept) dropGreatest();
    std::sort(names.rbegin(), names.rend());
    if (!names.empty()) level.last = names.front().text;
    return !names.empty();
}

} // namespace VelmaraCommand
