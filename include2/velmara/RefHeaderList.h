#pragma once

#include <list>
#include <string>

#include <velmara/Header.h>
#include <velmara/MediaIn.h>

namespace Velmara {

/// What a RefHeaderList points at.
class VELMARA_EXPORT HeaderList : public RefImpl, public std::list<Header>, private NonCopyable {
public:
    HeaderList();
    ~HeaderList() override;
};

/// A list of headers that several owners share; like HeaderContainer, but it can be null, searches from
/// the end as well, and `remove` takes out one header only.
///
/// Names are compared without regard to ASCII case. A list and its copies belong to one thread at a
/// time. On a null handle every operation throws HeaderException (code 1).
class VELMARA_EXPORT RefHeaderList : public Ref<HeaderList> {
public:
    /// A new empty list, or a null handle.
    explicit RefHeaderList(bool create);
    /// A new list with the same headers (handles on them), or a second handle on the same list, for
    /// which a null `other` throws Exception (code 4).
    RefHeaderList(RefHeaderList const& other, bool deep);
    RefHeaderList(RefHeaderList const&) = default;
    RefHeaderList& operator=(RefHeaderList const&) = default;
    ~RefHeaderList() override;

    /// In their order.
    std::list<Header> const& headers() const;

    /// At the end. A null header throws Exception "HeaderContainer::add" (code 4).
    void add(Header const& header);
    void add(std::list<Header> const& headers);
    /// Reads a header block: see HeaderContainerImpl::parse.
    void add(MediaIn& in);

    /// The first header of that name, or a null header.
    Header const& find(std::string const& name) const;
    /// The last header of that name, or `headers().end()`; with `from`, the last that is not behind it.
    std::list<Header>::const_iterator rfind(std::string const& name) const;
    std::list<Header>::const_iterator rfind(std::string const& name, std::list<Header>::const_iterator from) const;

    /// Removes the first header of that name, whatever the flag says: callers that mean all of them ask
    /// until none is found.
    void remove(std::string const& name, bool);

    /// Assigns to the first header of the same name, or adds at the end.
    void replace(Header const& header);

    /// A null header: what `find` gives when nothing is found.
    static Header const m_empty;
};

} // namespace Velmara
