#pragma once

#include <list>
#include <string>

#include <velmara/Header.h>
#include <velmara/MediaIn.h>

namespace Velmara {

/// What a HeaderContainer points at.
class VELMARA_EXPORT HeaderContainerImpl : virtual public RefImpl {
public:
    HeaderContainerImpl();
    ~HeaderContainerImpl() override;

    /// Reads a header block into this list.
    void parse(MediaIn& in);
    /// Reads a header block, up to and with its empty line, and appends its headers to `out`.
    ///
    /// Values keep their line breaks and folding; only their end is trimmed. A line without a colon is
    /// dropped and ends the header before it. A header is complete only when another line or the empty
    /// line follows: the end of the input drops the one being read. (The reader of the message parser
    /// unfolds and keeps the last header; signatures and callers count on either.)
    ///
    /// A first line of nothing but blanks, without LF, and any Exception of the medium are reported as
    /// Exception "HeaderContainer Parse" (code 5) with their cause; what was read before stays in `out`.
    ///
    /// Limits: lines are read in pieces of 1024 bytes. Of a name that such a cut splits only the last
    /// piece is kept, and that piece stands in the value once more.
    static void parse(MediaIn& in, std::list<Header>& out);

    std::list<Header> list; // in the order of the message

    /// A null header: what lookups give when nothing is found.
    static Header const m_empty;
};

/// The headers of a message or part in their order, duplicates kept.
///
/// Copies share the list: a change through one is seen through the other; `clone` separates. Names are
/// compared without regard to ASCII case. Headers in the list share their text with those given to
/// `add`, so a container and its headers belong to one thread at a time.
/// Operations on a null container throw HeaderException (code 1).
class VELMARA_EXPORT HeaderContainer {
public:
    /// An empty container.
    HeaderContainer();
    /// Filled from a header block: see HeaderContainerImpl::parse.
    explicit HeaderContainer(MediaIn& in);
    /// A new object is wrapped with `addRef` false.
    HeaderContainer(HeaderContainerImpl* impl, bool addRef);
    /// Throws Exception (code 4) for a container that holds null; the assignment accepts one.
    HeaderContainer(HeaderContainer const& other);
    HeaderContainer(HeaderContainer&& other) noexcept;
    HeaderContainer& operator=(HeaderContainer const& other);
    ~HeaderContainer();

    /// True without a list.
    bool isNull() const { return !m_holder || !m_holder->ptr; }

    /// A new container with plain copies of the headers; nothing is shared.
    HeaderContainer clone() const;
    std::list<Header> const& headers() const;

    /// The first header of that name, or a null header.
    Header const& find(std::string const& name) const;

    /// Adds a handle on the same header, without a look for duplicates. A null header throws Exception
    /// "HeaderContainer::add" (code 4) and changes nothing.
    void add(Header const& header, bool front = false);
    /// At the end, in order.
    void add(std::list<Header> const& headers);

    /// Removes the headers of that name, or only the first. A null name removes nothing.
    void remove(char const* name, bool all = true);
    void remove(std::string const& name, bool all = true);

    /// Assigns to the first header of the same name, which keeps its place; later ones stay. Without
    /// one the header is added. A null header throws like `add`.
    void replace(Header const& header, bool front = false);
    /// Each in order; what is new is added at the end.
    void replace(std::list<Header> const& headers);

private:
    RefCounted<HeaderContainerImpl>* m_holder; // owned
};

} // namespace Velmara
