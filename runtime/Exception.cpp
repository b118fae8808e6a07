#include <velmara/Exception.h>

namespace Velmara {

struct Exception::State {
    std::string message;
    int code = 0;
    std::string fileName;
    unsigned int lineNumber = 0;
    std::string stringParameter;
    int intParameter = 0;
    std::shared_ptr<Exception const> cause; // null without one
};

namespace {

Exception const& _noCause()
{
    static Exception const none("", 0, nullptr, 0);
    return none;
}

} // namespace

Exception::Exception(std::string const& message, int code, char const* file, unsigned int line)
    : m_state(std::make_shared<State>())
{
    m_state->message = message;
    m_state->code = code;
    m_state->fileName = file ? file : "";
    m_state->lineNumber = line;
}

Exception::~Exception() = default;

Exception::State& Exception::changeable()
{
    if (m_state.use_count() > 1) m_state = std::make_shared<State>(*m_state);
    return *m_state;
}

char const* Exception::what() const noexcept
{
    return m_state->message.c_str();
}

std::string const& Exception::message() const
{
    return m_state->message;
}

int Exception::code() const
{
    return m_state->code;
}

std::string const& Exception::stringParameter() const
{
    return m_state->stringParameter;
}

void Exception::stringParameter(std::string const& text)
{
    changeable().stringParameter = text;
}

int Exception::intParameter() const
{
    return m_state->intParameter;
}

void Exception::intParameter(int number)
{
    changeable().intParameter = number;
}

std::string const& Exception::fileName() const
{
    return m_state->fileName;
}

void Exception::fileName(char const* name)
{
    changeable().fileName = name ? name : "";
}

void Exception::fileName(std::string const& name)
{
    changeable().fileName = name;
}

unsigned int Exception::lineNumber() const
{
    return m_state->lineNumber;
}

void Exception::lineNumber(unsigned int line)
{
    changeable().lineNumber = line;
}

bool Exception::hasCause() const
{
    return m_state->cause != nullptr;
}

Exception const& Exception::cause() const
{
    return m_state->cause ? *m_state->cause : _noCause();
}

void Exception::cause(Exception const& origin)
{
    // Copied before the state is made ours: the origin may be this very object.
    auto copy = std::make_shared<Exception const>(origin);
    changeable().cause = std::move(copy);
}

std::string Exception::asString() const
{
    std::string text;
    Exception const* one = this;
    for (;;) {
        State const& state = *one->m_state;
        text += state.message + " (code " + std::to_string(state.code) + ")";
        if (!state.stringParameter.empty()) text += ": " + state.stringParameter;
        if (state.intParameter != 0) text += " [" + std::to_string(state.intParameter) + "]";
        if (!state.fileName.empty() || state.lineNumber != 0)
            text += " at " + state.fileName + ":" + std::to_string(state.lineNumber);
        if (!one->hasCause()) break;
        text += ", caused by ";
        one = &one->cause();
    }
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

HeaderException::HeaderException(unsigned int line) : HeaderException(line, "HeaderImpl")
{}

HeaderException::HeaderException(unsigned int line, char const* file) : Exception("HeaderException", 1, file, line)
{}

MediaException::MediaException(unsigned int line) : MediaException(line, "Base64Codec")
{}

MediaException::MediaException(unsigned int line, char const* file) : MediaException(line, file, 1)
{}

MediaException::MediaException(unsigned int line, char const* file, int code)
    : Exception("MediaException", code, file, line)
{}

EncodedWordException::EncodedWordException(int code, unsigned int line)
    : Exception("EncodedWordException", code, "EncodedWordImpl", line)
{}

BufferException::BufferException(std::string const& message, int code, unsigned int line)
    : Exception(message, code, "Buffer", line)
{}

} // namespace Velmara
