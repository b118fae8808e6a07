#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <velmara/MediaIn.h>

#include "facts/MessageFacts.h"

namespace VelmaraCommand {

/// The image of a part, for a page that shows it without asking anybody for it.
struct Thumbnail {
    std::string type; // "image/png", "image/gif" or "image/jpeg", as the bytes begin
    std::uint64_t width = 0, height = 0;
    std::string base64;  // the image file; "" if it is left out
    std::string whyNone; // for people
};

/// Sizes above which an image is left out.
struct ThumbnailLimits {
    std::uint64_t bytes = 4 << 20;       // of one image
    std::uint64_t bytesInAll = 16 << 20; // of those of a message
    std::uint64_t pixels = 40'000'000;   // a few kilobytes may unfold into gigabytes
};

/// What an image file is and how large, by its own bytes, whatever its name or type are. Without a type
/// it is none of the three formats; without a size it is damaged.
Thumbnail readImage(std::string const& bytes);

/// By the paths of the parts: an entry for each part that is an image by its declared or its detected
/// type. Only PNG, GIF and JPEG are shown, and only if they were detected as such: all else may hold
/// scripts or links, or is read by little-tested code. The stream is read once more from its start.
std::map<std::string, Thumbnail> thumbnailsOf(Velmara::MediaIn source, std::vector<PartFacts> const& parts,
                                              ThumbnailLimits const& limits = {});

} // namespace VelmaraCommand
