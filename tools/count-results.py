#!/usr/bin/env python3
"""Counts test cases in meson's JUnit log and prints "N passed, N failed".

Each GoogleTest program reports its own cases (meson's gtest protocol), so the
count is of cases, not programs. Exits non-zero when anything failed.
"""
import sys
import xml.etree.ElementTree as ET

root = ET.parse(sys.argv[1]).getroot()
passed = failed = skipped = 0
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
sys.exit(1 if failed else 0)
