// Walks a message and saves its attachments.
//
//     attachments DIRECTORY FILE...
//
// The name of an attachment was chosen by who sent it. It may lead out of the folder ("../../.bashrc"),
// name a file that is there, hide what it is, or steer a terminal; so only its harmless letters are
// kept, behind a number of our own, and no file that exists is ever opened.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

std::string nameOf(MimePart& part)
{
    ContentDisposition disposition(part.headers().find(ContentDisposition::htype));
    if (!disposition.isNull() && !disposition.utf8fileName().empty()) return disposition.utf8fileName();
    ContentType type(part.headers().find(ContentType::htype));
    return type.isNull() ? std::string() : type.utf8name();
}

/// What means nothing to a shell, a terminal or a file system. Other scripts than Latin go, too: a program
/// with users who read them keeps what is valid UTF-8 and no control character.
bool isHarmless(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || std::strchr("._-+", c);
}

/// "3-report.pdf": what stands behind the last separator of any system, with "_" for all else.
std::string safeName(std::string name, size_t number)
{
    constexpr size_t longest = 80;
    size_t const separator = name.find_last_of("/\\");
    if (separator != std::string::npos) name.erase(0, separator + 1);
    if (name.size() > longest) name.erase(0, name.size() - longest); // the ending tells what it is
    for (char& c : name)
        if (c == '\0' || !isHarmless(c)) c = '_';
    return std::to_string(number) + "-" + (name.empty() ? "unnamed" : name);
}

/// Writes to a file that was not there before.
class NewFileImpl : public MediaOutImpl {
public:
    explicit NewFileImpl(std::string const& path) : m_path(path), m_file(std::fopen(path.c_str(), "wbx"))
    {
        if (!m_file) fail();
    }
    ~NewFileImpl() override
    {
        if (m_file) std::fclose(m_file);
    }

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        if (std::fwrite(bytes, 1, n, m_file) != n) fail();
    }
    /// What was kept back may find the disk full, too.
    void end() override
    {
        std::FILE* const file = std::exchange(m_file, nullptr);
        if (std::fclose(file) != 0) fail();
    }

private:
    [[noreturn]] void fail() const { throw std::runtime_error(m_path + ": " + std::strerror(errno)); }

    std::string m_path;
    std::FILE* m_file; // null once closed
};

/// Notes what is to be saved.
class Collector : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        if (!nameOf(part).empty()) attachments.push_back(&part);
    }

    std::vector<MimePart*> attachments; // owned by the message
};

void saveAll(std::string const& directory, char const* mail, size_t& number)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(mail);
    Collector found;
    message->root()->visit(&found); // parses to the end; from here on each body can be read
    for (MimePart* part : found.attachments) {
        std::string const name = safeName(nameOf(*part), ++number);
        MediaOut file(new NewFileImpl(directory + "/" + name), false);
        if (part->blen() != 0) part->body(true).write(file); // of an empty body nothing is to be read
        file.end();
        std::cout << "    " << name << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: attachments DIRECTORY FILE...\n";
        return 2;
    }
    size_t number = 0;
    int status = 0;
    for (int i = 2; i < argc; ++i) {
        try {
            std::cout << argv[i] << '\n';
            saveAll(argv[1], argv[i], number);
        } catch (Exception const& failure) { // of the library: the mail cannot be read
            std::cerr << failure.asString() << '\n';
            status = 2;
        } catch (std::exception const& failure) { // of ours: a file cannot be written
            std::cerr << failure.what() << '\n';
            status = 2;
        }
    }
    return status;
}
