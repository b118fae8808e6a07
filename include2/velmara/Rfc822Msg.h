#pragma once

#include <string>

#include <velmara/HeaderContainer.h>
#include <velmara/MediaIn.h>
#include <velmara/MimePart.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class Rfc822MsgParser;

/// A message: the parser at work and the root of the tree it makes.
///
///     FileMediaIn in("message.eml");
///     Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
///     message->root()->visit(&visitor);
///
/// No input is refused: what cannot be read as mail is a leaf without headers. `parse` reads the
/// headers of the root and nothing more; exceptions of the medium reach the caller unchanged.
///
/// Parts, their bodies and the parser share the position of one stream, so a message with all of them
/// belongs to one thread at a time. They are of use only while the message lives: a handle on a part
/// keeps its headers and attributes, not what is still to be read.
class VELMARA_EXPORT Rfc822Msg : virtual public RefImpl, virtual private NonCopyable {
public:
    /// Containers may be nested this deep; one that is deeper is kept as text (MimeSkippedPart).
    static constexpr unsigned int maxDepth = 100;

    /// Neither parser nor root.
    Rfc822Msg();
    /// Takes over both.
    Rfc822Msg(Rfc822MsgParser* parser, MimePart* root);
    ~Rfc822Msg() override;

    /// From the present position of `in`, which the message shares with the caller's handle.
    static Ref<Rfc822Msg> parse(MediaIn& in);
    /// The same where the headers were read elsewhere and `in` stands at the body. The root then has
    /// no `source`, and `sourcePosition` and `hlen` are 0.
    static Ref<Rfc822Msg> parse(HeaderContainer const& headers, MediaIn& in);
    /// The same on a file; see FileMediaIn for what is thrown.
    static Ref<Rfc822Msg> parse(std::string const& path);
    static Ref<Rfc822Msg> parse(HeaderContainer const& headers, std::string const& path);

    /// Both stay the message's own.
    MimePart* root() const { return m_root; }
    Rfc822MsgParser* parser() const { return m_parser; }

private:
    Rfc822MsgParser* m_parser; // owned, may be null
    MimePart* m_root;          // owned, may be null
};

} // namespace Velmara
