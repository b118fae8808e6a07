#include "support/FailingMedia.h"

#include <velmara/Exception.h>

namespace Velmara {

namespace {

/// No base: nothing in the library can know it.
struct Foreign {};

constexpr char const* _message = "the medium failed";

/// Behind any medium: the operation is counted and goes on.
class FailingMediumImpl : public MediaInImpl {
public:
    FailingMediumImpl(MediaIn const& medium, Countdown& countdown) : m_medium(medium), m_countdown(countdown) {}

    bool atEnd() const override { return counted().atEnd(); }
    int peek() const override { return counted().peek(); }
    void readline(Buffer& line) override { counted().readline(line); }
    int read(Buffer& block, uint_t n) override { return counted().read(block, n); }
    int read(Buffer& all) override { return counted().read(all); }
    int read(std::string& all) override { return counted().read(all); }
    int read(uchar_t* bytes, uint_t n) override { return counted().read(bytes, n); }
    unsigned long tell() const override { return counted().tell(); }
    void setpos(unsigned long position) override { counted().setpos(position); }
    void write(MediaOut& out) override { counted().write(out); }

private:
    MediaIn& counted() const
    {
        m_countdown.count();
        return m_medium;
    }

    mutable MediaIn m_medium;
    Countdown& m_countdown;
};

class FailingSinkImpl : public MediaOutImpl {
public:
    FailingSinkImpl(MediaOut const& sink, Countdown& countdown) : m_sink(sink), m_countdown(countdown) {}

    void write(Buffer const& bytes) override { counted().write(bytes); }
    void write(uchar_t const* bytes, uint_t n) override { counted().write(bytes, n); }
    void end() override { counted().end(); }
    void characterSet(std::string const& name) override { counted().characterSet(name); }
    unsigned long tell() const override { return counted().tell(); }
    void setpos(unsigned long position) override { counted().setpos(position); }

private:
    MediaOut& counted() const
    {
        m_countdown.count();
        return m_sink;
    }

    mutable MediaOut m_sink;
    Countdown& m_countdown;
};

bool _isOurs(Exception const& failure)
{
    if (failure.message() == _message) return true;
    return failure.hasCause() && _isOurs(failure.cause());
}

} // namespace

void Countdown::count()
{
    if (left == 0 || --left > 0) return;
    thrown = true;
    if (ours) throw Exception(_message, 6, nullptr, 0);
    throw Foreign();
}

MediaIn failingMedium(MediaIn const& medium, Countdown& countdown)
{
    return MediaIn(new FailingMediumImpl(medium, countdown), false);
}

MediaOut failingSink(MediaOut const& sink, Countdown& countdown)
{
    return MediaOut(new FailingSinkImpl(sink, countdown), false);
}

bool isFromFailingMedia(std::exception_ptr const& thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (Foreign const&) {
        return true;
    } catch (Exception const& failure) {
        return _isOurs(failure);
    } catch (...) {
        return false;
    }
}

} // namespace Velmara
