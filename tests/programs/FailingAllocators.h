#pragma once

#include <string>

/// Every allocator that the library reaches: `operator new`, that of ICU and that of libxml2. Linking this
/// replaces them; a test says which allocation fails. All threads count together.
namespace Velmara::Allocations {

enum class Mode { Once, FromThenOn };

/// The n-th allocation from now on fails; with 0 none does, and they are only counted.
void arm(unsigned long n, Mode mode);
/// Nothing fails any more. Gives how many allocations were asked for since.
unsigned long disarm();
/// Whether one has failed since the last arm().
bool hasFailed();
bool hasFailedInXml();

/// Blocks that are not freed yet.
struct Live {
    long fromNew, fromIcu, fromXml;
    bool operator==(Live const& other) const
    {
        return fromNew == other.fromNew && fromIcu == other.fromIcu && fromXml == other.fromXml;
    }
    bool operator!=(Live const& other) const { return !(*this == other); }
    std::string asString() const;
};
Live live();

} // namespace Velmara::Allocations
