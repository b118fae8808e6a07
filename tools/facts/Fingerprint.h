#pragma once

#include <string>
#include <vector>

/// What signatures, types and tokens depend on beside the message, in one number: two sites whose
/// fingerprints agree get the same results, and where they differ the components tell why.
namespace VelmaraCommand {

struct Component {
    std::string name;  // "library", "ICU", "type database", "words e2i.idx", "vectors", ...
    std::string value; // a version, an MD5, "absent" or "unreadable"
};

/// The versions of the library and of what it calls, each data file of the installation, and the digest
/// of what the vectors of the self-test (SelfTest.h) gave here; always the same components in the same order.
/// Looked up at the first call, and from then on the same for the life of the process: files that are
/// exchanged later go unnoticed, as they do in the library. Safe from any thread.
std::vector<Component> const& components();

/// 32 lower-case hexadecimal digits: the MD5 of the components, each as "NAME\tVALUE\n". Like them
/// looked up once.
std::string const& fingerprint();

/// The value of a file's component: its MD5; "absent" where no regular file is.
std::string digestOfFile(std::string const& path);

} // namespace VelmaraCommand
