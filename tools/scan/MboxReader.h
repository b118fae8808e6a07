#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "File.h"

namespace VelmaraCommand {

/// Whether a line (with or without its line end) looks like the one in front of a message of an mbox:
/// "From ", one word for the sender (none, or one with blanks in quotes, will do), then a date:
/// "Fri Jul  8 12:08:34 2011" with or without seconds and with zones in front of or behind the year, or
/// "Fri, 8 Jul 2011 12:08". What stands behind the date does not count. Lines above 1000 bytes do not.
bool looksLikeFromLine(std::string_view line);

/// Splits an mbox into its messages, as a stream: memory does not grow with the file or a message.
///
/// A message starts behind a line that looksLikeFromLine and has an empty line, or nothing at all, in
/// front of it. So "From " in a body splits nothing unless a date follows in the right place, and a
/// line that is quoted (">From ") stays as it stands: the bytes of a message are those of the file, and
/// positions in the message are positions in the file. The empty line in front of such a line, or
/// at the end of the file, belongs to the mbox, not to the message. Line ends may be LF or CR LF.
///
/// What stands in front of the first such line is a message too, with an empty separator: the file may
/// have been cut out of a larger one. NULs are ordinary bytes.
///
/// The separators and messages, one behind the other, are the file, and however the stream cuts its
/// reads they are the same.
class MboxReader {
public:
    /// `window` is how many bytes are held: at least 2048, so that a whole separator fits.
    explicit MboxReader(ByteStream& stream, std::size_t window = 128 << 10);

    /// Goes to the next message, past what is left of the present one; false if there is none.
    bool nextMessage();
    /// The next bytes of the present message, which stay valid until the next call; empty at its end.
    std::string_view nextBytes();
    /// Of the first byte of the present message in the stream.
    std::uint64_t offset() const { return m_messageOffset; }
    /// What stood in front of the present message; after the last message, what stood behind that.
    std::string const& separator() const { return m_separator; }

private:
    /// Lengths, from the first byte that is still to be delivered.
    struct Cut {
        std::size_t message;   // of what is the present message's
        std::size_t separator; // of the separator behind that; 0 if there is none, or it is not known yet
    };

    bool refill();
    std::string_view rest() const { return std::string_view(m_window.data() + m_at, m_end - m_at); }
    std::string_view take(std::size_t n);
    Cut nextCut() const;
    Cut atTheEnd() const;
    std::size_t firstSeparator();

    ByteStream& m_stream;
    std::string m_window; // [m_at, m_end) is still to be delivered
    std::size_t m_at = 0, m_end = 0;
    std::uint64_t m_windowOffset = 0; // of the window's first byte in the stream
    bool m_streamEnded = false;

    std::string m_separator;
    std::size_t m_separatorLength = 0; // of the one that starts at m_at, once the message has ended
    std::uint64_t m_messageOffset = 0;
    bool m_begun = false, m_inMessage = false;
    bool m_afterLineFeed = true; // the byte in front of m_at ends a line, or the message begins there
};

} // namespace VelmaraCommand
