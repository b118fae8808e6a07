#pragma once

#include <string>

#include <velmara/SharedMimeInfo.h>

/// Why a content and a name have the type that they have, in words.
namespace VelmaraCommand {

/// "content-over-name", ...: of JSON, where it is an interface.
char const* nameOf(Velmara::MimeTypeExplanation::Reason reason);
/// The same for people.
char const* textOf(Velmara::MimeTypeExplanation::Reason reason);

/// "string", "big16", ...
char const* kindOf(Velmara::SharedMimeType::Magic::Match const& match);
/// `string "PK" at 0`
std::string testOf(Velmara::SharedMimeType::Magic::Match const& match);

/// The glob or test that decided, or where neither did, what is known instead.
std::string decidedBy(Velmara::MimeTypeExplanation const& why);

} // namespace VelmaraCommand
