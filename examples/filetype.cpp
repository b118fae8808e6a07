// What a file really is: its type by content and name, the number that programs store for it, and whether
// it is of a kind that is not to pass.
//
//     filetype FILE...
#include <iostream>
#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

/// Nearly all tests of the database look at the first bytes; none of a daemon's files has to be read whole.
constexpr unsigned int lookedAt = 64 * 1024;

void tell(std::string const& path)
{
    Buffer start(static_cast<int>(lookedAt), 0);
    FileMediaIn(path).read(start, lookedAt);
    std::string const name = path.substr(path.rfind('/') + 1);
    std::string const& type = SharedMimeInfo::mimeType(start, name);
    bool const canRun = SharedMimeInfo::isMimeTypeEqualOrSubclassOf(type, "application/x-executable");
    std::cout << path << ": " << type << ", code " << SharedMimeInfo::type(type) << (canRun ? ", can be run\n" : "\n");
}

} // namespace

int main(int argc, char** argv)
{
    int status = 0;
    try {
        SharedMimeInfo::init(); // reads the database, so that a missing one is told once, at the start
        for (int i = 1; i < argc; ++i) tell(argv[i]);
    } catch (Exception const& failure) {
        std::cerr << failure.asString() << '\n';
        status = 2;
    }
    return status;
}
