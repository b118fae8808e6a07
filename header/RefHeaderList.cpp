#include <velmara/RefHeaderList.h>

#include <velmara/HeaderContainer.h>

#include "header/HeaderLists.h"

namespace Velmara {

HeaderList::HeaderList() = default;

HeaderList::~HeaderList() = default;

RefHeaderList::RefHeaderList(bool create)
{
    if (create) holder = newRefCounted(new HeaderList, false);
}

RefHeaderList::RefHeaderList(RefHeaderList const& other, bool deep)
{
    if (deep && other.isNull()) throw HeaderException(__LINE__);
    holder = deep ? newRefCounted(new HeaderList, false) : newRefCounted(other.get(), true);
    if (deep) add(other.headers());
}

RefHeaderList::~RefHeaderList() = default;

std::list<Header> const& RefHeaderList::headers() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return *get();
}

void RefHeaderList::add(Header const& header)
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderLists::refuseNull(header);
    get()->push_back(header);
}

void RefHeaderList::add(std::list<Header> const& headers)
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderLists::append(*get(), headers);
}

void RefHeaderList::add(MediaIn& in)
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderContainerImpl::parse(in, *get());
}

Header const& RefHeaderList::find(std::string const& name) const
{
    if (isNull()) throw HeaderException(__LINE__);
    auto const found = HeaderLists::find(*get(), name);
    return found == get()->end() ? m_empty : *found;
}

std::list<Header>::const_iterator RefHeaderList::rfind(std::string const& name) const
{
    if (isNull()) throw HeaderException(__LINE__);
    return rfind(name, get()->end());
}

std::list<Header>::const_iterator RefHeaderList::rfind(std::string const& name,
                                                       std::list<Header>::const_iterator from) const
{
    if (isNull()) throw HeaderException(__LINE__);
    std::list<Header> const& list = *get();
    if (from != list.end()) ++from;
    while (from != list.begin())
        if (HeaderLists::isNamed(*--from, name)) return from;
    return list.end();
}

void RefHeaderList::remove(std::string const& name, bool)
{
    if (isNull()) throw HeaderException(__LINE__);
    auto const found = HeaderLists::find(*get(), name);
    if (found != get()->end()) get()->erase(found);
}

void RefHeaderList::replace(Header const& header)
{
    if (isNull()) throw HeaderException(__LINE__);
    if (!HeaderLists::replaceFirst(*get(), header)) add(header);
}

} // namespace Velmara
