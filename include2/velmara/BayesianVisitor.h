#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/MPartAttribute.h>
#include <velmara/MediaOut.h>
#include <velmara/MimePart.h>
#include <velmara/MimePartVisitor.h>
#include <velmara/Uri.h>

namespace Velmara {

/// Text that was collected from a message. The meanings of `flag` and `label` are the callers' own.
class VELMARA_EXPORT MPartText : public MPartAttribute {
public:
    /// Empty text of that kind.
    explicit MPartText(MPartAttribute::Type type);
    ~MPartText() override;

    /// What was given: further kinds of text can use this class.
    MPartAttribute::Type type() const override;

    /// The kind, and what was collected.
    MPartAttribute::Type textType;
    Buffer text;
    /// The caller's own.
    int flag = 0;
    std::string label;
};

/// The URIs of a part: an attribute of type 7.
class VELMARA_EXPORT MPartUriContainer : public UriContainer, public MPartAttribute {
public:
    MPartUriContainer();
    ~MPartUriContainer() override;

    /// 7.
    MPartAttribute::Type type() const override;
};

/// Collects the text of a message that a person would read into one buffer, as statistical filters are
/// fed: plain text as it is, HTML as a reader sees it, both decoded from their transfer encodings but
/// left in their character sets. A leaf without a "Content-Type" is text. Attachments, other kinds of
/// text, headers, preambles, epilogues and parts that are nested too deep do not go in; messages
/// within the message do. Nothing stands between the texts of two parts.
///
///     BayesianVisitor visitor;
///     visitor.init(message->root());
///     message->root()->visit(&visitor);
///     visitor.done();
class VELMARA_EXPORT BayesianVisitor : public MimePartVisitor {
public:
    BayesianVisitor();
    /// Text goes to that medium, which gets an end() behind each HTML part, and no attribute is made.
    explicit BayesianVisitor(MediaOut const& out);
    ~BayesianVisitor() override;

    /// Attaches an MPartText of type 1 to `root`, to which text goes without its carriage returns. A
    /// visitor that has a medium keeps it: a further message goes to the same place.
    void init(MimePart* root) override;
    void visitRfc822Msg(MimeRfc822Msg& part) override;

private:
    void collectHtml(MimeRfc822Msg& part);

    MediaOut m_out; // null until the first init
};

/// The text of the attribute of that type on a part; an empty buffer where there is no such part, no
/// such attribute or one of another class. Never throws.
VELMARA_EXPORT Buffer const& find_MimeRfc822Msg_Text_buffer(Ref<MimePart> const& part, MPartAttribute::Type type);

} // namespace Velmara
