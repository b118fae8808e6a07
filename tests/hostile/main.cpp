// velmara_hostile measure [FILTER [MS]]  time and memory of each attack at n, 2n and 4n
// velmara_hostile search [S [SEED]]  random attacks for S seconds
// velmara_hostile memory             what bodies, parts, headers, parameters and links cost
// velmara_hostile quick              each attack once, in a thread with a small stack
// velmara_hostile dump FILE...       a digest of what comes out of each attack and of each message
// velmara_hostile show NAME          what comes out of one attack or message
#include <cstdio>
#include <exception>
#include <iostream>
#include <locale>
#include <random>
#include <string>
#include <vector>

#include <velmara/SharedMimeInfo.h>

#include "hostile/Case.h"
#include "hostile/Dump.h"
#include "hostile/Measure.h"
#include "hostile/Search.h"
#include "support/SmallStack.h"

namespace Velmara::Hostile {

namespace {

int _quick()
{
    for (Case const& one : cases()) {
        std::fprintf(stderr, "%s\n", one.name); // the last one printed is the one that broke
        std::string text = one.make(12000);
        onSmallStack([&] {
            Sink sink(Sink::Digest);
            one.work(Input::ofText(std::move(text)), sink);
        });
    }
    return 0;
}

int _do(std::vector<std::string> const& words)
{
    std::string const verb = words.empty() ? std::string() : words[0];
    if (verb == "measure" || verb == "search" || verb == "dump")
        SharedMimeInfo::init(); // without data they would measure nothing
    if (verb == "measure" && words.size() <= 3)
        return measure(words.size() > 1 ? words[1] : std::string(), words.size() > 2 ? std::stod(words[2]) : 20);
    if (verb == "search" && words.size() <= 3)
        return search(words.size() > 2 ? static_cast<unsigned>(std::stoul(words[2])) : std::random_device()(),
                      words.size() > 1 ? std::stoi(words[1]) : 60);
    if (verb == "memory" && words.size() == 1) return measureMemory();
    if (verb == "quick" && words.size() == 1) return _quick();
    if (verb == "dump") return dump({words.begin() + 1, words.end()});
    if (verb == "show" && words.size() == 2) return show(words[1]);
    if (verb == "run" && words.size() == 3) return runOne(words[1], words[2]);
    if (verb == "memory-of" && words.size() == 3) return runMemory(words[1], words[2]);
    std::fprintf(stderr, "usage: velmara_hostile measure [FILTER [MS]] | search [SECONDS [SEED]] | memory | quick | "
                         "dump FILE... | show NAME\n");
    return 2;
}

} // namespace

} // namespace Velmara::Hostile

int main(int argc, char** argv)
{
    try {
        return Velmara::Hostile::_do({argv + 1, argv + argc});
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "velmara_hostile: %s\n", failure.what());
        return 2;
    }
}
