#pragma once

#include <map>
#include <string>
#include <vector>

#include "Html.h"
#include "HtmlView.h"
#include "Thumbnails.h"
#include "facts/MessageFacts.h"

namespace VelmaraCommand {

/// What the section of a part refers to. Message and thumbnails must outlive it.
struct Surroundings {
    Surroundings(MessageFacts const& message, std::map<std::string, Thumbnail> const& images);

    std::map<std::string, Thumbnail> const& thumbnails;          // by path
    std::map<std::string, std::vector<Finding const*>> findings; // by path
    std::map<std::string, std::string> pathsByContentId;         // without angle brackets
    Swatches swatches;
};

/// One line for the tree beside the page: path, type and name, and marks for what to look at.
Html treeLineOf(PartFacts const& part, Surroundings const& around);

/// Everything that is known of one part.
Html sectionOf(PartFacts const& part, Surroundings& around);

/// A finding with its code, place and words. With `linked`, the place leads to the part.
Html itemOf(Finding const& finding, bool linked);

} // namespace VelmaraCommand
