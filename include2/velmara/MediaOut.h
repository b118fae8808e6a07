#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// Base of all sinks. A subclass overrides the byte form of `write`; the rest has defaults.
/// An object belongs to one thread at a time.
class VELMARA_EXPORT MediaOutImpl : virtual public RefImpl {
public:
    MediaOutImpl();
    ~MediaOutImpl() override;

    /// Appends the bytes; the default hands them to the byte form.
    virtual void write(Buffer const& bytes);
    virtual void write(uchar_t const* bytes, uint_t n) = 0;
    /// The writer is done. Decorators flush what they hold and pass it on; the default does nothing.
    virtual void end();
    /// Tells in which character set the bytes are; the default does nothing.
    virtual void characterSet(std::string const& name);
    /// Position of the medium; the default gives 0.
    virtual unsigned long tell() const;
    /// Moves the position; the default does nothing.
    virtual void setpos(unsigned long position);
};

/// Handle on a sink. Copies share the sink. Every operation on a null handle throws Exception with the
/// operation's name (code 1).
class VELMARA_EXPORT MediaOut : public Ref<MediaOutImpl> {
public:
    /// A null handle.
    MediaOut();
    /// A new object is wrapped with `addRef` false.
    MediaOut(MediaOutImpl* impl, bool addRef);
    MediaOut(MediaOut const&) = default;
    MediaOut& operator=(MediaOut const&) = default;
    ~MediaOut() override;

    /// As of MediaOutImpl, on the sink that this is a handle on.
    virtual void write(Buffer const& bytes);
    virtual void write(uchar_t const* bytes, uint_t n);
    virtual void end();
    virtual unsigned long tell() const;
    virtual void setpos(unsigned long position);

    /// Tells the sink in which character set the next bytes are.
    void characterSet(std::string const& name);

protected:
    /// The sink; a null handle throws Exception with the name of the operation (code 1).
    MediaOutImpl& impl(char const* operation, unsigned int line) const;
};

/// Write and give back the medium.
VELMARA_EXPORT MediaOut& operator<<(MediaOut& out, Buffer const& bytes);
VELMARA_EXPORT MediaOut& operator<<(MediaOut& out, std::string const& bytes);
VELMARA_EXPORT MediaOut& operator<<(MediaOut& out, char byte);

/// Base of the filters and codecs: a sink that rewrites bytes on their way to another one.
/// A stage must expect its input cut anywhere; it keeps only the bytes that it cannot judge yet.
class VELMARA_EXPORT MediaOutDecoratorImpl : public MediaOutImpl {
public:
    /// Without a downstream; `attach` gives one later.
    MediaOutDecoratorImpl();
    explicit MediaOutDecoratorImpl(MediaOut const& downstream);
    ~MediaOutDecoratorImpl() override;

    /// Both are passed on; without a downstream they do nothing.
    void end() override;
    void characterSet(std::string const& name) override;

    /// Connects the downstream, replacing another one.
    virtual void attach(MediaOut const& downstream);
    /// Drops the downstream.
    virtual void detach();

protected:
    /// Where it writes; a null handle until `attach`.
    MediaOut& downstream() { return m_downstream; }

private:
    MediaOut m_downstream; // null until attached
};

/// Handle on a decorator, for a subclass `Filter::Filter() : MediaOutDecorator(new FilterImpl, false) {}`.
/// MediaOut is a virtual base, which only the last subclass constructs. That one need not know of it: the
/// constructors here give the handle its implementation if nobody else has.
class VELMARA_EXPORT MediaOutDecorator : virtual public MediaOut {
public:
    /// A null handle.
    MediaOutDecorator();
    MediaOutDecorator(MediaOutDecoratorImpl* impl, bool addRef);
    MediaOutDecorator(MediaOutDecorator const& other);
    MediaOutDecorator& operator=(MediaOutDecorator const& other);
    ~MediaOutDecorator() override;

    /// Those of the implementation; on a null handle they throw Exception (code 1).
    void attach(MediaOut const& downstream);
    void detach();

private:
    MediaOutDecoratorImpl& decorator(char const* operation, unsigned int line) const;
};

/// A sink that appends to `target`, which must outlive every handle on it. `tell` gives the length of
/// the target; `setpos` truncates it.
class VELMARA_EXPORT BufferMediaOut : public MediaOut {
public:
    /// The buffer must outlive every handle on the sink.
    explicit BufferMediaOut(Buffer& target);
};

/// A sink that writes a file. Each write is in the file when it returns; who writes many small pieces
/// gathers them first.
class VELMARA_EXPORT FileMediaOut : public MediaOut {
public:
    /// A null handle.
    FileMediaOut();
    /// Creates or truncates the file. A failed open or write throws Exception "FileMediaOut" (code 6,
    /// path and system error as string parameter).
    explicit FileMediaOut(std::string const& path);
};

} // namespace Velmara
