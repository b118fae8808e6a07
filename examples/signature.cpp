// The signature of each body of a message, by which two installations know the same text, image or file
// again. As a daemon does it, no more of a body is read than its hasher asks for.
//
//     signature FILE...
#include <algorithm>
#include <iostream>
#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

/// Longer prefixes of the body, each from its first byte on, until the hasher has enough.
std::string signatureOf(std::string const& body, ContentType const& type)
{
    Hasher hasher = HasherFactory::createHasher(type, 0);
    size_t given = std::min<size_t>(HasherFactory::maxHashBufSize(type), body.size());
    auto const whole = static_cast<unsigned int>(body.size());
    for (;;) {
        Buffer const prefix(body.data(), static_cast<unsigned int>(given), false); // refers to our bytes
        hasher.process(prefix, whole);
        if (!hasher.isMoreDataRequired() || given == body.size()) break;
        given = std::min(2 * given, body.size());
    }
    return hasher.isValid() ? hasher.digestAsHexString() : "too short for a signature";
}

class Signer : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        ContentType type(part.headers().find(ContentType::htype));
        std::string body;
        part.body(true).read(body);
        std::cout << "    " << (type.isNull() ? "no type" : type.mediatypeAsString() + "/" + type.subtypeAsString())
                  << ": " << signatureOf(body, type) << '\n';
    }
};

} // namespace

int main(int argc, char** argv)
{
    int status = 0;
    for (int i = 1; i < argc; ++i) {
        try {
            std::cout << argv[i] << '\n';
            Signer signer;
            Rfc822Msg::parse(argv[i])->root()->visit(&signer);
        } catch (Exception const& failure) {
            std::cerr << failure.asString() << '\n';
            status = 2;
        }
    }
    return status;
}
