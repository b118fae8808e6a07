#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <string_view>

#include <velmara/Exception.h>
#include <velmara/SharedMimeInfo.h>

namespace Velmara {

/// A file that only this process sees and that is gone with this object.
class FileInMemory {
public:
    explicit FileInMemory(std::string_view bytes) : m_descriptor(::memfd_create("database", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || ::write(m_descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw Exception("FileInMemory", 6, nullptr, 0);
    }
    FileInMemory(FileInMemory const&) = delete;
    FileInMemory& operator=(FileInMemory const&) = delete;
    ~FileInMemory() { ::close(m_descriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

/// The database with this text.
inline std::unique_ptr<SharedMimeInfoImpl const> databaseOf(std::string_view xml)
{
    return std::make_unique<SharedMimeInfoImpl const>(FileInMemory(xml).path());
}

/// The database with these elements in its root.
inline std::unique_ptr<SharedMimeInfoImpl const> databaseWith(std::string const& elements)
{
    return databaseOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">" +
                      elements + "</mime-info>");
}

} // namespace Velmara
