#pragma once

#include <map>
#include <string>
#include <utility>

#include "Html.h"
#include "facts/MessageFacts.h"

namespace VelmaraCommand {

/// Classes for the colours that a mail uses. A page under a strict policy can have no style attributes, so
/// each pair of colours gets a rule of its own, made of numbers alone.
class Swatches {
public:
    /// Shows the two colours as they are; behind the first few hundred pairs, nothing.
    Html of(Run const& run);
    std::string rules() const;

private:
    std::map<std::string, size_t> m_numbers; // by declarations
};

/// What of an HTML part a reader sees, beside what is hidden there and why, in the order of the document.
Html viewOf(HtmlFacts const& html, Swatches& swatches);

/// The links as text, each with the host that it reaches.
Html linksOf(HtmlFacts const& html);

/// A Content-ID without "cid:" and "<>", which are how a reference and a header write the same.
std::string bareContentId(std::string id);

/// What the part shows as images; those that are parts of the message are named by the part. Nothing is
/// ever loaded.
Html imagesOf(HtmlFacts const& html, std::map<std::string, std::string> const& pathsByContentId);

/// "35 %"; never 0 or 100 where there is some of either.
std::string shareHidden(HtmlFacts const& html);

} // namespace VelmaraCommand
