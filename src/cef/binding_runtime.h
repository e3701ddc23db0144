#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "include/cef_base.h"

// What the generated code stands on.  One reference-counting scheme, that of the engine's C interface:
//  - an object passed to the other side, or returned to it, carries one reference that the receiver gives back;
//  - the object a function is called on (self) carries none.
// Binding<X>::give makes such a reference, Binding<X>::take receives it; nothing else counts across the border.
// Any thread may give, take and count.

namespace cef_binding {

extern std::atomic<int> liveClientObjects;
extern std::atomic<int> liveEngineObjects;

/// Specialised by the generator for each class: C (the structure), take and give.
template <class Cpp>
struct Binding;

template <class C>
cef_base_ref_counted_t* baseOf(C* object) {
    return reinterpret_cast<cef_base_ref_counted_t*>(object);
}

/// An object of the engine, seen by the library.  Owns one reference to the C object.
template <class Cpp, class C>
class EngineObject : public Cpp {
public:
    explicit EngineObject(C* self) : self_(self) { ++liveEngineObjects; }
    EngineObject(const EngineObject&) = delete;
    EngineObject& operator=(const EngineObject&) = delete;

    void AddRef() const override { count_.AddRef(); }
    bool Release() const override {
        if (!count_.Release()) return false;
        delete this;
        return true;
    }
    bool HasOneRef() const override { return count_.HasOneRef(); }
    bool HasAtLeastOneRef() const override { return count_.HasAtLeastOneRef(); }

    C* self() const { return self_; }

protected:
    ~EngineObject() override {
        baseOf(self_)->release(baseOf(self_));
        --liveEngineObjects;
    }

private:
    C* const self_;
    CefRefCount count_;
};

/// Null for null, and for an object that did not come from the engine (a stand-in of a test).
template <class Cpp, class C>
C* giveEngineObject(const CefRefPtr<Cpp>& object) {
    auto* wrapper = dynamic_cast<EngineObject<Cpp, C>*>(object.get());
    if (!wrapper) return nullptr;
    baseOf(wrapper->self())->add_ref(baseOf(wrapper->self()));
    return wrapper->self();
}

/// An object of the library, seen by the engine: the C structure with its own count, and one reference to the object.
template <class Cpp, class C>
struct ClientObject {
    C c;  // first: the engine's pointer is this object's address
    CefRefPtr<Cpp> object;
    std::atomic<int> count{1};

    ClientObject(const C& functions, CefRefPtr<Cpp> target) : c(functions), object(std::move(target)) {
        c.base = {sizeof(C), &addRef, &release, &hasOneRef, &hasAtLeastOneRef};
        ++liveClientObjects;
    }
    ~ClientObject() { --liveClientObjects; }

    static ClientObject* of(void* c) { return static_cast<ClientObject*>(c); }

    static void addRef(cef_base_ref_counted_t* self) noexcept {
        of(self)->count.fetch_add(1, std::memory_order_relaxed);
    }
    static int32_t release(cef_base_ref_counted_t* self) noexcept {
        if (of(self)->count.fetch_sub(1, std::memory_order_acq_rel) != 1) return 0;
        delete of(self);
        return 1;
    }
    static int32_t hasOneRef(cef_base_ref_counted_t* self) noexcept { return of(self)->count.load() == 1; }
    static int32_t hasAtLeastOneRef(cef_base_ref_counted_t* self) noexcept { return of(self)->count.load() >= 1; }
};

/// The original object behind a structure that the engine hands back.
template <class Cpp, class C>
CefRefPtr<Cpp> takeClientObject(C* c) {
    if (!c) return nullptr;
    CefRefPtr<Cpp> object;
    if (c->base.add_ref == &ClientObject<Cpp, C>::addRef) object = ClientObject<Cpp, C>::of(c)->object;
    c->base.release(&c->base);
    return object;
}

// Strings and their containers.

inline cef_string_t* in(const CefString& text) { return const_cast<cef_string_t*>(text.GetStruct()); }
/// Takes over a string that the engine made for the caller.
CefString takeString(cef_string_userfree_t text);

/// A C list, map or multimap of strings that lives for one call.
template <class Container, class C>
class StringContainer {
public:
    explicit StringContainer(const Container& from);
    ~StringContainer();
    StringContainer(const StringContainer&) = delete;
    StringContainer& operator=(const StringContainer&) = delete;
    C* get() const { return c_; }
    void copyTo(Container& to) const;

private:
    C* const c_;
};
typedef std::vector<CefString> StringVector;
typedef std::map<CefString, CefString> StringMap;
typedef std::multimap<CefString, CefString> StringMultimap;
typedef StringContainer<StringVector, cef_string_list_t> StringList;
typedef StringContainer<StringMap, cef_string_map_t> CStringMap;
typedef StringContainer<StringMultimap, cef_string_multimap_t> CStringMultimap;

void copyStrings(cef_string_list_t* from, StringVector& to);
void copyStrings(cef_string_map_t* from, StringMap& to);
void copyStrings(cef_string_multimap_t* from, StringMultimap& to);

// Lists of objects.

template <class Cpp, class C>
std::vector<CefRefPtr<Cpp>> takeAll(uint64_t count, C* const* objects) {
    std::vector<CefRefPtr<Cpp>> result(objects ? count : 0);
    for (size_t i = 0; i < result.size(); ++i) result[i] = Binding<Cpp>::take(objects[i]);
    return result;
}
template <class Cpp, class C>
std::vector<C*> giveAll(const std::vector<CefRefPtr<Cpp>>& objects) {
    std::vector<C*> result;
    result.reserve(objects.size());
    for (const auto& object : objects) result.push_back(Binding<Cpp>::give(object));
    return result;
}

}  // namespace cef_binding
