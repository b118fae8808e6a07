#pragma once

#include <random>
#include <string>
#include <vector>

namespace Velmara {

/// A message that depends on the seed alone: a tree of texts in many character sets and encodings, HTML, images
/// and attachments, with headers of every typed kind. Some parts contradict what their headers say.
std::string randomMail(unsigned int seed);

} // namespace Velmara
