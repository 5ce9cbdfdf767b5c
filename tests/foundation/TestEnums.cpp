/* The registered enumerations and their text forms. */

#include "TestSupport.h"

#include <vector>

#include "TavCalendarEnums.h"
#include "TavEnumTypes.h"
#include "TavHelper.h"

using tav::test::LogCapture;

namespace {

struct EnumCase {
    GType (*get_type) ();
    const char *type_name;
    std::vector<std::pair<const char *, const char *>> values; /* name, nick, by value */
};

} // namespace

TEST (EnumTypes, NamesAndNicksAreRegistered)
{
    const EnumCase cases[] = {
        { calendar_ui_error_code_get_type, "CalendarUiErrorCode",
          { { "CalendarUiMissingString", "uimissingstring" }, { "CalendarUiInvalidDate", "uiinvaliddate" },
            { "CalendarUiZoomError", "uizoomerror" }, { "CalendarDiskFullError", "diskfullerror" },
            { "CalendarDefaultError", "defaulterror" }, { "CalendarDuplicateError", "duplicateerror" },
            { "CalendarInvalidIcsComponent", "invalidicscomponent" },
            { "CalendarImportIncomplete", "importincomplete" }, { "CalendarInvalidIcsFile", "invalidicsfile" },
            { "CalendarAlreadyExists", "alreadyexists" }, { "CalendarInvalidArg", "invalidarg" },
            { "CalendarNoError", "noerror" } } },
        { tav_calendar_color_get_type, "TavCalendarColor",
          { { "TavCalendarColorDarkBlue", "darkblue" }, { "TavCalendarColorDarkGreen", "darkgreen" },
            { "TavCalendarColorDarkRed", "darkred" }, { "TavCalendarColorOrange", "orange" },
            { "TavCalendarColorViolet", "violet" }, { "TavCalendarColorYellow", "yellow" },
            { "TavCalendarColorWhite", "white" }, { "TavCalendarColorBlue", "blue" },
            { "TavCalendarColorRed", "red" }, { "TavCalendarColorGreen", "green" } } },
        { tav_calendar_alarm_code_get_type, "TavCalendarAlarmCode",
          { { "TavCalendarAlarmNone", "none" }, { "TavCalendarAlarm0Min", "0min" },
            { "TavCalendarAlarm5Min", "5min" }, { "TavCalendarAlarm15Min", "15min" },
            { "TavCalendarAlarm30Min", "30min" }, { "TavCalendarAlarm1Hour", "1hour" },
            { "TavCalendarAlarm3Hours", "3hours" }, { "TavCalendarAlarmDayBefore", "daybefore" } } },
        { tav_calendar_repeat_code_get_type, "TavCalendarRepeatCode",
          { { "TavCalendarRepeatsNoRepeat", "norepeat" }, { "TavCalendarRepeatsEveryDay", "everyday" },
            { "TavCalendarRepeatsEveryWorkday", "everyworkday" }, { "TavCalendarRepeatsEveryWeek", "everyweek" },
            { "TavCalendarRepeatsEveryMonth", "everymonth" }, { "TavCalendarRepeatsEveryYear", "everyyear" },
            { "TavCalendarRepeatsComplex", "complex" } } },
        { tav_calendar_source_type_get_type, "TavCalendarSourceType",
          { { "CalendarSourceTypeLocal", "local" }, { "CalendarSourceTypeSmart", "smart" },
            { "CalendarSourceTypeSync", "sync" }, { "CalendarSourceTypePrivate", "private" },
            { "CalendarSourceTypeDefaultSync", "defaultsync" } } },
        { tav_calendar_source_sync_type_get_type, "TavCalendarSourceSyncType",
          { { "CalendarSourceSyncNone", "none" }, { "CalendarSourceSyncTwoWay", "twoway" },
            { "CalendarSourceSyncPublished", "published" }, { "CalendarSourceSyncSubscribed", "subscribed" } } },
        { tav_date_format_get_type, "TavDateFormat",
          { { "TavDateLongFormat", "longformat" }, { "TavDateNormalFormat", "normalformat" },
            { "TavDateShortFormat", "shortformat" }, { "TavDateWeekNameFormat", "weeknameformat" },
            { "TavDateWeekNameShortFormat", "weeknameshortformat" } } },
        { calendar_reform_get_type, "CalendarReform",
          { { "CalendarReformSpain", "spain" }, { "CalendarReformBritain", "britain" },
            { "CalendarReformRussia", "russia" } } },
    };
    for (const auto &c : cases) {
        GType type = c.get_type ();
        EXPECT_STREQ (g_type_name (type), c.type_name);
        EXPECT_TRUE (G_TYPE_IS_ENUM (type));
        auto *klass = static_cast<GEnumClass *> (g_type_class_ref (type));
        EXPECT_EQ (klass->n_values, c.values.size ()) << c.type_name;
        for (size_t i = 0; i < c.values.size (); i++) {
            GEnumValue *value = g_enum_get_value (klass, (int) i);
            ASSERT_NE (value, nullptr) << c.type_name << " " << i;
            EXPECT_STREQ (value->value_name, c.values[i].first);
            EXPECT_STREQ (value->value_nick, c.values[i].second);
        }
        g_type_class_unref (klass);
    }
}

TEST (Colors, ToStringAndBack)
{
    const char *names[] = { "DarkBlue", "DarkGreen", "DarkRed", "Orange", "Violet",
                            "Yellow", "White", "Blue", "Red", "Green" };
    for (int i = 0; i < 10; i++) {
        EXPECT_STREQ (tav_calendar_color_to_string ((TavCalendarColor) i), names[i]);
        EXPECT_EQ (tav_calendar_color_from_string (names[i]), i) << names[i];
    }
    EXPECT_EQ (tav_calendar_color_to_string ((TavCalendarColor) 10), nullptr);
    EXPECT_EQ (tav_calendar_color_to_string ((TavCalendarColor) -1), nullptr);
    EXPECT_EQ (tav_calendar_color_from_string ("DARKBLUE"), TavCalendarColorDarkBlue);
    EXPECT_EQ (tav_calendar_color_from_string ("orange"), TavCalendarColorOrange);
    EXPECT_EQ (tav_calendar_color_from_string ("purple"), TavCalendarColorRed);
    EXPECT_EQ (tav_calendar_color_from_string (""), TavCalendarColorRed);
    EXPECT_EQ (tav_calendar_color_from_string (nullptr), TavCalendarColorRed);
}

TEST (AlarmAndRepeat, LabelsAreEnglishAndReadBack)
{
    for (int code = 0; code <= TavCalendarAlarmDayBefore; code++) {
        const char *label = tav_calendar_alarm_to_string ((TavCalendarAlarmCode) code);
        ASSERT_NE (label, nullptr) << code;
        EXPECT_NE (std::string (label).rfind ("cal_", 0), 0u) << label;
        EXPECT_EQ (tav_calendar_alarm_code_from_string (label), code) << label;
        gchar *upper = g_ascii_strup (label, -1);
        EXPECT_EQ (tav_calendar_alarm_code_from_string (upper), code) << upper;
        g_free (upper);
    }
    for (int code = 0; code <= TavCalendarRepeatsComplex; code++) {
        const char *label = tav_calendar_repeat_to_string ((TavCalendarRepeatCode) code);
        ASSERT_NE (label, nullptr) << code;
        EXPECT_NE (std::string (label).rfind ("cal_", 0), 0u) << label;
        EXPECT_EQ (tav_calendar_repeat_code_from_string (label), code) << label;
    }
    EXPECT_EQ (tav_calendar_alarm_to_string ((TavCalendarAlarmCode) 8), nullptr);
    EXPECT_EQ (tav_calendar_repeat_to_string ((TavCalendarRepeatCode) 7), nullptr);
    EXPECT_EQ (tav_calendar_alarm_to_string ((TavCalendarAlarmCode) -1), nullptr);
    EXPECT_EQ (tav_calendar_alarm_code_from_string ("at some point"), TavCalendarAlarmNone);
    EXPECT_EQ (tav_calendar_repeat_code_from_string ("now and then"), TavCalendarRepeatsNoRepeat);
    EXPECT_EQ (tav_calendar_repeat_code_from_string (nullptr), TavCalendarRepeatsNoRepeat);
    /* The labels are distinct, so reading back is unambiguous. */
    EXPECT_STRNE (tav_calendar_alarm_to_string (TavCalendarAlarm1Hour),
                  tav_calendar_alarm_to_string (TavCalendarAlarm3Hours));
}
