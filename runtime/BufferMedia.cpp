#include <utility>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

#include "runtime/BlockMediaIn.h"

namespace Velmara {

namespace {

/// Bytes in memory are one block. `Owner` keeps them alive; for the caller's own bytes it is empty.
template <class Owner> class MemoryMediaInImpl : public BlockMediaInImpl {
public:
    explicit MemoryMediaInImpl(Owner owner) : m_owner(std::move(owner))
    {
        present(reinterpret_cast<unsigned char const*>(m_owner.data()), bytes(), 0);
    }

    void setpos(unsigned long position) override
    {
        if (!moveWithin(position)) moveWithin(bytes());
    }

private:
    bool nextBlock() override { return false; }
    size_t bytes() const;

    Owner const m_owner;
};

struct ForeignBytes {
    void const* bytes;
    size_t length;
    void const* data() const { return bytes; }
};

template <> size_t MemoryMediaInImpl<Buffer>::bytes() const
{
    return m_owner.length();
}

template <> size_t MemoryMediaInImpl<std::string>::bytes() const
{
    return m_owner.size();
}

template <> size_t MemoryMediaInImpl<ForeignBytes>::bytes() const
{
    return m_owner.length;
}

class BufferMediaOutImpl : public MediaOutImpl {
public:
    explicit BufferMediaOutImpl(Buffer& target) : m_target(target) {}

    void write(Buffer const& bytes) override { m_target.append(bytes); }
    void write(uchar_t const* bytes, uint_t n) override { m_target.append(bytes, n); }
    unsigned long tell() const override { return m_target.length(); }
    void setpos(unsigned long position) override
    {
        if (position < m_target.length()) m_target.length(static_cast<unsigned int>(position));
    }

private:
    Buffer& m_target; // not owned
};

} // namespace

BufferMediaIn::BufferMediaIn(Buffer const& bytes) : MediaIn(new MemoryMediaInImpl<Buffer>(bytes), false)
{}

BufferMediaIn::BufferMediaIn(std::string const& bytes) : MediaIn(new MemoryMediaInImpl<std::string>(bytes), false)
{}

BufferMediaIn::BufferMediaIn(void const* bytes, size_t n)
    : MediaIn(new MemoryMediaInImpl<ForeignBytes>(ForeignBytes{bytes, n}), false)
{}

BufferMediaOut::BufferMediaOut(Buffer& target) : MediaOut(new BufferMediaOutImpl(target), false)
{}

} // namespace Velmara
