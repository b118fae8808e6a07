#pragma once

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// Something that an analysis found out about a part and attached to it: see MimePart::setAttr.
/// A part holds at most one attribute of each type. The class says what the type number stands for.
class VELMARA_EXPORT MPartAttribute : virtual public RefImpl {
public:
    /// Other programs store these numbers and use further ones of their own: never renumber.
    enum Type : int {
        TypeText = 1,  // MPartText: text that a reader would see
        TypeImage = 3, // ImageProperties: summaries of images
        TypeUri = 7,   // MPartUriContainer: URIs of a part
        TypeTD = 17    // TDProperties: semantic tokens
    };

    /// Of which kind it is: the key under which a part keeps it.
    virtual Type type() const = 0;
    ~MPartAttribute() override;

protected:
    MPartAttribute();
};

} // namespace Velmara
