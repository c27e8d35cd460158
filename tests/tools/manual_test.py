"""Manual pages and completions have the options of --help, and JSON has the documented shape."""

import json
import re
import shutil
import subprocess
import unittest

from tool_case import COMMANDS, PROJECT, TAVU, Case, read, run

COMPLETION = f"{PROJECT}/tools/completion"


def page(command):
    name = f"tavu-{command}.1" if command else "tavu.1"
    return read(f"{PROJECT}/docs/man/{name}").decode()


def help_text(command):
    return run(*command.split(), "--help").stdout


def options(command):
    """The options in --help; -o and --output are two."""
    rows = re.findall(r"^  (-\S+)", help_text(command), re.M)
    return {option for row in rows for option in row.split(",")}


def choices(command):
    """(option, names) of the options that take one of several names."""
    rows = re.findall(r"(--to|--cs) (\w+(?:\|\w+)+)", help_text(command))
    return [(option, names.split("|")) for option, names in rows]


def keys(text):
    """The keys of all objects in a JSON text, in order of first appearance."""
    return list(dict.fromkeys(re.findall(r'"(\w+)":', text)))


class Manual(Case):
    def test_pages_have_the_options(self):
        for command in "", *COMMANDS:
            items = re.findall(r"^\.It (Fl .*)", page(command), re.M)
            flags = [flag for item in items for flag in re.findall(r"Fl (\S+)", item)]
            self.assertEqual({"-" + flag for flag in flags}, options(command), command)
            self.assertEqual(len(flags), len(set(flags)), command)
        for command in COMMANDS:
            self.assertIn(f".Xr tavu-{command} 1 .", page(""))

    def test_json_is_as_documented(self):
        for command, args in COMMANDS.items():
            found = self.json(command, *args, cwd=self.directory)
            if command == "convert":
                found = [found, self.json("convert", "--list")]
            blocks = re.findall(r"^\.Bd(.*?)^\.Ed", page(command), re.M | re.S)
            self.assertEqual(keys(json.dumps(found)), keys("".join(blocks)), command)


class Completion(Case):
    def shell(self, *command):
        return subprocess.check_output(command, stderr=subprocess.STDOUT, text=True).splitlines()

    def bash(self, *words):
        words = " ".join(f"'{word}'" for word in words)
        return self.shell("bash", "--norc", "-c", f"source '{COMPLETION}/tavu.bash'\n"
                          f"COMP_WORDS=('{TAVU}' {words}) COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1))\n"
                          "_tavu; for word in \"${COMPREPLY[@]}\"; do echo \"$word\"; done")

    @unittest.skipUnless(shutil.which("bash"), "needs bash")
    def test_bash(self):
        self.assertEqual(set(self.bash("")), {*COMMANDS, *options("")})
        for command in COMMANDS:
            self.assertEqual(set(self.bash(command, "-")), options(command))
            for option, names in choices(command):
                self.assertEqual(self.bash(command, option, ""), names)
        self.assertEqual(self.bash("sheet", "--every", ""), ["key"])
        self.assertEqual(self.bash("convert", "--o"), ["--one-pass"])
        self.assertEqual(self.bash("bench", ""), self.ok("bench", "--list").split())
        self.written("two words.mp4", b"")
        self.written("two.mp4", b"")
        self.assertEqual(set(self.bash("probe", self.path("tw"))),
                         {self.path("two words.mp4"), self.path("two.mp4")})

    def zsh(self, command):
        """The arguments that the completion passes to zsh's functions, printed by stubs."""
        program = f"""
            _arguments() {{
                print -l -- "$@"
                [[ $1 == -C ]] || return 0
                line=({command}) state=${{${{:-{command}}}:+argument}}; state=${{state:-command}}
                return 1
            }}
            _describe() {{ print -l -- "${{(@P)2}}" }}
            words=(tavu {command}); source '{COMPLETION}/_tavu'"""
        return self.shell("zsh", "-f", "-c", program)

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_zsh(self):
        offered = lambda rows: set(re.findall(r"^(?:\(.*?\))?(--?[a-z-]+)\[", "\n".join(rows), re.M))
        commands = self.zsh("")
        self.assertEqual(offered(commands), options(""))
        self.assertEqual([row.split(":")[0] for row in commands[-len(COMMANDS):]], list(COMMANDS))
        for command in COMMANDS:
            rows = self.zsh(command)
            self.assertEqual(offered(rows), options(command) | options(""), command)
            for option, names in choices(command):
                entry = next(row for row in rows if row.startswith(option))
                self.assertEqual(entry.split("(")[1].rstrip(")").split(), names)
