#include "FailingAllocators.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <unicode/uclean.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Velmara::Allocations {

namespace {

struct State {
    std::atomic<unsigned long> count{0}, at{0};
    std::atomic<bool> fromThenOn{false}, failed{false}, failedInXml{false};
    std::atomic<long> fromNew{0}, fromIcu{0}, fromXml{0};
};
State _state;

} // namespace

/// Not inlined: a debugger that stops here, with n set, stands at the allocation in question.
__attribute__((noinline)) void failing()
{
    _state.failed = true;
}

namespace {

bool _fails()
{
    unsigned long const number = ++_state.count, at = _state.at;
    if (at == 0 || (_state.fromThenOn ? number < at : number != at)) return false;
    failing();
    return true;
}

void* _allocate(std::atomic<long>& live, size_t size)
{
    void* const block = _fails() ? nullptr : std::malloc(size ? size : 1);
    if (block) ++live;
    return block;
}

void _free(std::atomic<long>& live, void* block)
{
    if (!block) return;
    --live;
    std::free(block);
}

void* _reallocate(std::atomic<long>& live, void* block, size_t size)
{
    if (!block) return _allocate(live, size);
    return _fails() ? nullptr : std::realloc(block, size ? size : 1);
}

void* _xmlMalloc(size_t size)
{
    void* const block = _allocate(_state.fromXml, size);
    if (!block) _state.failedInXml = true;
    return block;
}

void* _xmlRealloc(void* block, size_t size)
{
    block = _reallocate(_state.fromXml, block, size);
    if (!block) _state.failedInXml = true;
    return block;
}

void _xmlFree(void* block)
{
    _free(_state.fromXml, block);
}

char* _xmlStrdup(char const* text)
{
    size_t const size = std::strlen(text) + 1;
    void* const copy = _xmlMalloc(size);
    return copy ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

/// Neither library may have allocated anything before.
struct Installed {
    Installed()
    {
        UErrorCode status = U_ZERO_ERROR;
        u_setMemoryFunctions(
            nullptr, [](void const*, size_t size) { return _allocate(_state.fromIcu, size); },
            [](void const*, void* block, size_t size) { return _reallocate(_state.fromIcu, block, size); },
            [](void const*, void* block) { _free(_state.fromIcu, block); }, &status);
        if (U_FAILURE(status) || xmlMemSetup(_xmlFree, _xmlMalloc, _xmlRealloc, _xmlStrdup) != 0) std::abort();
        xmlInitParser();
    }
} const _installed;

} // namespace

void arm(unsigned long n, Mode mode)
{
    _state.count = 0;
    _state.failed = _state.failedInXml = false;
    _state.fromThenOn = mode == Mode::FromThenOn;
    _state.at = n;
}

unsigned long disarm()
{
    _state.at = 0;
    return _state.count;
}

bool hasFailed()
{
    return _state.failed;
}

bool hasFailedInXml()
{
    return _state.failedInXml;
}

Live live()
{
    xmlResetLastError(); // libxml2 keeps the words of the last complaint of each thread
    return Live{_state.fromNew, _state.fromIcu, _state.fromXml};
}

std::string Live::asString() const
{
    return std::to_string(fromNew) + " of new, " + std::to_string(fromIcu) + " of ICU, " + std::to_string(fromXml) +
           " of libxml2";
}

} // namespace Velmara::Allocations

// All forms but the aligned ones, which the library does not use: sanitizers have their own of each.

namespace {

void* _new(size_t size)
{
    if (void* block = Velmara::Allocations::_allocate(Velmara::Allocations::_state.fromNew, size)) return block;
    throw std::bad_alloc();
}

void* _newOrNull(size_t size)
{
    return Velmara::Allocations::_allocate(Velmara::Allocations::_state.fromNew, size);
}

void _delete(void* block)
{
    Velmara::Allocations::_free(Velmara::Allocations::_state.fromNew, block);
}

} // namespace

// clang-format off
void* operator new(size_t size) { return _new(size); }
void* operator new[](size_t size) { return _new(size); }
void* operator new(size_t size, std::nothrow_t const&) noexcept { return _newOrNull(size); }
void* operator new[](size_t size, std::nothrow_t const&) noexcept { return _newOrNull(size); }
void operator delete(void* block) noexcept { _delete(block); }
void operator delete[](void* block) noexcept { _delete(block); }
void operator delete(void* block, size_t) noexcept { _delete(block); }
void operator delete[](void* block, size_t) noexcept { _delete(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { _delete(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { _delete(block); }
// clang-format on
