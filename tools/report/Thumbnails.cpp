#include "Thumbnails.h"

#include <algorithm>
#include <string_view>

#include <velmara/Velmara.h>

#include "Html.h"
#include "facts/Columns.h"
#include "facts/PartPath.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

/// `count` bytes as a number; 0 where there are not as many.
std::uint64_t _bigEndian(std::string_view bytes, size_t at, size_t count)
{
    if (at > bytes.size() || bytes.size() - at < count) return 0;
    std::uint64_t value = 0;
    for (size_t i = 0; i < count; ++i) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

std::uint64_t _littleEndian16(std::string_view bytes, size_t at)
{
    std::uint64_t const swapped = _bigEndian(bytes, at, 2);
    return (swapped & 0xFF) << 8 | swapped >> 8;
}

void _sizeOfPng(std::string_view bytes, Thumbnail& image)
{
    image.width = _bigEndian(bytes, 16, 4);
    image.height = _bigEndian(bytes, 20, 4);
}

void _sizeOfGif(std::string_view bytes, Thumbnail& image)
{
    image.width = _littleEndian16(bytes, 6);
    image.height = _littleEndian16(bytes, 8);
}

/// Start of frame: C0 to CF but for the three that define tables.
bool _isFrame(std::uint64_t marker)
{
    return (marker & 0xF0) == 0xC0 && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// Walks the segments, each with its length behind the marker, to the frame.
void _sizeOfJpeg(std::string_view bytes, Thumbnail& image)
{
    for (size_t at = 2; at < bytes.size() && _bigEndian(bytes, at, 1) == 0xFF;) {
        std::uint64_t const marker = _bigEndian(bytes, at + 1, 1);
        if (_isFrame(marker)) {
            image.height = _bigEndian(bytes, at + 5, 2);
            image.width = _bigEndian(bytes, at + 7, 2);
            return;
        }
        at += marker == 0xFF ? 1 : 2 + _bigEndian(bytes, at + 2, 2); // markers may be padded
    }
}

struct Format {
    std::string_view start;
    char const* type;
    void (*readSize)(std::string_view, Thumbnail&);
};

constexpr Format _formats[] = {
    {"\x89PNG\r\n\x1A\n", "image/png", _sizeOfPng},
    {"GIF87a", "image/gif", _sizeOfGif},
    {"GIF89a", "image/gif", _sizeOfGif},
    {"\xFF\xD8\xFF", "image/jpeg", _sizeOfJpeg},
};

bool _isFormat(std::string const& type)
{
    for (Format const& format : _formats)
        if (type == format.type) return true;
    return false;
}

bool _isImage(std::string const& type)
{
    return startsWith(type, "image/");
}

std::string _detectedType(PartFacts const& part)
{
    return part.type ? part.type->detected : std::string();
}

bool _mayBeShown(PartFacts const& part)
{
    return part.kind == PartKind::Leaf && (_isImage(part.mediaType) || _isImage(_detectedType(part)));
}

/// Why it is not even read; "" if it is.
std::string _whyNotRead(PartFacts const& part, std::uint64_t mostBytes, std::uint64_t leftInAll)
{
    std::string const detected = _detectedType(part);
    if (part.decodedBytes == 0) return "it is empty";
    if (!detected.empty() && !_isFormat(detected)) return "only PNG, GIF and JPEG are shown, and this is " + detected;
    if (part.decodedBytes > mostBytes) return "it is larger than " + shownSize(mostBytes);
    return part.decodedBytes > leftInAll ? "the images ahead of it fill the room for images" : std::string();
}

std::string _whyNotShown(Thumbnail const& image, std::uint64_t mostPixels)
{
    if (image.type.empty()) return "only PNG, GIF and JPEG are shown, and it begins like none of them";
    if (image.width == 0 || image.height == 0) return "its width and height cannot be read";
    if (image.width > mostPixels / image.height) return "it unfolds into more than " + grouped(mostPixels) + " pixels";
    return std::string();
}

std::string _inBase64(std::string const& bytes)
{
    return Buffer(bytes.data(), static_cast<unsigned int>(bytes.size()), false).toBase64String();
}

/// Takes what it shows from the room that is left.
Thumbnail _thumbnailOf(PartFacts const& part, MimePart& body, ThumbnailLimits const& limits, std::uint64_t& left)
{
    Thumbnail image;
    image.whyNone = _whyNotRead(part, limits.bytes, left);
    if (!image.whyNone.empty()) return image;
    std::string const bytes = decodedBodyOf(body);
    image = readImage(bytes);
    image.whyNone = _whyNotShown(image, limits.pixels);
    if (!image.whyNone.empty()) return image;
    image.base64 = _inBase64(bytes);
    left -= std::min<std::uint64_t>(left, bytes.size());
    return image;
}

} // namespace

Thumbnail readImage(std::string const& bytes)
{
    Thumbnail image;
    for (Format const& format : _formats)
        if (startsWith(bytes, format.start)) {
            image.type = format.type;
            format.readSize(bytes, image);
        }
    return image;
}

std::map<std::string, Thumbnail> thumbnailsOf(MediaIn source, std::vector<PartFacts> const& parts,
                                              ThumbnailLimits const& limits)
{
    std::map<std::string, Thumbnail> images;
    for (PartFacts const& part : parts)
        if (_mayBeShown(part)) images[part.path];
    if (images.empty()) return images;

    source.setpos(0);
    Ref<Rfc822Msg> message = Rfc822Msg::parse(source);
    std::map<std::string, MimePart*> bodies;
    for (PartView const& view : partsFrom(finishedRootOf(*message.get()))) bodies[view.path] = view.part;
    std::uint64_t left = limits.bytesInAll;
    for (PartFacts const& part : parts) {
        auto const body = bodies.find(part.path);
        if (images.count(part.path) != 0 && body != bodies.end())
            images[part.path] = _thumbnailOf(part, *body->second, limits, left);
    }
    return images;
}

} // namespace VelmaraCommand
