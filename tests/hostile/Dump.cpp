#include "hostile/Dump.h"

#include <cstdio>
#include <functional>
#include <iostream>
#include <locale>
#include <stdexcept>

#include "hostile/Case.h"
#include "hostile/Work.h"
#include "support/SmallStack.h"

namespace Velmara::Hostile {

namespace {

constexpr size_t _size = 3000;

void _putCase(Case const& one, Sink& sink)
{
    one.work(Input::ofText(one.make(_size)), sink);
}

void _putMessage(std::string const& path, Sink& sink)
{
    Input const message = Input::ofFile(path);
    walkTree(message, sink);
    readBodies(message, sink);
    analyseMessage(message, sink);
    collectText(message, sink);
    useHeaderBlock(message, sink);
    sign(message, sink);
    detectType(message, sink);
    readHtml(message, sink);
    readTokens(message, sink, "utf-8");
}

void _print(std::string const& name, std::function<void(Sink&)> const& put)
{
    onSmallStack([&] {
        Sink sink(Sink::Digest);
        put(sink);
        std::printf("%s %s\n", sink.digest().c_str(), name.c_str());
    });
}

} // namespace

int dump(std::vector<std::string> const& files)
{
    std::locale::global(std::locale(""));
    for (Case const& one : cases()) _print(one.name, [&](Sink& sink) { _putCase(one, sink); });
    for (std::string const& path : files) _print(path, [&](Sink& sink) { _putMessage(path, sink); });
    return 0;
}

int show(std::string const& name)
{
    std::locale::global(std::locale(""));
    Sink sink(Sink::All);
    onSmallStack([&] {
        for (Case const& one : cases())
            if (name == one.name) return _putCase(one, sink);
        _putMessage(name, sink);
    });
    std::fwrite(sink.all().data(), 1, sink.all().size(), stdout);
    return 0;
}

} // namespace Velmara::Hostile
