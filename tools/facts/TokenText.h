#pragma once

#include <string>

#include <velmara/TD.h>

/// What the words of a text, or the tags of a page, are reduced to.
namespace VelmaraCommand {

/// The word lists are loaded beside other work; nothing can be said before that has ended. The first
/// caller waits, later ones do not.
void waitForWordLists();

/// "western", "Cyrillic", ...
char const* languageOf(Velmara::TD const& tokens);

/// 32 digits that two equal sequences of numbers share; "" for none.
std::string signatureOf(std::wstring const& tokens);

} // namespace VelmaraCommand
