#pragma once

#include <map>
#include <string>

#include "Thumbnails.h"
#include "facts/MessageFacts.h"

namespace VelmaraCommand {

/// The page of one message: everything that is known of it, in one file that a browser shows without
/// asking anybody for anything.
///
/// It holds no script, no link that leads out of it and no style that comes from the mail, and its
/// policy forbids them all: should a text of the mail ever be taken for markup, the browser would still
/// load and run nothing. The same facts give the same bytes.
///
/// Limits: long texts, lists and headers are cut, each with a word on how much was left out. When the
/// page has grown to some 24 MB, the parts that are still to come are only counted.
std::string pageOf(MessageFacts const& facts, std::map<std::string, Thumbnail> const& thumbnails,
                   std::string const& fileName);

} // namespace VelmaraCommand
