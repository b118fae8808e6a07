#include <velmara/Rfc822Msg.h>

#include <memory>

#include <velmara/Rfc822MsgParser.h>

namespace Velmara {

namespace {

/// `create` makes the root with the parser.
template <class Create> Ref<Rfc822Msg> _parse(MediaIn& in, Create create)
{
    auto parser = std::make_unique<Rfc822MsgParser>(in, Rfc822Msg::maxDepth);
    std::unique_ptr<MimePart> root(create(*parser));
    auto* message = new Rfc822Msg(parser.get(), root.get());
    parser.release();
    root.release();
    return Ref<Rfc822Msg>(message, false);
}

} // namespace

Rfc822Msg::Rfc822Msg() : Rfc822Msg(nullptr, nullptr)
{}

Rfc822Msg::Rfc822Msg(Rfc822MsgParser* parser, MimePart* root) : m_parser(parser), m_root(root)
{}

Rfc822Msg::~Rfc822Msg()
{
    // The message holds one count of each; records of a message may hold another one of the root.
    RefCounted<MimePart> const root(m_root, false);
    RefCounted<Rfc822MsgParser> const parser(m_parser, false);
}

Ref<Rfc822Msg> Rfc822Msg::parse(MediaIn& in)
{
    return _parse(in, [](Rfc822MsgParser& parser) { return parser.createRfc822Msg(); });
}

Ref<Rfc822Msg> Rfc822Msg::parse(HeaderContainer const& headers, MediaIn& in)
{
    return _parse(in, [&headers](Rfc822MsgParser& parser) { return parser.createRfc822Msg(headers); });
}

Ref<Rfc822Msg> Rfc822Msg::parse(std::string const& path)
{
    FileMediaIn in(path);
    return parse(in);
}

Ref<Rfc822Msg> Rfc822Msg::parse(HeaderContainer const& headers, std::string const& path)
{
    FileMediaIn in(path);
    return parse(headers, in);
}

} // namespace Velmara
