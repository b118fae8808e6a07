// Reading a header block. The reader takes one piece of at most 1024 bytes at a time and knows three
// places: before the first header, in a name, in a value. What a line is can be told from its first
// byte only when the line before it has ended, so two facts are kept beside the place: whether the last
// piece had its LF, and whether a line has ended since the colon. A folded line is one that starts with
// a blank once a line has ended; any other line closes the header and is searched for a colon itself.
//
// `A: 1`, ` folded` and the empty line give "1\r\n folded"; `A: 1` and the end of the input give
// nothing, because a header counts only when a line behind it has been seen. Each byte is looked at
// once or twice, whatever the lengths.
#include <velmara/HeaderContainer.h>

#include <string_view>
#include <utility>

#include <velmara/StringOperations.h>

#include "header/HeaderLists.h"
#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr int _pieceSize = 1024;

class _BlockReader {
public:
    _BlockReader(MediaIn& in, std::list<Header>& out) : m_in(in), m_out(out), m_buffer(_pieceSize, 0) {}

    void read()
    {
        while (!m_done) {
            nextPiece();
            while (m_at < m_line.size() && !m_done) (this->*m_step)();
            m_previousComplete = m_complete;
        }
    }

private:
    void nextPiece()
    {
        m_in.readline(m_buffer);
        m_line = std::string_view(reinterpret_cast<char const*>(m_buffer.data()), m_buffer.length());
        m_done = m_line.empty();
        m_complete = m_line.empty() || m_line.back() == '\n';
        m_nameStart = 0;
        m_at = 0;
    }

    void beforeFirst()
    {
        skipBlanks();
        if (m_at == m_line.size()) throw Exception("parse", 5, "HeaderImpl", __LINE__);
        m_done = isEmptyLine();
        m_nameStart = m_at; // blanks ahead of the first name are no part of it
        m_lineEnds = 0;
        m_step = &_BlockReader::inName;
    }

    void inName()
    {
        m_at = findFrom(m_line, m_at, [](unsigned char c) { return c == ':' || isLineEnd(c); });
        if (m_at == m_line.size()) return;
        if (m_at == 0 && isEmptyLine()) {
            m_done = m_lineEnds != 0;
            m_lineEnds = 1;
        }
        if (m_line[m_at] == ':') startValue();
        ++m_at;
    }

    void startValue()
    {
        m_value.clear();
        m_name.assign(m_line.data() + m_nameStart, m_at - m_nameStart);
        m_lineEnds = 0;
        m_step = &_BlockReader::inValue;
    }

    void inValue()
    {
        if (!m_previousComplete) return takeLineFrom(0); // the rest of a longer line
        if (m_lineEnds != 0 && isEmptyLine()) return endBlock();
        skipBlanks();
        if (m_at == 0)
            startName();
        else
            takeLineFrom(m_lineEnds == 0 ? m_at : 0); // a folded line keeps its blanks
    }

    void takeLineFrom(size_t start)
    {
        m_value.append(m_line.substr(start));
        if (m_complete) ++m_lineEnds;
        m_at = m_line.size();
    }

    void startName()
    {
        append();
        m_step = &_BlockReader::inName;
    }

    void endBlock()
    {
        m_done = true;
        if (!m_name.empty()) append(); // a nameless header counts in the middle of a block only
    }

    void append()
    {
        stringRightTrim(m_value);
        m_out.emplace_back(m_name, m_value);
    }

    void skipBlanks()
    {
        m_at = findFrom(m_line, m_at, [](unsigned char c) { return !isBlank(c); });
    }

    bool isEmptyLine() const { return m_line == "\n" || m_line == "\r\n"; }

    MediaIn& m_in;
    std::list<Header>& m_out;
    Buffer m_buffer;

    // The piece in hand.
    std::string_view m_line;
    size_t m_at = 0;
    size_t m_nameStart = 0;
    bool m_complete = true; // it ends in LF
    bool m_done = false;

    // What is carried from piece to piece.
    void (_BlockReader::*m_step)() = &_BlockReader::beforeFirst;
    bool m_previousComplete = true;
    unsigned long m_lineEnds = 0; // since the colon; behind a line without one, since the block's start
    std::string m_name;
    std::string m_value;
};

} // namespace

HeaderContainerImpl::HeaderContainerImpl() = default;

HeaderContainerImpl::~HeaderContainerImpl() = default;

void HeaderContainerImpl::parse(MediaIn& in)
{
    parse(in, list);
}

void HeaderContainerImpl::parse(MediaIn& in, std::list<Header>& out)
{
    try {
        _BlockReader(in, out).read();
    } catch (Exception const& origin) {
        Exception failure("HeaderContainer Parse", 5, "HeaderImpl", __LINE__);
        failure.cause(origin);
        throw failure;
    }
}

HeaderContainer::HeaderContainer() : HeaderContainer(new HeaderContainerImpl, false)
{}

HeaderContainer::HeaderContainer(MediaIn& in) : HeaderContainer()
{
    m_holder->ptr->parse(in);
}

HeaderContainer::HeaderContainer(HeaderContainerImpl* impl, bool addRef) : m_holder(newRefCounted(impl, addRef))
{}

HeaderContainer::HeaderContainer(HeaderContainer const& other)
    : m_holder(other.m_holder ? new RefCounted<HeaderContainerImpl>(other.m_holder->ptr, true) : nullptr)
{}

HeaderContainer::HeaderContainer(HeaderContainer&& other) noexcept : m_holder(std::exchange(other.m_holder, nullptr))
{}

HeaderContainer& HeaderContainer::operator=(HeaderContainer const& other)
{
    RefCountedImplCopy(m_holder, other.m_holder);
    return *this;
}

HeaderContainer::~HeaderContainer()
{
    delete m_holder;
}

HeaderContainer HeaderContainer::clone() const
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderContainer copy;
    for (Header const& header : m_holder->ptr->list)
        copy.m_holder->ptr->list.emplace_back(header.type(), header.value());
    return copy;
}

std::list<Header> const& HeaderContainer::headers() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return m_holder->ptr->list;
}

Header const& HeaderContainer::find(std::string const& name) const
{
    if (isNull()) throw HeaderException(__LINE__);
    auto const found = HeaderLists::find(m_holder->ptr->list, name);
    return found == m_holder->ptr->list.end() ? HeaderContainerImpl::m_empty : *found;
}

void HeaderContainer::add(Header const& header, bool front)
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderLists::refuseNull(header);
    std::list<Header>& list = m_holder->ptr->list;
    list.insert(front ? list.begin() : list.end(), header);
}

void HeaderContainer::add(std::list<Header> const& headers)
{
    if (isNull()) throw HeaderException(__LINE__);
    HeaderLists::append(m_holder->ptr->list, headers);
}

void HeaderContainer::remove(char const* name, bool all)
{
    if (isNull()) throw HeaderException(__LINE__);
    if (name) remove(std::string(name), all);
}

void HeaderContainer::remove(std::string const& name, bool all)
{
    if (isNull()) throw HeaderException(__LINE__);
    std::list<Header>& list = m_holder->ptr->list;
    std::list<Header> removed; // goes last: `name` may be the name of a header in the list
    for (auto at = list.begin(); at != list.end() && (all || removed.empty());) {
        auto const present = at++;
        if (HeaderLists::isNamed(*present, name)) removed.splice(removed.end(), list, present);
    }
}

void HeaderContainer::replace(Header const& header, bool front)
{
    if (isNull()) throw HeaderException(__LINE__);
    if (!HeaderLists::replaceFirst(m_holder->ptr->list, header)) add(header, front);
}

void HeaderContainer::replace(std::list<Header> const& headers)
{
    if (isNull()) throw HeaderException(__LINE__);
    for (Header const& header : headers) replace(header, false);
}

} // namespace Velmara
