#include "charset/IcuConverter.h"

#include <utility>

namespace Velmara {

namespace {

// Trivial, so that it can still be asked when a thread's other data are gone: converters may live
// in static objects.
thread_local bool s_poolIsGone = false;

/// The converters that wait on this thread.
class _Pool : private NonCopyable {
public:
    ~_Pool()
    {
        s_poolIsGone = true;
        for (Slot& slot : m_slots) ucnv_close(slot.converter);
    }

    UConverter* take(std::string const& name)
    {
        for (Slot& slot : m_slots)
            if (slot.converter && slot.name == name) return std::exchange(slot.converter, nullptr);
        return nullptr;
    }

    void put(UConverter* converter, std::string& name)
    {
        Slot& slot = free();
        ucnv_close(slot.converter);
        slot.converter = converter;
        slot.name.swap(name);
    }

private:
    struct Slot {
        UConverter* converter = nullptr; // owned
        std::string name;
    };
    static constexpr unsigned int count = 8;

    /// An empty slot, else each in turn.
    Slot& free()
    {
        for (Slot& slot : m_slots)
            if (!slot.converter) return slot;
        return m_slots[m_turn++ % count];
    }

    Slot m_slots[count];
    unsigned int m_turn = 0;
};

_Pool& _pool()
{
    thread_local _Pool pool;
    return pool;
}

/// The state of a new converter. The callbacks go first: ucnv_reset calls them.
void _renew(UConverter* converter)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_SUBSTITUTE, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_SUBSTITUTE, nullptr, nullptr, nullptr, &status);
    ucnv_setFallback(converter, false);
    ucnv_reset(converter);
}

} // namespace

bool IcuConverter::open(std::string const& name)
{
    close();
    m_converter = s_poolIsGone ? nullptr : _pool().take(name);
    if (!m_converter) {
        UErrorCode status = U_ZERO_ERROR;
        m_converter = ucnv_open(name.c_str(), &status);
    }
    if (m_converter) m_name = name;
    return m_converter;
}

void IcuConverter::close()
{
    UConverter* converter = std::exchange(m_converter, nullptr);
    if (!converter) return;
    if (s_poolIsGone) {
        ucnv_close(converter);
        return;
    }
    _renew(converter);
    _pool().put(converter, m_name);
}

} // namespace Velmara
