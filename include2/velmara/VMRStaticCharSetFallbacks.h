#pragma once

#include <list>
#include <string>

#include <velmara/Mutex.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// An ordered list of character sets to try on text that declares none. The order decides between
/// sets that both accept a text, so strict sets (UTF-8) belong at the front and those that accept
/// everything (ISO-8859-1) at the end. A list may be read from any thread once it is complete.
class VELMARA_EXPORT VMRStaticCharSetFallbacks : virtual public RefImpl {
public:
    ~VMRStaticCharSetFallbacks() override;
    /// In the order in which they are tried.
    virtual std::list<std::string> const& charsets() const = 0;
};

template <class Key> class VMRStaticCharSetFallbacksImpl;

/// The list made from the numbers by which configuration names character sets; see
/// VmaraConv::getFallbackCharMap. It holds each name once, in the order of first addition.
template <> class VELMARA_EXPORT VMRStaticCharSetFallbacksImpl<int> : public VMRStaticCharSetFallbacks {
public:
    /// A list with one name; an unknown number gives an empty list.
    explicit VMRStaticCharSetFallbacksImpl(int const& number);
    ~VMRStaticCharSetFallbacksImpl() override;

    /// Nothing happens for an unknown number, or for a name that is already there.
    void add(int const& number);
    std::list<std::string> const& charsets() const override;

private:
    std::list<std::string> m_charsets;
};

/// Handle on such a list, and the place of the list that the whole process shares.
class VELMARA_EXPORT RefVMRStaticCharSetFallbacks : public Ref<VMRStaticCharSetFallbacks> {
public:
    using Ref::Ref;

    /// A handle on the shared list; null until one is installed. Safe from any thread: who holds a
    /// handle keeps its list, whatever is installed meanwhile.
    static RefVMRStaticCharSetFallbacks instance();
    /// Installs `list` for the process and gives a handle on it. A new object is handed over with
    /// `addRef` false; null with false takes the shared list away, null with true throws Exception
    /// (code 4).
    static RefVMRStaticCharSetFallbacks instance(VMRStaticCharSetFallbacks* list, bool addRef);

    /// The shared list and its lock, for who has to look at it and change it in one go. instance() takes
    /// the lock itself, so it must not be called under it.
    static RefVMRStaticCharSetFallbacks s_fallbacks;
    static Mutex s_mutex;
};

} // namespace Velmara
