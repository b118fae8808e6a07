#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace VelmaraCommand {

/// What went wrong with the bytes of a scan, for people; it does not name the file.
struct ScanFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
    /// With the reason of the system, as errno tells it.
    static ScanFailure ofSystem(std::string const& place = std::string());
};

/// Bytes in order, from anywhere.
class ByteStream {
public:
    virtual ~ByteStream() = default;
    /// Stores up to `n` bytes and gives their number, 0 at the end. Throws ScanFailure.
    virtual std::size_t read(char* bytes, std::size_t n) = 0;
};

/// A file that is open for reading. It is never waited for: a FIFO is refused where a regular file is
/// due, and a pipe is given up once the scan is interrupted, which then reads as its end.
class File : public ByteStream {
public:
    /// Throws ScanFailure if it cannot be read or is no regular file.
    static std::shared_ptr<File> openRegular(std::string const& path);
    /// A temporary file without a name, for what is too large for memory. Throws ScanFailure.
    static std::shared_ptr<File> temporary();
    /// Regular only if nothing has been read of it: positions count from its beginning.
    static std::shared_ptr<File> standardIn();
    ~File() override;
    File(File const&) = delete;
    File& operator=(File const&) = delete;

    bool isRegular() const { return m_isRegular; }
    std::uint64_t size() const { return m_size; } // when it was opened
    std::size_t read(char* bytes, std::size_t n) override;
    /// Safe from several threads; leaves the position of `read` alone.
    std::size_t readAt(std::uint64_t position, char* bytes, std::size_t n) const;
    /// The position of `read`, of a regular file.
    std::uint64_t position() const;
    void moveTo(std::uint64_t position);
    void append(char const* bytes, std::size_t n);

private:
    explicit File(int descriptor);

    int m_descriptor;
    bool m_isRegular = false;
    std::uint64_t m_size = 0;
};

/// Bytes that were read ahead, then the rest.
class PrefixedStream : public ByteStream {
public:
    PrefixedStream(std::string prefix, std::unique_ptr<ByteStream> rest)
        : m_prefix(std::move(prefix)), m_rest(std::move(rest))
    {}
    std::size_t read(char* bytes, std::size_t n) override;

private:
    std::string m_prefix;
    std::size_t m_at = 0;
    std::unique_ptr<ByteStream> m_rest;
};

/// Up to `n` bytes, fewer only at the end of the stream.
std::string readHead(ByteStream& stream, std::size_t n);

} // namespace VelmaraCommand
