#include <velmara/FilterUTF8MediaOut.h>

#include <velmara/VmaraConv.h>

namespace Velmara {

class FilterUTF8MediaOutImpl : public MediaOutDecoratorImpl {
public:
    FilterUTF8MediaOutImpl() = default;
    explicit FilterUTF8MediaOutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}
    ~FilterUTF8MediaOutImpl() override;

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    void characterSet(std::string const& name) override;

private:
    VmaraConv m_converter; // null until the first write in a character set
    std::string m_charset = "iso-8859-1";
};

FilterUTF8MediaOutImpl::~FilterUTF8MediaOutImpl()
{
    if (m_converter.isNull()) return;
    try {
        m_converter.end();
    } catch (...) {
        // What a downstream throws has nobody left to go to.
    }
}

void FilterUTF8MediaOutImpl::write(uchar_t const* bytes, uint_t n)
{
    if (n == 0) return;
    if (m_converter.isNull()) m_converter = VmaraConv(downstream(), m_charset, "UTF-8", false);
    m_converter.write(bytes, n);
}

void FilterUTF8MediaOutImpl::characterSet(std::string const& name)
{
    if (!name.empty() && name != m_charset) {
        m_charset = name;
        // The old converter must not speak up as it goes: what it holds is lost.
        if (!m_converter.isNull()) m_converter.detach();
        m_converter.release();
    }
    MediaOutDecoratorImpl::characterSet(name);
}

FilterUTF8MediaOut::FilterUTF8MediaOut() : MediaOutDecorator(new FilterUTF8MediaOutImpl, false)
{}

FilterUTF8MediaOut::FilterUTF8MediaOut(MediaOut const& downstream)
    : MediaOutDecorator(new FilterUTF8MediaOutImpl(downstream), false)
{}

} // namespace Velmara
