#pragma once

#include <string>

#include <velmara/Export.h>

struct _xmlNode; // libxml2's

namespace Velmara {

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
/// The numbers are read as far as the commas go: "rgb(1,2)" sets red alone. A "%" is not heeded.
class VELMARA_EXPORT CssRgbColour : public RgbColour {
public:
    /// Black, then read from the text.
    CssRgbColour(std::string const& text, bool useWhiteIfUnknown);
    ~CssRgbColour() override;

    using RgbColour::parse;
    /// The same as for a string, so that a literal is read like one.
    void parse(char const* text, bool useWhiteIfUnknown) override;
    virtual void parse(std::string const& text, bool useWhiteIfUnknown);
};

} // namespace Velmara
