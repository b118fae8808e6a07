#include "PartPath.h"

#include <velmara/MimePartVisitor.h>

#include "Text.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

template <class Kind> bool _is(MimePart* part)
{
    return dynamic_cast<Kind*>(part) != nullptr;
}

struct KindRow {
    bool (*matches)(MimePart*);
    PartKind kind;
    char const* name;
};

constexpr KindRow _kinds[] = {
    {_is<MimeRfc822Msg>, PartKind::Leaf, "leaf"},         {_is<MimeRfc822MPart>, PartKind::Multipart, "multipart"},
    {_is<MimeRfc822SPart>, PartKind::Message, "message"}, {_is<MimeSkippedPart>, PartKind::Skipped, "skipped"},
    {_is<MimePreamble>, PartKind::Preamble, "preamble"},  {_is<MimeEpilogue>, PartKind::Epilogue, "epilogue"},
};

PartView _viewOf(MimePart* part, std::string const& path)
{
    return PartView{part, kindOf(part), path};
}

std::vector<PartView> _childrenOfMultipart(MimeRfc822MPart& part, std::string const& path)
{
    std::vector<PartView> children;
    unsigned int number = 0;
    for (Ref<MimePart> const& child : part.parts()) {
        bool const isPreamble = _is<MimePreamble>(child.get());
        children.push_back(_viewOf(child.get(), path + "." + std::to_string(isPreamble ? 0 : ++number)));
    }
    return children;
}

void _addParts(PartView const& view, std::vector<PartView>& parts)
{
    parts.push_back(view);
    for (PartView const& child : childrenOf(view)) _addParts(child, parts);
}

/// Reads every body to its end: only then is it settled where the part ends. Parts are met in message
/// order, for an outer multipart that goes on abandons the inner ones.
class Finisher : public MimePartVisitor {
public:
    void visitSkippedPart(MimeSkippedPart& part) override { drain(part.body(false)); }
    void visitRfc822Msg(MimeRfc822Msg& part) override { drain(part.body(false)); }
    void visitPreamble(MimePreamble& part) override { drain(part.body(false)); }
    void visitEpilogue(MimeEpilogue& part) override { drain(part.body(false)); }

private:
    void drain(MediaIn body)
    {
        do body.readline(m_line);
        while (!m_line.isEmpty());
    }

    Buffer m_line{4096, 0};
};

} // namespace

char const* nameOf(PartKind kind)
{
    for (KindRow const& row : _kinds)
        if (row.kind == kind) return row.name;
    return "";
}

PartKind kindOf(MimePart* part)
{
    for (KindRow const& row : _kinds)
        if (row.matches(part)) return row.kind;
    return PartKind::Leaf;
}

PartView finishedRootOf(Rfc822Msg& message)
{
    PartView root = _viewOf(message.root(), "1");
    Finisher finisher;
    root.part->visit(&finisher);
    return root;
}

std::vector<PartView> childrenOf(PartView const& view)
{
    if (auto* multipart = dynamic_cast<MimeRfc822MPart*>(view.part)) return _childrenOfMultipart(*multipart, view.path);
    auto* nested = dynamic_cast<MimeRfc822SPart*>(view.part);
    if (!nested || nested->child().isNull()) return {};
    return {_viewOf(nested->child().get(), view.path + ".1")};
}

std::vector<PartView> partsFrom(PartView const& root)
{
    std::vector<PartView> parts;
    _addParts(root, parts);
    return parts;
}

std::string decodedBodyOf(MimePart& part)
{
    std::string body;
    if (part.blen() != 0) part.body(true).read(body); // an empty body that is read again gives the byte in front of it
    return body;
}

PartView findPart(PartView const& root, std::string const& path)
{
    PartView at = root;
    while (at.part && at.path != path) {
        PartView next{nullptr, PartKind::Leaf, std::string()};
        for (PartView const& child : childrenOf(at))
            if (startsWith(path, child.path) && (path.size() == child.path.size() || path[child.path.size()] == '.'))
                next = child;
        at = next;
    }
    return at;
}

} // namespace VelmaraCommand
