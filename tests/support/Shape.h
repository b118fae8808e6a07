#pragma once

#include <string>

#include <velmara/MimePart.h>
#include <velmara/Rfc822Msg.h>

namespace Velmara {

/// A message over its own copy of a text.
struct Mail {
    explicit Mail(std::string const& text);
    explicit Mail(MediaIn const& source);

    MimePart& root() const { return *message->root(); }
    MimeRfc822MPart& multipart() const { return dynamic_cast<MimeRfc822MPart&>(root()); }
    MimeRfc822SPart& nested() const { return dynamic_cast<MimeRfc822SPart&>(root()); }
    /// A child of a root that is a multipart, all of which is parsed.
    MimePart& child(size_t index) const { return **multipart().parts().at(index); }

    MediaIn in;
    Ref<Rfc822Msg> message;
};

/// The tree as one line of text, made without reading a body:
/// "multipart(preamble leaf message(leaf) skipped epilogue)".
std::string shape(MimePart& part);
std::string shape(std::string const& text);

/// The same with what the parts hold, each body read while it is visited:
/// "multipart(preamble[] leaf[text\n] epilogue[])".
std::string contents(MimePart& part);
std::string contents(std::string const& text);

/// A stream that has nothing but single bytes, so that each line of it is a copy.
MediaIn bytewise(std::string const& text);

/// All lines from the present position on.
std::string textOf(MediaIn in);

/// The text with each LF made CR LF.
std::string withCrLf(std::string const& text);

} // namespace Velmara
