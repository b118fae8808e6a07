#pragma once

namespace Velmara::Hostile {

/// `velmara_hostile search [SECONDS [SEED]]`: random attacks; prints those that cost more than in proportion, 1 if
/// there are any.
int search(unsigned seed, int seconds);

} // namespace Velmara::Hostile
