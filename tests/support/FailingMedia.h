#pragma once

#include <exception>
#include <string>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

/// Media that throw at one call. Each operation counts, those that only look included.
namespace Velmara {

/// Which call throws, and what.
struct Countdown {
    unsigned long left; // this call throws when it comes to 0
    bool ours;          // an Exception of the library; else something that is not even a std::exception
    bool thrown = false;

    void count();
};

/// Passes all calls on to `medium`; both arguments outlive it.
MediaIn failingMedium(MediaIn const& medium, Countdown& countdown);
MediaOut failingSink(MediaOut const& sink, Countdown& countdown);

/// Whether it was thrown by one of these, be it as a cause.
bool isFromFailingMedia(std::exception_ptr const& thrown);

} // namespace Velmara
