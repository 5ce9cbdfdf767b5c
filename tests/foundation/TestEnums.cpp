/* The registered enumerations and their text forms. */

#include "TestSupport.h"

#include <algorithm>
#include <sstream>

#include "TavCalendarEnums.h"
#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavHelper.h"

/* Each type lists its values in order as suffixes of a common prefix; the
 * nick is the lower-case suffix. The order is the stored form: a value that
 * moved would change what saved entries mean. */
TEST (EnumTypes, NamesAndNicksAreRegisteredInOrder)
{
    struct { GType (*get_type) (); const char *type_name, *prefix, *suffixes; } cases[] = {
        { calendar_ui_error_code_get_type, "CalendarUiErrorCode", "Calendar",
          "UiMissingString UiInvalidDate UiZoomError DiskFullError DefaultError DuplicateError InvalidIcsComponent "
          "ImportIncomplete InvalidIcsFile AlreadyExists InvalidArg NoError" },
        { tav_calendar_color_get_type, "TavCalendarColor", "TavCalendarColor",
          "DarkBlue DarkGreen DarkRed Orange Violet Yellow White Blue Red Green" },
        { tav_calendar_alarm_code_get_type, "TavCalendarAlarmCode", "TavCalendarAlarm",
          "None 0Min 5Min 15Min 30Min 1Hour 3Hours DayBefore" },
        { tav_calendar_repeat_code_get_type, "TavCalendarRepeatCode", "TavCalendarRepeats",
          "NoRepeat EveryDay EveryWorkday EveryWeek EveryMonth EveryYear Complex" },
        { tav_calendar_source_type_get_type, "TavCalendarSourceType", "CalendarSourceType",
          "Local Smart Sync Private DefaultSync" },
        { tav_calendar_source_sync_type_get_type, "TavCalendarSourceSyncType", "CalendarSourceSync",
          "None TwoWay Published Subscribed" },
        { tav_date_format_get_type, "TavDateFormat", "TavDate",
          "LongFormat NormalFormat ShortFormat WeekNameFormat WeekNameShortFormat" },
        { calendar_reform_get_type, "CalendarReform", "CalendarReform", "Spain Britain Russia" },
    };
    for (const auto &c : cases) {
        SCOPED_TRACE (c.type_name);
        GType type = c.get_type ();
        EXPECT_STREQ (g_type_name (type), c.type_name);
        ASSERT_TRUE (G_TYPE_IS_ENUM (type));
        auto *klass = static_cast<GEnumClass *> (g_type_class_ref (type));
        std::istringstream suffixes (c.suffixes);
        guint i = 0;
        for (std::string suffix; suffixes >> suffix; i++) {
            GEnumValue *value = g_enum_get_value (klass, static_cast<int> (i));
            ASSERT_NE (value, nullptr) << i;
            EXPECT_EQ (value->value_name, c.prefix + suffix);
            std::transform (suffix.begin (), suffix.end (), suffix.begin (), g_ascii_tolower);
            EXPECT_EQ (value->value_nick, suffix);
        }
        EXPECT_EQ (klass->n_values, i);
        g_type_class_unref (klass);
    }
}

TEST (Colors, ToStringAndBack)
{
    const char *names[] = { "DarkBlue", "DarkGreen", "DarkRed", "Orange", "Violet", "Yellow", "White", "Blue", "Red", "Green" };
    for (int i = 0; i < 10; i++) {
        EXPECT_STREQ (tav_calendar_color_to_string ((TavCalendarColor) i), names[i]);
        EXPECT_EQ (tav_calendar_color_from_string (names[i]), i) << names[i];
    }
    for (int outside : { 10, -1 })
        EXPECT_EQ (tav_calendar_color_to_string ((TavCalendarColor) outside), nullptr);
    /* Case is ignored; anything else reads as red. */
    EXPECT_EQ (tav_calendar_color_from_string ("DARKBLUE"), TavCalendarColorDarkBlue);
    for (const char *other : { "purple", "", static_cast<const char *> (nullptr) })
        EXPECT_EQ (tav_calendar_color_from_string (other), TavCalendarColorRed);
}

/* Labels are English text, read back whatever their case; unknown text
 * reads as no alarm and no repeat. */
TEST (AlarmAndRepeat, LabelsAreEnglishAndReadBack)
{
    struct { const char *type; int count; const char *(*to_string) (int); int (*from_string) (const char *); } rows[] = {
        { "alarm", TavCalendarAlarmDayBefore + 1, [] (int c) { return tav_calendar_alarm_to_string ((TavCalendarAlarmCode) c); },
          [] (const char *s) { return (int) tav_calendar_alarm_code_from_string (s); } },
        { "repeat", TavCalendarRepeatsComplex + 1, [] (int c) { return tav_calendar_repeat_to_string ((TavCalendarRepeatCode) c); },
          [] (const char *s) { return (int) tav_calendar_repeat_code_from_string (s); } },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.type);
        for (int code = 0; code < row.count; code++) {
            const char *label = row.to_string (code);
            ASSERT_NE (label, nullptr) << code;
            EXPECT_NE (std::string (label).rfind ("cal_", 0), 0u) << label;
            tav::GCharPtr upper (g_ascii_strup (label, -1));
            EXPECT_EQ (row.from_string (label), code) << label;
            EXPECT_EQ (row.from_string (upper.get ()), code) << upper.get ();
        }
        EXPECT_EQ (row.to_string (row.count), nullptr);
        EXPECT_EQ (row.to_string (-1), nullptr);
        EXPECT_EQ (row.from_string ("at some point"), 0);
        EXPECT_EQ (row.from_string (nullptr), 0);
    }
}
