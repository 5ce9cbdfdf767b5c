#!/usr/bin/env python3
"""The shared library exports the public C names and nothing internal.

Usage: check-exports.py LIBRARY
Fails when a dynamic symbol looks internal (private layout code, the touch
platform layer, the log internals, C++ names) or when the public foundation
names are missing.
"""
import subprocess
import sys

lib = sys.argv[1]
out = subprocess.run(['nm', '-D', '--defined-only', lib], check=True,
                     capture_output=True, text=True).stdout
symbols = {line.split()[-1] for line in out.splitlines() if line.strip()}

internal_prefixes = ('calendar_cell_', 'calendar_entry_', 'week_entry_', 'agenda_entry_',
                     'day_entry_', 'kivo_', 'Kivo', 'tav_log_', 'tav_intl_', 'tav_dgettext',
                     'tav_dngettext', 'tav_theme_dir', 'tav_icon_dir', '_Z',
                     'calendar_cclosure_marshal')
bad = sorted(s for s in symbols if s.startswith(internal_prefixes))
required = ['tav_calendar_get_error_string', 'tav_boolean_handled_accumulator',
            'tav_create_pixbuf', 'tav_calendar_color_get_type', 'calendar_ui_error_code_get_type',
            'loggingPath', 'gdk_rectangle_has_point', 'tav_calendar_color_create_pixbuf']
missing = [s for s in required if s not in symbols]

for s in bad:
    print('internal symbol exported: %s' % s)
for s in missing:
    print('public symbol missing: %s' % s)
print('%d exported symbols checked' % len(symbols))
sys.exit(1 if bad or missing else 0)
