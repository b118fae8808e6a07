// The headers of mailing lists and of threads: what they give stands in their value, and a value read
// a second time gives the same.
#include <velmara/ListId.h>
#include <velmara/References.h>
#include <velmara/Rfc2369ListHeader.h>

#include <cstdlib>
#include <iterator>

using namespace Velmara;

namespace {

void checkListId(std::string const& value)
{
    HostName const domain = ListId(Header(ListId::htype, value)).domain();
    if (domain.isNull()) return;
    if (value.find(domain.asString()) == std::string::npos) std::abort();
    if (ListId('<' + domain.asString() + '>').domain() != domain) std::abort();
}

void checkUris(std::string const& value)
{
    HeaderListHelp const help(Header(HeaderListHelp::htype, value));
    std::list<Uri> const first = help.uris();
    std::list<Uri> const& both = help.uris();
    if (both.size() != 2 * first.size()) std::abort();
    if (!std::equal(first.begin(), first.end(), std::next(both.begin(), static_cast<long>(first.size())))) std::abort();
    // Text outside of brackets changes nothing.
    if (HeaderListHelp(Header(HeaderListHelp::htype, "x http://a.example/ " + value)).uris() != first) std::abort();
}

void checkReferences(std::string const& value)
{
    std::list<EmailAddress> bare;
    std::string again;
    References const references(Header(References::htype, value));
    for (EmailAddress const& id : references.addresses()) {
        bare.emplace_back(id.address());
        again += "\r\n\t" + bare.back().asString();
    }
    if (References(Header(References::htype, again)).addresses() != bare) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const value(reinterpret_cast<char const*>(data), size);
    checkListId(value);
    checkUris(value);
    checkReferences(value);
    return 0;
}
