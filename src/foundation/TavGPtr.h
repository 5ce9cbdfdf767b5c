/* libcalendarui - RAII holders for GObject references and GLib allocations
 *
 * GRefPtr<T> owns one reference of a GObject (or of any type with a
 * tav::RefTraits specialisation); copying refs, destruction unrefs.
 * GUniquePtr<T> is a std::unique_ptr with the GLib deleter of T.
 */
#ifndef TAV_GPTR_H
#define TAV_GPTR_H

#include <memory>
#include <utility>

#include <glib-object.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <pango/pango.h>

namespace tav {

template <typename T>
struct RefTraits {
    static T *ref(T *p) { return static_cast<T *>(g_object_ref(p)); }
    static void unref(T *p) { g_object_unref(p); }
};

template <typename T>
class GRefPtr {
public:
    GRefPtr() noexcept = default;
    GRefPtr(std::nullptr_t) noexcept {}
    /* Takes a new reference of @p. */
    explicit GRefPtr(T *p) : m_ptr(p ? RefTraits<T>::ref(p) : nullptr) {}
    GRefPtr(const GRefPtr &o) : GRefPtr(o.m_ptr) {}
    GRefPtr(GRefPtr &&o) noexcept : m_ptr(std::exchange(o.m_ptr, nullptr)) {}
    ~GRefPtr() { reset(); }

    GRefPtr &operator=(const GRefPtr &o)
    {
        GRefPtr tmp(o);
        swap(tmp);
        return *this;
    }
    GRefPtr &operator=(GRefPtr &&o) noexcept
    {
        GRefPtr tmp(std::move(o));
        swap(tmp);
        return *this;
    }
    GRefPtr &operator=(std::nullptr_t)
    {
        reset();
        return *this;
    }

    /* Adopts a reference the caller already owns (a "transfer full" result). */
    static GRefPtr adopt(T *p) noexcept
    {
        GRefPtr r;
        r.m_ptr = p;
        return r;
    }

    void reset()
    {
        if (T *p = std::exchange(m_ptr, nullptr))
            RefTraits<T>::unref(p);
    }
    /* Gives the owned reference to the caller. */
    T *release() noexcept { return std::exchange(m_ptr, nullptr); }
    void swap(GRefPtr &o) noexcept { std::swap(m_ptr, o.m_ptr); }

    T *get() const noexcept { return m_ptr; }
    T *operator->() const noexcept { return m_ptr; }
    explicit operator bool() const noexcept { return m_ptr != nullptr; }
    bool operator==(const GRefPtr &o) const noexcept { return m_ptr == o.m_ptr; }
    bool operator!=(const GRefPtr &o) const noexcept { return m_ptr != o.m_ptr; }

private:
    T *m_ptr = nullptr;
};

template <typename T>
GRefPtr<T> adoptGRef(T *p) { return GRefPtr<T>::adopt(p); }

/* Deleters for plain GLib allocations. */
template <typename T>
struct GDeleter {
    void operator()(T *p) const { g_free(p); }
};
#define TAV_DEFINE_GDELETER(Type, fn) \
    template <> struct GDeleter<Type> { void operator()(Type *p) const { if (p) fn(p); } }
TAV_DEFINE_GDELETER(GError, g_error_free);
TAV_DEFINE_GDELETER(GList, g_list_free);
TAV_DEFINE_GDELETER(GSList, g_slist_free);
TAV_DEFINE_GDELETER(GPtrArray, g_ptr_array_unref);
TAV_DEFINE_GDELETER(GHashTable, g_hash_table_unref);
TAV_DEFINE_GDELETER(GString, [](GString *s) { g_string_free(s, TRUE); });
TAV_DEFINE_GDELETER(GKeyFile, g_key_file_free);
TAV_DEFINE_GDELETER(PangoFontDescription, pango_font_description_free);
TAV_DEFINE_GDELETER(GValueArray, g_value_array_free);
TAV_DEFINE_GDELETER(char *, g_strfreev);

template <typename T>
using GUniquePtr = std::unique_ptr<T, GDeleter<T>>;

/* A g_malloc'ed string. */
using GCharPtr = std::unique_ptr<char, GDeleter<char>>;

} // namespace tav

#endif /* TAV_GPTR_H */
