"""The public API and the shared library's ELF: exported names, dependencies, hardening."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

# The flags are those of the compiler and, after them, "hardened" if the library is built so.
LIBRARY, HEADER, OBJDUMP, *FLAGS = sys.argv[1:]
SANITIZED = any("-fsanitize" in flag for flag in FLAGS)
HARDENED = "hardened" in FLAGS
WRITABLE = {"tavu_irsz_tbl_rsz_weight"}
# A full barrier, the store, a full barrier; on ARM followed by an event.
WAKE_UP = {"x86": r"(mfence|lock).* movl?\s+%\w+,\s*\(%\w+\).*(mfence|lock)",
           "arm": r"\bdmb\b.*\bstr\b.*\bdsb\b.*\bsev\b"}
# A library must not print or end the process.
FORBIDDEN = re.compile(r"^(abort|exit|_exit|puts|putchar|printf|fprintf|vfprintf|fwrite|write)$")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def symbols(*flags):
    """(kind, name) of the dynamic symbols, without versions."""
    rows = (line.split() for line in run("nm", "-D", *flags, LIBRARY).splitlines())
    return [(row[-2], row[-1].split("@")[0]) for row in rows]


class PublicApi(unittest.TestCase):
    def test_exported_names_are_those_of_the_header(self):
        text = re.sub(r"/\*.*?\*/|^#.*?$", "", Path(HEADER).read_text(encoding="utf-8"),
                      flags=re.S | re.M)
        declared = {re.search(r"(\w+)\s*(\(|\[|$)", declaration).group(1)
                    for declaration in re.findall(r"TAVU_API\s([^;]*);", text)}
        self.assertGreater(len(declared), 80)
        exported = {name for kind, name in symbols("--defined-only") if kind != "A"}
        self.assertEqual(exported, declared)

    def test_only_promised_data_is_writable(self):
        # .rodata is read-only, and loaders write-protect .data.rel.ro after relocation.
        rows = re.findall(r"DO (\S+)\s.* (\w+)$", run(OBJDUMP, "-T", LIBRARY), flags=re.M)
        self.assertLess({".rodata"}, {section for section, _ in rows})
        protected = "*ABS*", "*UND*", ".rodata", ".data.rel.ro"
        self.assertEqual({name for section, name in rows if not section.startswith(protected)},
                         WRITABLE)

    @unittest.skipIf(SANITIZED, "sanitizers replace barriers and stores")
    def test_wake_up_stores_between_barriers(self):
        machine = re.search(r"Machine:.*(86|ARM|AArch64)", run("readelf", "-hW", LIBRARY))
        if machine is None:
            self.skipTest("no pattern for this processor")
        functions = run(OBJDUMP, "-d", "--no-show-raw-insn", LIBRARY).split("\n\n")
        # Unless optimised, the exported function calls an internal one.
        code = "".join(f for f in functions if re.match(r"\w+ <.*(sync_wake|store_and_send)", f))
        self.assertRegex(code.replace("\t", " ").replace("\n", " "),
                         WAKE_UP["x86" if machine.group(1) == "86" else "arm"])

    @unittest.skipIf(SANITIZED, "sanitizers add dependencies")
    def test_depends_only_on_the_c_library(self):
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "-dW", LIBRARY))
        # The loader is part of the C library.
        self.assertEqual({name for name in needed if not name.startswith("ld-")}, {"libc.so.6"})
        self.assertFalse([name for _, name in symbols("--undefined-only") if FORBIDDEN.match(name)])

    def test_dynamic_section_and_segments(self):
        text = run("readelf", "-dlW", LIBRARY)
        for pattern in (r"Library soname: \[libtavu\.so\.1\]", r"\(FLAGS(_1)?\).*NOW", "GNU_RELRO",
                        r"GNU_STACK.* RW "):
            self.assertRegex(text, pattern)
        self.assertNotIn("TEXTREL", text)

    @unittest.skipUnless(HARDENED, "built without hardening")
    def test_stack_and_buffers_are_checked(self):
        self.assertLessEqual({"__stack_chk_fail", "__snprintf_chk"},
                             {name for _, name in symbols("--undefined-only")})


unittest.main(argv=sys.argv[:1])
