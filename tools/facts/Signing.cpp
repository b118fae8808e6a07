#include "Signing.h"

#include <algorithm>
#include <iterator>

namespace VelmaraCommand {

using namespace Velmara;

namespace {

struct KindRow {
    Hasher::DataType type;
    char const* name;
    HasherImpl* (*make)();
    char const* whyNone;
};

template <class Impl> HasherImpl* _make()
{
    return new Impl;
}

constexpr char const* _shortText = "fewer than 64 characters remain of the text";
constexpr char const* _shortImage = "fewer than 128 bytes of pixel data";

constexpr KindRow _kinds[] = {
    {Hasher::DataHtml, "html", _make<TextHasherHtml>, _shortText},
    {Hasher::DataText, "text", _make<TextHasherPlain>, _shortText},
    {Hasher::DataPng, "png", _make<ImageHasherImpl>, _shortImage},
    {Hasher::DataGif, "gif", _make<ImageHasherImpl>, _shortImage},
    {Hasher::DataJpeg, "jpeg", _make<ImageHasherImpl>, _shortImage},
    {Hasher::DataBinary, "binary", _make<BinaryHasherImpl>, "fewer than 1024 bytes"},
};

KindRow const& _kindOf(Hasher::DataType type)
{
    return *std::find_if(std::begin(_kinds), std::end(_kinds), [&](KindRow const& row) { return row.type == type; });
}

} // namespace

Signing::Signing(Hasher::DataType type) : m_impl(_kindOf(type).make()), m_hasher(m_impl, false)
{
    m_hasher.dataType(type);
}

void Signing::process(std::string_view body, size_t firstRead, size_t wholeSize)
{
    size_t given = std::min(firstRead, body.size());
    give(body.substr(0, given), wholeSize);
    while (m_hasher.isMoreDataRequired() && given < body.size()) {
        given = std::min(2 * given, body.size());
        give(body.substr(0, given), wholeSize);
    }
}

void Signing::give(std::string_view prefix, size_t wholeSize)
{
    m_hasher.process(Buffer(prefix.data(), static_cast<unsigned int>(prefix.size()), false),
                     static_cast<unsigned int>(wholeSize));
}

char const* Signing::kind() const
{
    return _kindOf(m_hasher.dataType()).name;
}

bool Signing::isText() const
{
    return m_impl->maxlen() == TextHasherPlain().maxlen();
}

char const* Signing::whyNone() const
{
    return m_hasher.isValid() ? "" : _kindOf(m_hasher.dataType()).whyNone;
}

size_t Signing::entered() const
{
    return m_hasher.isValid() ? std::min(m_impl->data.length(), m_impl->maxlen()) : 0;
}

std::string Signing::extract() const
{
    return std::string(reinterpret_cast<char const*>(m_impl->data.data()), entered());
}

std::vector<std::string> signingKinds()
{
    std::vector<std::string> names;
    for (KindRow const& row : _kinds) names.push_back(row.name);
    return names;
}

Hasher::DataType signingKindOf(std::string const& name)
{
    for (KindRow const& row : _kinds)
        if (name == row.name) return row.type;
    return Hasher::DataNone;
}

} // namespace VelmaraCommand
