#include "TypeReasons.h"

#include "Shown.h"

namespace VelmaraCommand {

using Match = Velmara::SharedMimeType::Magic::Match;
using Why = Velmara::MimeTypeExplanation;

namespace {

struct ReasonRow {
    Why::Reason reason;
    char const* name;
    char const* text;
};

constexpr ReasonRow _reasons[] = {
    {Why::EmptyInput, "empty-input", "there is neither a name nor content"},
    {Why::NothingMatched, "nothing-matched", "no pattern fits the name, and there is no content"},
    {Why::LooksLikeText, "looks-like-text", "nothing fits, and the first bytes look like text"},
    {Why::LooksBinary, "looks-binary", "nothing fits, and the first bytes do not look like text"},
    {Why::NameAlone, "name-alone", "no test holds for the content; of the patterns kept, the first counts"},
    {Why::ContentAlone, "content-alone", "no pattern fits the name; the first test of the highest priority counts"},
    {Why::ContentOverName, "content-over-name", "content beats the name"},
    {Why::NameWithinContainer, "name-within-container", "the content is a container, and the name tells which kind"},
    {Why::ContainerWithoutName, "container-without-name",
     "the content is a container, and the name stands for no kind of it"},
};

constexpr bool _inOrder()
{
    int next = Why::EmptyInput;
    for (ReasonRow const& row : _reasons)
        if (row.reason != next++) return false;
    return next == Why::ContainerWithoutName + 1;
}
static_assert(_inOrder(), "_reasons is indexed by reason");

std::string _placesOf(Match const& match)
{
    std::string const start = std::to_string(match.offsetStart);
    return match.offsetStart == match.offsetEnd ? start : start + ":" + std::to_string(match.offsetEnd);
}

std::string _byName(Why const& why)
{
    for (Why::GlobHit const& hit : why.globs)
        if (hit.kept && hit.type->mimeType == *why.mimeType) return "name fits " + shown(hit.glob->pattern);
    return textOf(why.reason);
}

/// Of the tests that hold, the first of the highest priority is the one that counted.
std::string _byContent(Why const& why)
{
    Why::MagicHit const* best = nullptr;
    for (Why::MagicHit const& hit : why.magics)
        if (hit.type->mimeType == *why.mimeType && (!best || hit.magic->priority > best->magic->priority)) best = &hit;
    return best ? "content holds " + testOf(*best->match) : textOf(why.reason);
}

} // namespace

char const* nameOf(Why::Reason reason)
{
    return _reasons[reason].name;
}

char const* textOf(Why::Reason reason)
{
    return _reasons[reason].text;
}

char const* kindOf(Match const& match)
{
    constexpr char const* kinds[] = {"string", "big16", "big32", "host16", "host32", "little16", "little32", "byte"};
    return kinds[match.type];
}

std::string testOf(Match const& match)
{
    std::string text = std::string(kindOf(match)) + " \"" + shown(match.value) + "\" at " + _placesOf(match);
    if (match.hasMask) text += " under the mask " + shown(match.mask);
    if (!match.matches.empty()) text += ", and one of " + std::to_string(match.matches.size()) + " within it";
    return text;
}

std::string decidedBy(Why const& why)
{
    switch (why.reason) {
    case Why::NameAlone:
    case Why::NameWithinContainer:
        return _byName(why);
    case Why::ContentAlone:
    case Why::ContentOverName:
    case Why::ContainerWithoutName:
        return _byContent(why);
    default:
        return textOf(why.reason);
    }
}

} // namespace VelmaraCommand
