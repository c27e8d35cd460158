"""The table of kernels has the symbols of the library; kernels without a row would not be tested."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

# Two static libraries, and the files of kernels with vector forms.
NM, LIBRARY, TABLE, *SOURCES = sys.argv[1:]
FILES = {Path(source).stem for source in SOURCES}


def symbols(archive):
    """(file, kind, name) of the symbols that begin with tavu_."""
    names = subprocess.check_output([NM, "-A", archive], text=True)
    return re.findall(r"(\w+)\.cpp\.o:.* (\w) (tavu_\w+)$", names, flags=re.M)


class KernelTable(unittest.TestCase):
    def setUp(self):
        self.library = symbols(LIBRARY)
        # The table refers to every kernel, and weakly to every level.
        self.table = [(kind, name) for file, kind, name in symbols(TABLE) if file == "variants"]
        self.rows = {name for kind, name in self.table if kind == "U"}

    def test_every_kernel_has_a_row(self):
        exported = {name for file, kind, name in self.library
                    if file in FILES and kind in "Ti" and not re.search(r"_(v\d|resolve)$", name)}
        scalar = {name for file, kind, name in self.library if file not in FILES and kind == "T"}
        self.assertTrue(exported)
        self.assertEqual(self.rows - scalar, exported)

    def test_every_level_is_referred_to(self):
        levels = {name for _, _, name in self.library if re.search(r"_v\d$", name)}
        self.assertEqual({name[:-3] for name in levels},
                         {name for _, kind, name in self.library if kind == "i"})
        self.assertLessEqual(levels, {name for _, name in self.table})


unittest.main(argv=sys.argv[:1])
