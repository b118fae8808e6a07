#pragma once

#include <string_view>

/// What the two directions of BinHex 4.0 (RFC 1741) agree on.
namespace Velmara {

/// The characters of the values 0 to 63.
constexpr char binHexAlphabet[] = "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
static_assert(sizeof binHexAlphabet == 64 + 1, "one character for each value of six bits");

/// How every notice line begins; a version number and a ")" follow.
constexpr std::string_view binHexNotice = "(This file must be converted with BinHex";

/// Stands at both ends of the encoded text.
constexpr unsigned char binHexEndMark = ':';

/// Announces a run: the count that follows is how often the byte before stands; 0 is the mark itself.
constexpr unsigned char binHexRunMark = 0x90;

constexpr unsigned binHexDataLengthAt = 10; // in the fixed part of the header
constexpr unsigned binHexFixedHeader = 20;  // type, creator, flags, two fork lengths, checksum

} // namespace Velmara
