#pragma once

#include <list>
#include <string>

#include <velmara/ContentDisposition.h>
#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/Exception.h>
#include <velmara/HeaderContainer.h>
#include <velmara/MimeVersion.h>

#include "tests/header/PlainHeaders.h"

/// What must hold for any text, told as the name of the first claim that fails, or null.
namespace Velmara::HeaderChecks {

template <class List> PlainHeaders::Pairs pairsOf(List const& list)
{
    PlainHeaders::Pairs pairs;
    for (TypeAndValue const& entry : list) pairs.emplace_back(entry.type(), entry.value());
    return pairs;
}

inline char const* failedOfBlock(std::string const& block)
{
    PlainHeaders::Pairs expected;
    bool const readable = PlainHeaders::readBlock(block, expected);
    std::list<Header> headers;
    try {
        BufferMediaIn in(block);
        HeaderContainerImpl::parse(in, headers);
        if (!readable) return "refused block";
    } catch (Exception const&) {
        if (readable) return "readable block";
    }
    if (pairsOf(headers) != expected) return "headers";
    for (Header const& header : headers)
        if (header.unfolded().find('\n') != std::string::npos) return "unfolded";
    return nullptr;
}

inline char const* failedOfType(std::string const& value)
{
    PlainHeaders::Type const expected = PlainHeaders::readType(value);
    ContentType const type(value);
    if (type.isNull()) return value.empty() ? nullptr : "null type";
    if (type.mediatypeAsString() != expected.mediatype) return "media type";
    if (type.subtypeAsString() != expected.subtype) return "subtype";
    if (type.charset() != expected.charset) return "charset";
    if (type.boundary() != expected.boundary) return "boundary";
    if (type.value() != expected.value) return "value after reading";
    if (pairsOf(type.parameters()) != expected.parameters) return "parameters of a type";
    // What a reading leaves behind is read the same way again.
    if (pairsOf(ContentType(type.value()).parameters()) != expected.parameters) return "second reading";
    return nullptr;
}

inline char const* failedOfOthers(std::string const& value)
{
    ContentDisposition const disposition(Header(ContentDisposition::htype, value));
    PlainHeaders::Disposition const expected = PlainHeaders::readDisposition(value);
    if (disposition.fileType() != expected.code) return "disposition";
    if (pairsOf(disposition.parameters()) != expected.parameters) return "parameters of a disposition";

    ContentEncoding const encoding(Header(ContentEncoding::htype, value));
    if (encoding.encodingAsString() != PlainHeaders::readWord(value)) return "encoding";
    if (MimeVersion(Header(MimeVersion::htype, value)).version() != value.substr(0, 3)) return "version";
    return nullptr;
}

inline char const* failedOfValue(std::string const& value)
{
    char const* failed = failedOfType(value);
    return failed ? failed : failedOfOthers(value);
}

} // namespace Velmara::HeaderChecks
