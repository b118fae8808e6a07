#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace VelmaraCommand {

/// The files below a path, in the byte order of their names, directory by directory: machines that see
/// the same tree walk it alike.
///
/// Links are followed, but each directory is entered once, by whichever way leads there first, so a
/// loop of links ends. FIFOs, sockets and devices are left out, with a complaint. A directory that has
/// both "cur" and "new" in it is a Maildir: its messages are the files of these two; "tmp" and the files
/// beside them are not looked at, its other directories are walked as any.
///
/// Memory does not grow with a directory: of a large one only the next names in order are kept, and it
/// is read again for those behind them.
class DirectoryWalk {
public:
    /// Of a file or directory that is left out: its path and why.
    using Complain = std::function<void(std::string const& path, std::string const& reason, bool unreadable)>;

    struct Found {
        std::string path;
        bool isMessage; // lies in a Maildir, and so holds one message whatever it looks like
    };

    explicit DirectoryWalk(std::string root, Complain complain, std::size_t namesKept = 65536);

    bool next(Found& found);

private:
    using Identity = std::pair<dev_t, ino_t>; // of a directory, whatever path leads to it
    enum Kind { Plain, Maildir, MaildirMessages };
    struct Name {
        std::string text;
        unsigned char type; // as readdir gives it, DT_UNKNOWN where it does not
        bool operator<(Name const& other) const { return text < other.text; }
    };
    struct Level {
        std::string path; // with a slash at its end
        Kind kind;
        std::vector<Name> names; // the next ones, the last of them first
        std::string last;        // the greatest name that has been in `names`
        bool more;               // there are greater ones
    };

    bool visit(std::string const& path, unsigned char type, Kind in, Found& found);
    bool isFile(std::string const& path, Kind in);
    void enter(std::string const& path, Kind in, Identity const& identity);
    bool readNames(Level& level);

    Complain m_complain;
    std::size_t const m_namesKept;
    std::string m_root;
    bool m_begun = false;
    std::vector<Level> m_levels;
    std::set<Identity> m_entered;
};

} // namespace VelmaraCommand
