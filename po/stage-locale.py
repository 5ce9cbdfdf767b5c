#!/usr/bin/env python3
"""Copy compiled catalogues into LOCALEDIR/en/LC_MESSAGES for uninstalled runs."""
import os
import shutil
import sys

localedir, stamp, *mos = sys.argv[1:]
target = os.path.join(localedir, 'en', 'LC_MESSAGES')
os.makedirs(target, exist_ok=True)
for mo in mos:
    shutil.copyfile(mo, os.path.join(target, os.path.basename(mo)))
with open(stamp, 'w') as f:
    f.write('ok\n')
