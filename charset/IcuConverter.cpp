#include "charset/IcuConverter.h"

#include <new>
#include <utility>

#include <unicode/uclean.h>

namespace Velmara {

namespace {

using Opened = IcuConverter::Opened;

/// The converters that wait on one thread. Trivial, so that it can still be asked when a thread's other
/// data are gone: converters may live in static objects.
struct _Waiting {
    static constexpr unsigned int count = 8;

    Opened* slots[count]; // owned, null where empty
    unsigned int turn;    // counts what had to make room
    bool isKept;          // somebody empties the slots when the thread ends
    bool isGone;          // that has happened
};

thread_local _Waiting s_waiting;

struct _Keeper {
    ~_Keeper()
    {
        s_waiting.isGone = true;
        for (Opened*& slot : s_waiting.slots) delete std::exchange(slot, nullptr);
    }
    void keep() const { s_waiting.isKept = true; }
};

void _keep()
{
    static thread_local _Keeper const keeper;
    keeper.keep();
}

Opened* _take(std::string const& name)
{
    for (Opened*& slot : s_waiting.slots)
        if (slot && slot->name == name) return std::exchange(slot, nullptr);
    return nullptr;
}

/// An empty slot, else each in turn.
Opened*& _slotToFill(_Waiting& waiting)
{
    for (Opened*& slot : waiting.slots)
        if (!slot) return slot;
    return waiting.slots[waiting.turn++ % _Waiting::count];
}

void _put(std::unique_ptr<Opened> opened)
{
    _Waiting& waiting = s_waiting;
    if (waiting.isGone) return;
    if (!waiting.isKept) _keep();
    Opened*& slot = _slotToFill(waiting);
    delete std::exchange(slot, opened.release());
}

/// If memory is missing when ICU reads its names of character sets, it remembers that for good: every later
/// converter would fail. So it reads them while the process starts.
[[maybe_unused]] bool const s_icuIsSetUp = [] {
    UErrorCode status = U_ZERO_ERROR;
    u_init(&status);
    return U_SUCCESS(status);
}();

/// The state of a new converter. The callbacks go first: ucnv_reset and ucnv_close call them.
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
    m_opened.reset(_take(name));
    if (m_opened) return true;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(name.c_str(), &status), ucnv_close);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc(); // the name may well be known
    if (!converter) return false;
    m_opened = std::make_unique<Opened>(std::move(converter), name);
    return true;
}

void IcuConverter::close()
{
    if (!m_opened) return;
    _renew(m_opened->converter.get());
    _put(std::move(m_opened));
}

} // namespace Velmara
