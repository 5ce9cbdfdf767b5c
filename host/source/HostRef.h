/* A reference-holding pointer for the GObjects the host creates. */
#ifndef TAV_HOST_REF_H
#define TAV_HOST_REF_H

#include <glib-object.h>

#include <utility>

namespace tav::host {

template <typename T>
class Ref {
public:
    Ref () = default;
    /* Takes over a reference the caller owns (a fresh object). */
    static Ref adopt (T *object)
    {
        Ref r;
        r.m_ptr = object;
        return r;
    }
    /* Adds a reference of its own. */
    static Ref take (T *object)
    {
        if (object) {
            g_object_ref (object);
        }
        return adopt (object);
    }
    Ref (const Ref &other) : m_ptr (other.m_ptr)
    {
        if (m_ptr) {
            g_object_ref (m_ptr);
        }
    }
    Ref (Ref &&other) noexcept : m_ptr (std::exchange (other.m_ptr, nullptr)) {}
    Ref &operator= (Ref other)
    {
        std::swap (m_ptr, other.m_ptr);
        return *this;
    }
    ~Ref ()
    {
        if (m_ptr) {
            g_object_unref (m_ptr);
        }
    }
    T *get () const { return m_ptr; }
    T *operator-> () const { return m_ptr; }
    explicit operator bool () const { return m_ptr != nullptr; }

private:
    T *m_ptr = nullptr;
};

}  // namespace tav::host

#endif
