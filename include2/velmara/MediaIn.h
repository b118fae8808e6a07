#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class MediaOut;

/// Base of all input streams. A subclass defines `atEnd`, `peek` and the byte form of `read`; what it
/// does not override is built on those. An object belongs to one thread at a time.
class VELMARA_EXPORT MediaInImpl : virtual public RefImpl {
public:
    MediaInImpl();
    ~MediaInImpl() override;

    /// True once nothing remains.
    virtual bool atEnd() const = 0;
    /// The next byte without consuming it, -1 at the end.
    virtual int peek() const = 0;
    /// Replaces the content of `line` by the next line with its LF, or by the rest of the stream if no
    /// LF follows; empty at the end. At most `line.size()` bytes are delivered and the next call goes
    /// on from there, so a piece whose last byte is not LF is part of a longer line. A buffer without
    /// any capacity first gets 4096. Lines end at LF only. The default asks the byte form for each byte.
    virtual void readline(Buffer& line);
    /// Replaces the content of `block` by up to `n` bytes (0: up to its capacity), growing it as needed,
    /// and gives their number. The default gathers lines, and a stream whose `readline` pays no heed to
    /// the capacity may so deliver more than `n`.
    virtual int read(Buffer& block, uint_t n);
    /// Replaces the content by all that remains.
    virtual int read(Buffer& all);
    virtual int read(std::string& all);
    /// Stores up to `n` bytes at `bytes` and gives their number.
    virtual int read(uchar_t* bytes, uint_t n) = 0;
    /// Position of the next byte; the default gives 0.
    virtual unsigned long tell() const;
    /// Moves the position; the default does nothing.
    virtual void setpos(unsigned long position);
    /// Copies what remains to `out`; does not end it.
    virtual void write(MediaOut& out);
};

/// Handle on an input stream. Copies share the stream and so its position. Every operation on a null
/// handle throws Exception with the operation's name (code 1).
class VELMARA_EXPORT MediaIn : public Ref<MediaInImpl> {
public:
    /// A null handle.
    MediaIn();
    /// A new object is wrapped with `addRef` false.
    MediaIn(MediaInImpl* impl, bool addRef);
    MediaIn(MediaIn const&) = default;
    MediaIn(MediaIn&&) noexcept = default;
    MediaIn& operator=(MediaIn const&) = default;
    MediaIn& operator=(MediaIn&&) noexcept = default;
    ~MediaIn() override;

    /// As of MediaInImpl, on the stream that this is a handle on.
    virtual bool atEnd() const;
    virtual int peek() const;
    virtual void readline(Buffer& line);
    virtual int read(uchar_t* bytes, uint_t n);
    virtual int read(Buffer& block, uint_t n);
    virtual unsigned long tell() const;
    virtual void setpos(unsigned long position);
    virtual void write(MediaOut& out);

    /// Replace the content by all that remains.
    int read(Buffer& all);
    int read(std::string& all);

private:
    MediaInImpl& impl(char const* operation, unsigned int line) const;
};

/// A stream over bytes in memory. `tell` counts from the first byte; `setpos` past the end goes to it.
class VELMARA_EXPORT BufferMediaIn : public MediaIn {
public:
    /// Over a copy of the bytes.
    explicit BufferMediaIn(Buffer const& bytes);
    explicit BufferMediaIn(std::string const& bytes);
    /// Over the caller's bytes, which must outlive every handle on the stream.
    BufferMediaIn(void const* bytes, size_t n);
};

/// A stream over a file, read in blocks. `tell` and `setpos` are exact whatever the size of the file;
/// `setpos` past the end makes the stream be at its end. Pipes can be read, but not repositioned.
class VELMARA_EXPORT FileMediaIn : public MediaIn {
public:
    /// Throws Exception "FileMediaIn" (code 6, path and system error as string parameter) if the file
    /// cannot be opened or is a directory; reads that fail later throw the same.
    explicit FileMediaIn(std::string const& path);
};

} // namespace Velmara
