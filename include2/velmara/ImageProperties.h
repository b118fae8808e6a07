#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <velmara/MPartAttribute.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// Where an image of an HTML body comes from: a part of the message or somewhere else.
class VELMARA_EXPORT CID {
public:
    /// What kind of a source it is.
    enum Type : int {
        TypeNone = 0,
        TypeContentId = 1, // "<...>", as a Content-ID header has it
        TypeUrl = 2
    };

    /// No source.
    CID() = default;
    /// A source as it stands.
    CID(std::string const& text, Type kind) : value(text), type(kind) {}
    /// Likewise, with the number of the kind, as it is stored.
    CID(std::string const& text, int kind) : CID(text, static_cast<Type>(kind)) {}

    /// What is named, and how.
    std::string value;
    Type type = TypeNone;
};

/// One image: where it comes from, what size the markup states, and how much text stands above it. The
/// fields behind firstInRun are the caller's own; the library leaves them 0.
class VELMARA_EXPORT ImageSummary : virtual public RefImpl, private NonCopyable {
public:
    /// No source, and all numbers 0.
    ImageSummary();
    /// An image as it was found; what is the caller's own stays 0.
    ImageSummary(CID const& cid, int width, int height, int textLine, bool firstInRun);
    ~ImageSummary() override;

    /// Where it comes from.
    CID cid;
    int width = 0;           // in pixels; 600 for 100 %; 0 where none is stated
    int height = 0;          // likewise
    int textLine = 0;        // lines of text above it
    bool firstInRun = false; // no other image came since there was text, or it is a background
    /// The caller's own.
    bool marked = false;
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    unsigned char values[20] = {};
};

/// The images of an HTML body: an attribute of its part.
class VELMARA_EXPORT ImageProperties : public MPartAttribute {
public:
    /// The number is the caller's own.
    explicit ImageProperties(int number);
    ~ImageProperties() override;

    /// 3.
    MPartAttribute::Type type() const override;

    /// At the end.
    void add(Ref<ImageSummary> const& image);
    /// The first image that comes from `name`, without regard to case; a null handle if there is none.
    Ref<ImageSummary> const& find(std::string const& name) const;
    /// In document order.
    std::vector<Ref<ImageSummary>> const& images() const { return m_images; }

    int number;     // as given
    int second = 0; // the caller's own

private:
    std::vector<Ref<ImageSummary>> m_images;
};

} // namespace Velmara
