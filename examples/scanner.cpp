// A threaded scanner: reads each message, fills the record that travels with it, decides by simple rules
// and prints the verdict with the names that logs and reports use. A message with all that belongs to it
// stays on the thread that read it; tables of the process are set up before the threads begin.
//
//     scanner FILE...
#include <atomic>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

/// What the rules look at, gathered in one visit.
class Facts : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        ContentType type(part.headers().find(ContentType::htype));
        ContentDisposition disposition(part.headers().find(ContentDisposition::htype));
        if (!disposition.isNull() && disposition.fileType() == ContentDisposition::FileTypeAttachment) ++attachments;
        if (!type.isNull() && type.mediatype() == ContentType::MediaTypeText) collect(part);
    }

    int attachments = 0;
    UriContainer links;

private:
    void collect(MimeRfc822Msg& part)
    {
        std::string text;
        part.body(true).read(text);
        UriSniffer::search(links, text, 0, false);
    }
};

/// Senders, size and the route, as far as trusted hosts vouch for it.
void fill(MessageProperties& properties, Rfc822Msg& message)
{
    HeaderContainer& headers = message.root()->headers();
    HeaderFrom from(headers.find(HeaderFrom::htype));
    if (!from.isNull()) properties.sender = EmailAddress::rfc5322Parse(from.value(), true);
    HeaderTo to(headers.find(HeaderTo::htype));
    if (!to.isNull()) properties.recipient = EmailAddress::rfc5322Parse(to.value(), true);
    for (Header const& header : headers.headers()) properties.headers.add(header);

    TrustedMTASetRef& trusted = TrustedMTASetRef::instance(false);
    for (Header const& header : headers.headers()) {
        if (!stringCompareNoCase(header.type(), Received::htype)) continue;
        properties.received.records.emplace_back(Received(header));
        IPAddress const address(properties.received.records.back().header.address());
        if (address.isNull()) continue;
        properties.received.address = address;
        if (!trusted->isTrusted(address)) break; // what an untrusted host says of those before it counts for nothing
    }
    properties.message = Ref<MimePart>(message.root(), true);
    IPAddress const& client = properties.received.address;
    if (!client.isNull())
        properties.greyListKey = DynamicGreyListKey(IPAddressMask(client.asString(true)), properties.sender);
}

/// The text that filters look at, as a named attribute of the record.
void collectText(MessageProperties& properties, Rfc822Msg& message)
{
    BayesianVisitor visitor;
    visitor.init(message.root());
    message.root()->visit(&visitor);
    visitor.done();
    MPartAttribute* text = message.root()->findAttr(MPartAttribute::TypeText);
    properties.attributes.attribute("text", Ref<MPartAttribute>(text, true));
    properties.size = find_MimeRfc822Msg_Text_buffer(properties.message, MPartAttribute::TypeText).length();
}

struct Verdict {
    char const* classifier;
    unsigned int actions;
};

constexpr unsigned int _accept = 1, _addHeader = 8, _quarantine = 32, _delay = 512;

/// The first rule that holds decides.
Verdict decide(MessageProperties const& properties, Facts const& facts)
{
    if (properties.sender.isNull()) return {"Header Analysis", _addHeader | _quarantine};
    if (facts.attachments > 1) return {"Attachment Filter", _quarantine};
    for (Uri const& link : facts.links.hrefs(0))
        if (IPAddress::isValidIPAddress(link.hostname().asString()))
            return {"Tessary Phishing", _addHeader | _quarantine};
    if (!properties.greyListKey.empty()) return {"Grey List", _delay};
    return {"Not Spam", _accept};
}

std::string scan(std::string const& path)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(path);
    RefMessageProperties properties(true);
    fill(*properties.get(), *message.get());
    Facts facts;
    message->root()->visit(&facts); // finishes the parse; from here on bodies can be read again
    collectText(*properties.get(), *message.get());

    Verdict const verdict = decide(*properties.get(), facts);
    ClassifierNames const& classifiers = ClassifierNames::instance();
    ClassifierType const type = classifiers.findTypeByString(verdict.classifier);
    char actions[256];
    ActionNames::instance().mapToString(verdict.actions, actions, sizeof actions);
    std::ostringstream line;
    line << path << ": " << classifiers.mapToString(type) << " (" << classifiers.categoryName(type) << "), " << actions
         << "; " << properties->size << " bytes of text\n";
    return line.str();
}

struct Job {
    std::string path;
    std::string line; // the outcome
    bool failed = false;
};

/// One of several threads: takes the next job as long as there is one.
void work(std::vector<Job>& jobs, std::atomic<size_t>& next)
{
    for (size_t i; (i = next++) < jobs.size();) {
        Job& job = jobs[i];
        try {
            job.line = scan(job.path);
        } catch (Exception const& failure) { // the file cannot be read; the mail itself never fails
            job.line = failure.asString() + "\n";
            job.failed = true;
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    TrustedMTASetRef::instance(true)->trustedMTAs.insert(IPAddressMask("192.0.2.0/24")); // our own relays
    std::vector<Job> jobs;
    for (int i = 1; i < argc; ++i) jobs.push_back({argv[i], "", false});

    std::atomic<size_t> next{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work, std::ref(jobs), std::ref(next));
    for (std::thread& thread : threads) thread.join();

    int status = 0;
    for (Job const& job : jobs) { // in the order of the command line, whoever was first
        (job.failed ? std::cerr : std::cout) << job.line;
        if (job.failed) status = 2;
    }
    return status;
}
