#pragma once

#include <velmara/MimePart.h>

#include "BodyBytes.h"
#include "MessageFacts.h"

namespace VelmaraCommand {

/// Makes everything of a decoded body that is wanted: its type, its signature, its text, its page.
void addLeafFacts(Velmara::HeaderContainer const& headers, BodyBytes const& body, Wanted const& wanted,
                  Deadline const& deadline, PartFacts& part);

/// The text of a preamble or epilogue, which has no character set.
void addPlainText(BodyBytes const& body, Wanted const& wanted, PartFacts& part);

} // namespace VelmaraCommand
