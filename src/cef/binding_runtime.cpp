#include "binding_runtime.h"

#include "binding_functions.h"

namespace cef_binding {

std::atomic<int> liveClientObjects{0};
std::atomic<int> liveEngineObjects{0};

CefString takeString(cef_string_userfree_t text) {
    CefString result;
    result.AttachToUserFree(text);
    return result;
}

// The engine's containers exist only with the engine: without it they are null, and every step does nothing.

template <>
StringList::StringContainer(const StringVector& from)
    : c_(engine.cef_string_list_alloc ? engine.cef_string_list_alloc() : nullptr) {
    if (!c_) return;
    for (const auto& text : from) engine.cef_string_list_append(c_, in(text));
}
template <>
StringList::~StringContainer() {
    if (c_) engine.cef_string_list_free(c_);
}
template <>
void StringList::copyTo(StringVector& to) const {
    copyStrings(c_, to);
}

template <>
CStringMap::StringContainer(const StringMap& from)
    : c_(engine.cef_string_map_alloc ? engine.cef_string_map_alloc() : nullptr) {
    if (!c_) return;
    for (const auto& [key, value] : from) engine.cef_string_map_append(c_, in(key), in(value));
}
template <>
CStringMap::~StringContainer() {
    if (c_) engine.cef_string_map_free(c_);
}
template <>
void CStringMap::copyTo(StringMap& to) const {
    copyStrings(c_, to);
}

template <>
CStringMultimap::StringContainer(const StringMultimap& from)
    : c_(engine.cef_string_multimap_alloc ? engine.cef_string_multimap_alloc() : nullptr) {
    if (!c_) return;
    for (const auto& [key, value] : from) engine.cef_string_multimap_append(c_, in(key), in(value));
}
template <>
CStringMultimap::~StringContainer() {
    if (c_) engine.cef_string_multimap_free(c_);
}
template <>
void CStringMultimap::copyTo(StringMultimap& to) const {
    copyStrings(c_, to);
}

void copyStrings(cef_string_list_t* from, StringVector& to) {
    to.clear();
    if (!from || !engine.cef_string_list_size) return;
    to.resize(engine.cef_string_list_size(from));
    for (size_t i = 0; i < to.size(); ++i) engine.cef_string_list_value(from, i, to[i].GetWritableStruct());
}

void copyStrings(cef_string_map_t* from, StringMap& to) {
    to.clear();
    if (!from || !engine.cef_string_map_size) return;
    const size_t count = engine.cef_string_map_size(from);
    for (size_t i = 0; i < count; ++i) {
        CefString key, value;
        engine.cef_string_map_key(from, i, key.GetWritableStruct());
        engine.cef_string_map_value(from, i, value.GetWritableStruct());
        to.emplace(std::move(key), std::move(value));
    }
}

void copyStrings(cef_string_multimap_t* from, StringMultimap& to) {
    to.clear();
    if (!from || !engine.cef_string_multimap_size) return;
    const size_t count = engine.cef_string_multimap_size(from);
    for (size_t i = 0; i < count; ++i) {
        CefString key, value;
        engine.cef_string_multimap_key(from, i, key.GetWritableStruct());
        engine.cef_string_multimap_value(from, i, value.GetWritableStruct());
        to.emplace(std::move(key), std::move(value));
    }
}

}  // namespace cef_binding
