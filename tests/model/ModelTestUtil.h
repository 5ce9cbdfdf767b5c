/* Small helpers shared by the model tests. */
#ifndef TAV_MODEL_TEST_UTIL_H
#define TAV_MODEL_TEST_UTIL_H

#include <calendarui.h>
#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>

#include "TavGPtr.h"
#include "TestSupport.h"

namespace tav::test {

inline TavDate date (int year, int month, int day) { return TavDate { year, month, day }; }
inline TavTime hm (int hour, int minute) { return TavTime { hour, minute }; }
inline TavTimestamp at (int year, int month, int day, int hour, int minute)
{
    return TavTimestamp { { year, month, day }, { hour, minute } };
}
inline TavDateInterval days (TavDate start, TavDate end) { return TavDateInterval { start, end }; }

inline std::string to_text (const TavDate &d)
{
    return tav::GCharPtr (g_strdup_printf ("%04d-%02d-%02d", d.year, d.month + 1, d.day)).get ();
}
inline std::string to_text (const TavTime &t)
{
    return tav::GCharPtr (g_strdup_printf ("%02d:%02d", t.hour, t.minute)).get ();
}
inline std::string to_text (const TavTimestamp &ts) { return to_text (ts.date) + " " + to_text (ts.time); }

/* Reads an int, enum or boolean property. */
inline int get_int (gpointer object, const char *name)
{
    int v = 0;
    g_object_get (object, name, &v, nullptr);
    return v;
}
inline gboolean get_bool (gpointer object, const char *name) { return get_int (object, name); }

inline std::string get_string (gpointer object, const char *name)
{
    char *v = nullptr;
    g_object_get (object, name, &v, nullptr);
    tav::GCharPtr hold (v);
    return v ? v : "(null)";
}

/* Reads a boxed date, time or timestamp property as text ("(null)" when unset). */
inline std::string get_text (gpointer object, const char *name)
{
    GValue value = G_VALUE_INIT;
    g_value_init (&value, g_object_class_find_property (G_OBJECT_GET_CLASS (object), name)->value_type);
    g_object_get_property (G_OBJECT (object), name, &value);
    gpointer p = g_value_get_boxed (&value);
    std::string out = !p ? "(null)"
        : G_VALUE_HOLDS (&value, TAV_TYPE_DATE) ? to_text (*static_cast<TavDate *> (p))
        : G_VALUE_HOLDS (&value, TAV_TYPE_TIME) ? to_text (*static_cast<TavTime *> (p))
        : to_text (*static_cast<TavTimestamp *> (p));
    g_value_unset (&value);
    return out;
}

/* One installed property: its id, texts, type, writability and, for
 * integers, booleans and enums, range and default. */
struct PropertyRow {
    const char *name;
    guint id;
    const char *nick;
    const char *blurb;
    GType type;
    bool writable;
    int min = 0, max = 0, def = 0;
};

/* Checks that @type installs exactly @rows. */
inline void expect_properties (GType type, std::initializer_list<PropertyRow> rows)
{
    auto *klass = static_cast<GObjectClass *> (g_type_class_ref (type));
    guint n = 0;
    g_free (g_object_class_list_properties (klass, &n));
    EXPECT_EQ (n, rows.size ());
    for (const auto &row : rows) {
        SCOPED_TRACE (row.name);
        GParamSpec *p = g_object_class_find_property (klass, row.name);
        ASSERT_NE (p, nullptr);
        EXPECT_EQ (p->param_id, row.id);
        EXPECT_STREQ (g_param_spec_get_nick (p), row.nick);
        EXPECT_STREQ (g_param_spec_get_blurb (p), row.blurb);
        EXPECT_EQ (p->value_type, row.type);
        EXPECT_TRUE (p->flags & G_PARAM_READABLE);
        EXPECT_EQ (bool (p->flags & G_PARAM_WRITABLE), row.writable);
        if (row.type == G_TYPE_INT) {
            EXPECT_EQ (G_PARAM_SPEC_INT (p)->minimum, row.min);
            EXPECT_EQ (G_PARAM_SPEC_INT (p)->maximum, row.max);
            EXPECT_EQ (G_PARAM_SPEC_INT (p)->default_value, row.def);
        } else if (row.type == G_TYPE_BOOLEAN) {
            EXPECT_EQ (G_PARAM_SPEC_BOOLEAN (p)->default_value, row.def);
        } else if (G_TYPE_IS_ENUM (row.type)) {
            EXPECT_EQ (G_PARAM_SPEC_ENUM (p)->default_value, row.def);
        } else if (row.type == G_TYPE_STRING) {
            EXPECT_EQ (G_PARAM_SPEC_STRING (p)->default_value, nullptr);
        }
    }
    g_type_class_unref (klass);
}

/* A call with a bad argument, TRUE when it gave the neutral result, and the
 * failed check its critical names. */
struct CriticalRow {
    const char *label;
    std::function<bool ()> call;
    const char *condition;
};

/* Each call logs exactly one line: the critical naming its condition. */
/* A critical names the bare function, as a C library's do: "tav_foo: ...",
 * never a C++ signature ("int tav_foo(TavFoo*): ..."). */
inline void expect_bare_function_name (const std::string &critical)
{
    size_t colon = critical.find (": assertion '");
    ASSERT_NE (colon, std::string::npos) << critical;
    EXPECT_EQ (critical.find_first_not_of ("abcdefghijklmnopqrstuvwxyz0123456789_"), colon) << critical;
}

inline void expect_criticals (std::initializer_list<CriticalRow> rows)
{
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        LogCapture capture;
        EXPECT_TRUE (row.call ());
        EXPECT_CRITICAL (capture, row.condition);
        ASSERT_EQ (capture.lines ().size (), 1u) << capture.dump ();
        expect_bare_function_name (capture.lines ()[0].message);
    }
}

} // namespace tav::test

#endif
