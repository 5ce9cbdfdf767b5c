#!/usr/bin/env python3
"""Counts test cases in meson's JUnit logs and prints "N passed, N failed".

Each GoogleTest program reports its own cases (meson's gtest protocol), so the
count is of cases, not programs. Usage: count-results.py JUNIT.xml...
Exits non-zero when anything failed or a log is missing.
"""
import re
import sys
import xml.etree.ElementTree as ET

# Test output may carry terminal colour codes, which XML does not allow.
CONTROL = re.compile(rb'[\x00-\x08\x0b\x0c\x0e-\x1f]')

passed = failed = skipped = 0
ok = True
for path in sys.argv[1:]:
    try:
        with open(path, 'rb') as f:
            root = ET.fromstring(CONTROL.sub(b'', f.read()))
    except (OSError, ET.ParseError) as e:
        print("cannot read %s: %s" % (path, e), file=sys.stderr)
        ok = False
        continue
    for case in root.iter('testcase'):
        if case.find('failure') is not None or case.find('error') is not None:
            failed += 1
        elif case.find('skipped') is not None:
            skipped += 1
        else:
            passed += 1
line = "%d passed, %d failed" % (passed, failed)
if skipped:
    line += ", %d skipped" % skipped
print(line)
sys.exit(0 if ok and not failed and passed else 1)
