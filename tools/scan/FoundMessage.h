#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <velmara/MediaIn.h>

#include "File.h"

namespace VelmaraCommand {

/// Where the bytes of a message are: in memory, in part of an open file, or in a file yet to be opened.
/// They may go to another thread.
class MessageBytes {
public:
    /// None.
    MessageBytes() = default;
    static MessageBytes inMemory(std::string bytes);
    static MessageBytes inFile(std::shared_ptr<File> file, std::uint64_t begin, std::uint64_t length);
    static MessageBytes atPath(std::string path);

    /// Opens the file of a path; small ones come into memory. Throws ScanFailure.
    void open(std::size_t largestInMemory);
    std::uint64_t length() const { return m_file ? m_length : m_memory.size(); }
    /// A stream over them, which is valid while they live.
    Velmara::MediaIn media() const;

private:
    std::string m_memory;
    std::shared_ptr<File> m_file;
    std::uint64_t m_begin = 0, m_length = 0; // in m_file
    std::string m_path;                      // not empty: still to be opened
};

/// Takes the bytes of a message one after the other, and decides where they are kept.
class ByteCollector {
public:
    struct Options {
        std::size_t largestInMemory = 1 << 20;
        std::uint64_t most = 0; // what lies behind is not kept; 0: all is
    };

    /// With `file`, the message lies there from `begin` on, and what is too large for memory is read
    /// from it again; without, it goes to a temporary file.
    ByteCollector(Options const& options, std::shared_ptr<File> file, std::uint64_t begin);
    void add(char const* bytes, std::size_t n);
    MessageBytes take();

private:
    Options m_options;
    std::shared_ptr<File> m_file;
    std::uint64_t m_begin;
    std::string m_memory;
    std::shared_ptr<File> m_temporary;
    std::uint64_t m_length = 0; // of all that was kept
};

/// One message of a scan.
struct FoundMessage {
    std::string file;                     // as people should see it
    std::string entry;                    // of the file, if that is an archive
    std::uint64_t offset = 0, length = 0; // in the file, or the entry
    MessageBytes bytes;
    std::string failure; // why it cannot be read; "" otherwise
};

} // namespace VelmaraCommand
