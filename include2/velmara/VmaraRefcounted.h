#pragma once

#include <atomic>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <velmara/Exception.h>
#include <velmara/Export.h>

/// The handle scheme. Nearly every public class is a thin handle on a shared, counted object:
///
///     Ref<T>  --owns-->  RefCounted<T>  --points at-->  T (a RefImpl, which holds the count)
///
/// Each handle owns a holder of its own; the count lives in the shared object. The last holder to go
/// destroys the object on its thread. Objects may be shared between threads through separate
/// handles; one handle belongs to one thread at a time.
namespace Velmara {

/// Base of everything that is counted. A new object has a count of 1 and so already belongs to its
/// first holder. A copy is a new object with a count of its own.
class VELMARA_EXPORT RefImpl {
public:
    RefImpl() : count(1) {}
    /// A copy belongs to its own first holder, and an assignment leaves the count alone.
    RefImpl(RefImpl const&) : count(1) {}
    RefImpl& operator=(RefImpl const&) { return *this; }
    virtual ~RefImpl();

    std::atomic<std::int32_t> count; // holders that point here
};

/// Counts one more holder of `object`, which must not be null.
inline void addReference(RefImpl& object)
{
    object.count.fetch_add(1, std::memory_order_relaxed);
}

/// One holder: what a handle owns.
template <class T> class VELMARA_EXPORT RefCounted {
public:
    /// With `addRef` false the holder adopts the count of a new object, and null is accepted. With
    /// `addRef` true the count grows by one; null throws Exception (code 4, line 0).
    RefCounted(T* p, bool addRef) : ptr(p)
    {
        if (!addRef) return;
        if (!p) throw Exception("RefCounted constructor for RefImpl failed.", 4, nullptr, 0);
        addReference(*p);
    }
    RefCounted(RefCounted const&) = delete;
    RefCounted& operator=(RefCounted const&) = delete;
    virtual ~RefCounted()
    {
        RefImpl* object = ptr;
        // A count of 1 is our own: nobody else can change it any more.
        if (object && (object->count.load(std::memory_order_acquire) == 1 ||
                       object->count.fetch_sub(1, std::memory_order_acq_rel) == 1))
            delete object;
    }
    /// Same object, or both null.
    virtual bool operator==(RefCounted const& other) const { return ptr == other.ptr; }

    T* ptr; // may be null
};

/// A new holder. A new object (`addRef` false) that finds no memory for its holder goes at once: nobody else
/// knows of it.
template <class T> RefCounted<T>* newRefCounted(T* p, bool addRef)
{
    RefCounted<T> adopted(p, addRef);
    auto* holder = new RefCounted<T>(p, false);
    adopted.ptr = nullptr;
    return holder;
}

/// Makes `target` hold what `source` holds: the one routine behind the assignment of handles. Unlike
/// the copy constructors of the plain handle classes it accepts a source that holds null. The old
/// object goes last, since `source` may be a handle inside it, as in `node = node->next`.
template <class T> void RefCountedImplCopy(RefCounted<T>*& target,
                                           std::common_type_t<RefCounted<T> const*> source) // nullptr will do as well
{
    if (target == source) return;
    RefCounted<T>* old = target;
    target = source ? new RefCounted<T>(source->ptr, source->ptr != nullptr) : nullptr;
    delete old;
}

/// The generic handle.
template <class T> class VELMARA_EXPORT Ref {
public:
    /// A null handle.
    Ref() : holder(nullptr) {}
    /// New objects are wrapped with `addRef` false; see RefCounted.
    Ref(T* p, bool addRef) : holder(newRefCounted(p, addRef)) {}
    Ref(Ref const& other) : holder(nullptr) { RefCountedImplCopy(holder, other.holder); }
    Ref& operator=(Ref const& other)
    {
        RefCountedImplCopy(holder, other.holder);
        return *this;
    }
    /// Takes over the holder: what is moved from is a null handle.
    Ref(Ref&& other) noexcept : holder(std::exchange(other.holder, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept
    {
        if (this != &other) delete std::exchange(holder, std::exchange(other.holder, nullptr));
        return *this;
    }
    virtual ~Ref() { delete holder; }

    /// Leaves a null handle, which can be assigned again.
    void release()
    {
        RefCounted<T>* old = holder;
        holder = nullptr;
        delete old;
    }

    /// True without a holder and with a holder of null.
    bool isNull() const { return !get(); }
    /// The object, null for a null handle. Never throws.
    T* get() const { return holder ? holder->ptr : nullptr; }

    /// Without a holder these throw Exception (code 1). A holder of null gives null and throws
    /// nothing: code that may meet one tests the result. A handle is like a pointer: that it is const
    /// says nothing of the object.
    T* operator->()
    {
        if (!holder) throw Exception("operator->", 1, "VmaraRefcounted", __LINE__);
        return holder->ptr;
    }
    T* operator->() const
    {
        if (!holder) throw Exception("operator->", 1, "VmaraRefcounted", __LINE__);
        return holder->ptr;
    }
    T* operator*()
    {
        if (!holder) throw Exception("operator*", 1, "VmaraRefcounted", __LINE__);
        return holder->ptr;
    }
    T* operator*() const
    {
        if (!holder) throw Exception("operator*", 1, "VmaraRefcounted", __LINE__);
        return holder->ptr;
    }

    RefCounted<T>* holder; // owned, never shared by two handles; null means a null handle
};

/// Forbids copying.
class VELMARA_EXPORT NonCopyable {
public:
    NonCopyable() = default;
    NonCopyable(NonCopyable const&) = delete;
    NonCopyable& operator=(NonCopyable const&) = delete;
};

} // namespace Velmara
