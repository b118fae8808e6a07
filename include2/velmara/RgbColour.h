#pragma once

#include <string>
#include <type_traits>

#include <velmara/Export.h>

struct _xmlNode; // libxml2's

namespace Velmara {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual" // see CssRgbColour::parse

/// A colour as the attributes of HTML elements state it ("BGCOLOR", "COLOR", "TEXT").
///
/// Reading is lenient in its own way: "#" and six digits in exactly 7 bytes, or a word that begins
/// with one of 30 colour names. Anything else, the three-digit form too, is no colour: it reads as
/// white if the caller says so and changes nothing otherwise. The parts are not kept within 0 to 255.
///
/// Values belong to one thread.
class VELMARA_EXPORT RgbColour {
public:
    /// Black.
    RgbColour() : RgbColour(0, 0, 0) {}
    RgbColour(int red, int green, int blue);
    /// Black, then read from a text node.
    RgbColour(_xmlNode const* text, bool useWhiteIfUnknown);
    RgbColour(RgbColour const&) = default;
    RgbColour& operator=(RgbColour const&) = default;
    virtual ~RgbColour();

    /// Reads the content of a text node; any other node, or none, changes nothing.
    virtual void parse(_xmlNode const* text, bool useWhiteIfUnknown);
    /// A null text changes nothing. A name must only begin the text: "bluebell" is blue.
    virtual void parse(char const* text, bool useWhiteIfUnknown);

    /// The same in all three.
    bool operator==(RgbColour const& other) const;
    bool operator!=(RgbColour const& other) const { return !(*this == other); }

    /// Whether text of this colour can be told from a background: at a distance of 14 or more.
    bool isVisible(RgbColour const& background) const { return distance(background) >= 14.0; }
    /// How bright the eye finds the difference of two colours (the luma weights of Rec. 709): 0 of equal
    /// ones, 191 of black and white.
    double distance(RgbColour const& other) const;

    /// Not kept within 0 to 255.
    int red;
    int green;
    int blue;
};

/// A colour as a style states it: all that RgbColour reads, and "rgb(r,g,b)" in lower case.
///
/// The numbers are read as far as the commas go: "rgb(1,2)" sets red alone. A "%" is not heeded. What is asked
/// of it as of an RgbColour is read as an attribute states it, for which "rgb(...)" is no colour.
class VELMARA_EXPORT CssRgbColour : public RgbColour {
public:
    /// Black, then read from the text.
    CssRgbColour(std::string const& text, bool useWhiteIfUnknown);
    ~CssRgbColour() override;

    /// Reads the text as a style states it.
    virtual void parse(std::string const& text, bool useWhiteIfUnknown);
    /// Takes the place of RgbColour's two, so that a literal is read as a style. Null changes nothing; a node is
    /// read as an attribute.
    template <class Source> void parse(Source const* source, bool useWhiteIfUnknown)
    {
        if constexpr (!std::is_same_v<Source, char>)
            RgbColour::parse(source, useWhiteIfUnknown);
        else if (source)
            parse(std::string(source), useWhiteIfUnknown);
    }
};

#pragma GCC diagnostic pop

} // namespace Velmara
