"""Installs the library and uses it like its users: with find_package, pkg-config, add_subdirectory
and FetchContent, from C and C++, shared and static.

usage: install_test.py (--build FOLDER | --prefix FOLDER) --source FOLDER
                       [--toolchain FILE] [--cc COMMAND] [--cxx COMMAND] [--emulator COMMAND]
"""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

FLAGS_OF_THE_LIBRARY = re.compile(r"-fno-|-fvisibility|-fstack|-fcf|_FORTIFY|-march=x86|-W|-DTAVU")
RUN_TIME_OF_CPP = re.compile(r"libstdc\+\+|libgcc_s|libm\.so")


PARSER = argparse.ArgumentParser(usage=__doc__.split("usage: ", 1)[1])
for option in ("--build", "--prefix", "--source", "--toolchain"):
    PARSER.add_argument(option, type=lambda path: path and pathlib.Path(path).resolve())
for option, default in (("--cc", "cc"), ("--cxx", "c++"), ("--emulator", "")):
    PARSER.add_argument(option, type=lambda text: text.replace(";", " ").split(), default=default)
ARGUMENTS = PARSER.parse_args()
CONSUMER = pathlib.Path(__file__).parent.resolve() / "consumer"
FROM_SOURCES = (f"-DTAVU_SOURCE={ARGUMENTS.source}", "-DTAVU_SIMD=OFF", "-DCMAKE_BUILD_TYPE=Debug")


def run(*command, **environment):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          env=os.environ | environment, check=False)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def files(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir()}


class Installed(unittest.TestCase):
    """A test of the given prefix, or of a new one to which the build is installed."""

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.prefix = ARGUMENTS.prefix
        if not self.prefix:
            self.prefix = self.folder / "prefix"
            run("cmake", "--install", ARGUMENTS.build, "--prefix", self.prefix)
        self.library = next(self.prefix.rglob("libtavu.so.1"))

    def output(self, program, *arguments):
        return run(*ARGUMENTS.emulator, program, *arguments,
                   LD_LIBRARY_PATH=str(self.library.parent))

    def pkg_config(self, *arguments):
        return run("pkg-config", *arguments, "tavu",
                   PKG_CONFIG_LIBDIR=str(self.library.parent / "pkgconfig")).split()

    def check(self, program, expected, all_static=False):
        self.assertEqual(self.output(program), expected + "\n")
        needs = run("readelf", "-dW", program)
        if expected == "C":
            self.assertNotRegex(needs, RUN_TIME_OF_CPP)
        self.assertEqual(all_static or "static" in program.name, "libtavu" not in needs)


class PkgConfig(Installed):
    def test_shared_and_static_from_both_languages(self):
        for suffix, language, compiler, standard in (("c", "C", ARGUMENTS.cc, "c99"),
                                                     ("cpp", "C++", ARGUMENTS.cxx, "c++17")):
            for kind, how, linking in (("shared", [], []), ("static", ["--static"], ["-static"])):
                program = self.folder / f"{kind}_{suffix}"
                run(*compiler, f"-std={standard}", "-pedantic-errors", "-Wall", "-Werror",
                    CONSUMER / f"consumer.{suffix}", *self.pkg_config(*how, "--cflags", "--libs"),
                    *linking, "-o", program)
                self.check(program, language)


class CMake(Installed):
    def build_consumer(self, kind, *settings, all_static=False):
        build = self.folder / kind
        toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={ARGUMENTS.toolchain}"] if ARGUMENTS.toolchain else []
        run("cmake", "-S", CONSUMER, "-B", build, f"-DTAVU_FROM={kind}", *settings, *toolchain,
            "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "--no-warn-unused-cli")
        run("cmake", "--build", build, "--parallel", os.cpu_count())
        for program in ("shared_c", "static_c", "shared_cpp", "static_cpp"):
            self.check(build / program, "C++" if program.endswith("cpp") else "C", all_static)
        for unit in json.loads((build / "compile_commands.json").read_text()):
            if pathlib.Path(unit["file"]).parent == CONSUMER:
                self.assertNotRegex(unit["command"], FLAGS_OF_THE_LIBRARY)
        return build

    def find_package(self, prefix, request, **expected):
        folder = next(prefix.rglob("tavu-config.cmake")).parent
        self.build_consumer("package", f"-Dtavu_DIR={folder}", f"-DTAVU_REQUEST={request}", **expected)

    def check_refused(self, prefix, request, reason):
        with self.assertRaisesRegex(AssertionError, reason):
            self.find_package(prefix, request)

    def test_find_package(self):
        self.find_package(self.prefix, "1.0;COMPONENTS;shared;static")
        self.check_refused(self.prefix, "2.0", r"requested\s+version")
        self.check_refused(self.prefix, "1.0;COMPONENTS;dynamic", r"installed:\s+shared\s+static")

    @unittest.skipIf(ARGUMENTS.prefix, "tests only the installed files")
    def test_sources_in_the_consumers_own_build(self):
        for kind in ("subdirectory", "fetch"):
            build = self.build_consumer(kind, *FROM_SOURCES)
            run("cmake", "--install", build, "--prefix", self.folder / kind / "prefix")
            self.assertEqual(files(self.folder / kind / "prefix"), set())
            self.assertNotIn("BUILD_TESTING", (build / "CMakeCache.txt").read_text())

    @unittest.skipIf(ARGUMENTS.prefix, "the installed files alone count")
    def test_only_the_library_that_build_shared_libs_asks_for(self):
        both = {path.name for path in self.prefix.rglob("libtavu.[as]*")}
        for shared, installed, missing in (("OFF", {"libtavu.a"}, "shared"),
                                           ("ON", both - {"libtavu.a"}, "static")):
            prefix = self.folder / shared
            build = self.build_consumer("subdirectory", *FROM_SOURCES, "-DTAVU_INSTALL=ON",
                                        f"-DBUILD_SHARED_LIBS={shared}", all_static=shared == "OFF")
            run("cmake", "--install", build, "--prefix", prefix)
            self.assertEqual({path.name for path in prefix.rglob("libtavu.[as]*")}, installed)
            self.check_refused(prefix, f"1.0;COMPONENTS;{missing}", r"not\s+among")
        self.find_package(self.folder / "OFF", "1.0;COMPONENTS;static", all_static=True)


@unittest.skipIf(ARGUMENTS.prefix, "packages already are components")
class Components(Installed):
    def test_each_file_is_in_the_component_of_its_use(self):
        left = files(self.prefix)
        for component, pattern in (("Runtime", r"lib/libtavu\.so\.\d.*"),
                                   ("Tools", r"bin/tavu|share/(man/man1|bash-completion|zsh)/.*"),
                                   ("Development", r"include/.*|lib/.*|share/man/man3/.*")):
            run("cmake", "--install", ARGUMENTS.build, "--prefix", self.folder / component,
                "--component", component)
            held = files(self.folder / component)
            self.assertFalse([name for name in held if not re.fullmatch(pattern, name)])
            self.assertLessEqual(held, left)
            left -= held
        self.assertEqual(left, set())


class Plugin(Installed):
    """The archive in a shared object that is bound at load time or, lazily, at each first call."""

    # One routine of each file that is compiled for several levels. A plugin calls only one, because
    # the others link in tables of routines, which are bound at load time.
    CALLS = {
        "csc_resize": "tavu_csc_rsz_r8g8b8_to_rgb888(src, 8, 4, stride, 13, dst, 4, 2, stride, 400)",
        "csc_to_565": "tavu_csc_r8g8b8_to_rgb565(src, 8, 4, stride, 13, dst, 8, 4, stride, 300)",
        "csc_to_packed": "tavu_csc_r8g8b8_to_rgb888(src, 8, 4, stride, 13, dst, 8, 4, stride, 400)",
        "csc_to_yuv": "tavu_csc_r8g8b8_to_yuv444(src, 8, 4, stride, 13, dst, 8, 4, stride, 13)",
        "diff": "tavu_diff4x4(a, b, 32, 32, 4, residual)",
        "resize_kernels": "tavu_irsz8b_line(rows, tavu_irsz_tbl_rsz_weight, 4, 0, 1, 0, b)",
        "mset": "tavu_mset_x64(b, 1, 128)",
        "sad": "tavu_sad4x4(a, b, 32, 32)",
        "satd": "tavu_satd4x4(a, b, 32, 32)",
        "ssd": "tavu_ssd(4, 4, a, b, 32, 32)",
        "vkeyfrm": "tavu_is_vkeyfrm(TAVU_MT_VID_H264, a, 64)",
    }

    def build(self, name, command, *arguments):
        run(*command, f"-I{self.prefix}/include", *arguments, "-o", self.folder / name)
        return self.folder / name

    def test_every_kernel_file_with_lazy_and_immediate_binding(self):
        archive = next(self.prefix.rglob("libtavu.a"))
        indirect = re.findall(r":(\w+)\.cpp\.o:.* i ", run("nm", "-A", archive))
        self.assertIn(set(indirect), (set(self.CALLS), set()))
        host = self.build("host", ARGUMENTS.cc, CONSUMER / "host.c", "-ldl")
        for part in self.CALLS:
            with self.subTest(part):
                self.check_plugins(part, host, archive)

    def check_plugins(self, part, host, archive):
        for language, compiler, bound in (("c", ARGUMENTS.cc, "lazy"), ("c", ARGUMENTS.cc, "now"),
                                          ("c++", ARGUMENTS.cxx, "lazy")):
            plugin = self.build("libplugin.so", compiler, "-shared", "-fPIC",
                                f"-DCALL={self.CALLS[part]}", "-x", language,
                                CONSUMER / "plugin.c", "-x", "none", archive, f"-Wl,-z,{bound}")
            linked = self.build("linked", ARGUMENTS.cc, CONSUMER / "host.c", "-Wl,--no-as-needed",
                                plugin, "-ldl")
            for command in ([linked], [host, plugin, "lazy"], [host, plugin, "now"]):
                self.assertEqual(run(*ARGUMENTS.emulator, *command), "7\n", command)


class Version(Installed):
    def test_one_version_everywhere(self):
        source = lambda name: (ARGUMENTS.source / name).read_text()
        version = re.search(r"project\(tavu VERSION (\S+)", source("CMakeLists.txt"))[1]
        major = version.split(".", maxsplit=1)[0]
        self.assertTrue(source("debian/changelog").startswith(f"libtavu ({version}) "))
        self.assertEqual(re.search(r"^## (\S+)", source("CHANGELOG.md"), flags=re.M)[1], version)
        symbols = source(f"debian/libtavu{major}.symbols")
        self.assertIn(f"libtavu.so.{major} libtavu{major} ", symbols)
        header = (self.prefix / "include/tavu.h").read_text()
        macros = re.findall(r"^#define TAVU_VERSION_(\w+) (\d+)\b", header, flags=re.M)
        self.assertEqual(macros, list(zip(("MAJOR", "MINOR", "PATCH"), version.split("."))))
        self.assertEqual(self.library.resolve().name, f"libtavu.so.{version}")
        self.assertIn(f"soname: [libtavu.so.{major}]", run("readelf", "-dW", self.library))
        self.assertEqual(self.pkg_config("--modversion"), [version])
        if (self.prefix / "bin/tavu").exists():
            self.assertEqual(self.output(self.prefix / "bin/tavu", "--version").split()[1], version)


unittest.main(argv=sys.argv[:1])
