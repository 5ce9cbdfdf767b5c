#!/usr/bin/env python3
"""Install the generated colour icons under the icon root (honours DESTDIR)."""
import os
import shutil
import sys

source, target = sys.argv[1], sys.argv[2]
destdir = os.environ.get('DESTDIR', '')
if destdir:
    target = destdir + target
for sub in ('16x16/kivo', '48x48/kivo', '64x64/kivo', 'scalable/kivo'):
    os.makedirs(os.path.join(target, sub), exist_ok=True)
    for name in os.listdir(os.path.join(source, sub)):
        shutil.copyfile(os.path.join(source, sub, name), os.path.join(target, sub, name))
