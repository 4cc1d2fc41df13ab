"""Which file the package loads as its library, and that nothing else becomes it."""

import ctypes
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

ROOT = pathlib.Path(__file__).resolve().parents[3]
PACKAGE = ROOT / "bindings" / "python"
sys.path.insert(0, str(PACKAGE))

from norv_battery import _library

OWN_FOLDER, SYSTEM32 = 0x100, 0x800  # LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR, LOAD_LIBRARY_SEARCH_SYSTEM32
DLL = "norv-battery-info.dll"
PACKAGE_ON_WINDOWS = r"C:\Python\Lib\site-packages\norv_battery"


def on_windows(named):
    return _library.candidates("win32", named, PACKAGE_ON_WINDOWS, None)


def on_linux(named, architecture="x86_64-linux-gnu"):
    return _library.candidates("linux", named, "/opt/python/norv_battery", architecture)


class WindowsTest(unittest.TestCase):
    def test_the_file_is_beside_the_package_or_in_system32(self):
        for named in (None, ""):
            self.assertEqual(on_windows(named), [(PACKAGE_ON_WINDOWS + "\\" + DLL, OWN_FOLDER | SYSTEM32), (DLL, SYSTEM32)])

    def test_a_named_file_is_the_only_one(self):
        for named in (r"C:\Norv\norv-battery-info.dll", "C:/Norv/norv-battery-info.dll"):
            self.assertEqual(on_windows(named), [(r"C:\Norv\norv-battery-info.dll", OWN_FOLDER | SYSTEM32)])

    def test_a_relative_name_is_refused(self):
        for named in (DLL, "." + "\\" + DLL, "Norv/" + DLL, "\\Norv\\" + DLL, "C:" + DLL, "/usr/lib/" + DLL):
            with self.assertRaisesRegex(OSError, "NORV_BATTERY_LIBRARY names .* by its absolute path, not by"):
                on_windows(named)

    def test_ctypes_is_told_where_to_search(self):
        with mock.patch.object(_library.sys, "platform", "win32"), \
                mock.patch.object(_library.ctypes, "CDLL", side_effect=OSError("not there")) as load, \
                mock.patch.dict(os.environ):
            os.environ.pop("NORV_BATTERY_LIBRARY", None)
            with self.assertRaisesRegex(OSError, "could not be loaded.*\n  not there\n  not there"):
                _library._load()
        self.assertEqual([call.kwargs for call in load.call_args_list], [{"winmode": OWN_FOLDER | SYSTEM32}, {"winmode": SYSTEM32}])
        self.assertEqual(load.call_args_list[-1].args, (DLL,))

    @unittest.skipUnless(sys.platform == "win32", "only there does winmode say anything")
    def test_winmode_is_windows_own(self):
        self.assertEqual(ctypes.CDLL("kernel32.dll", winmode=SYSTEM32)._name, "kernel32.dll")


class LinuxTest(unittest.TestCase):
    def test_the_file_is_beside_the_package_or_in_the_systems_folders(self):
        self.assertEqual([name for name, _ in on_linux(None)], [
            "/opt/python/norv_battery/libnorv-battery-info.so",
            "/usr/local/lib/x86_64-linux-gnu/libnorv-battery-info.so.0",
            "/usr/local/lib64/libnorv-battery-info.so.0",
            "/usr/local/lib/libnorv-battery-info.so.0",
            "/usr/lib/x86_64-linux-gnu/libnorv-battery-info.so.0",
            "/usr/lib64/libnorv-battery-info.so.0",
            "/usr/lib/libnorv-battery-info.so.0",
        ])
        self.assertEqual(len(on_linux("", None)), 5)

    def test_a_named_file_is_the_only_one(self):
        self.assertEqual(on_linux("/opt/norv/lib.so"), [("/opt/norv/lib.so", None)])

    def test_a_relative_name_is_refused(self):
        for named in ("libnorv-battery-info.so", "./lib.so", "lib/lib.so", "C:\\Norv\\" + DLL):
            with self.assertRaisesRegex(OSError, "NORV_BATTERY_LIBRARY names .* by its absolute path, not by"):
                on_linux(named)

    def test_the_name_is_that_of_the_librarys_version(self):
        major = re.search(r"project\(norv-battery-info VERSION (\d+)\.", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
        self.assertTrue(on_linux(None)[-1].name.endswith(".so." + major))


@unittest.skipIf(sys.platform == "win32", "the decoys are of Linux")
class DecoyTest(unittest.TestCase):
    """Loads the package where everything that must not be searched holds a library, or a program, that would do."""

    FILES = ("libnorv-battery-info.so", "libnorv-battery-info.so.0", DLL)
    PROGRAMS = ("gcc", "cc", "ld", "ldconfig", "objdump")

    def setUp(self):
        owner = tempfile.TemporaryDirectory()
        self.addCleanup(owner.cleanup)
        self.decoys = pathlib.Path(owner.name)
        for file in self.FILES:
            shutil.copy(os.environ["NORV_BATTERY_LIBRARY"], self.decoys / file)
        for program in self.PROGRAMS:
            path = self.decoys / program
            path.write_text(f"#!/bin/sh\ntouch '{self.decoys}/ran'\n", encoding="ascii")
            path.chmod(0o755)

    def load(self, package=PACKAGE, **environment):
        """What is loaded from the decoys' folder, as the process itself sees it, and what it says."""
        program = f"""
import sys; sys.path.insert(0, {str(package)!r})
try:
    import norv_battery; norv_battery.interface_version()
except OSError as failure:
    print(failure, file=sys.stderr)
print([line.split()[-1] for line in open("/proc/self/maps") if "libnorv" in line or ".dll" in line])
"""
        inherited = {name: value for name, value in os.environ.items() if name != "NORV_BATTERY_LIBRARY"}
        done = subprocess.run([sys.executable, "-B", "-I", "-c", program], cwd=self.decoys, capture_output=True, check=True,
                              text=True, env={**inherited, **environment}, timeout=60)
        return done.stdout, done.stderr

    def test_neither_the_path_nor_the_folder_nor_the_loaders_variables_are_searched(self):
        here = str(self.decoys)
        for variables in ({"PATH": here}, {"LD_LIBRARY_PATH": here}, {"LD_LIBRARY_PATH": ":"}, {"PATH": f"{here}:"},
                          {"LIBRARY_PATH": here}, {"PATH": here, "LD_LIBRARY_PATH": f"{here}::."}):
            with self.subTest(variables):
                loaded, said = self.load(**variables)
                self.assertNotIn(here, loaded)
                self.assertTrue(loaded != "[]\n" or "could not be loaded" in said)
                self.assertFalse((self.decoys / "ran").exists())

    def test_a_relative_name_loads_nothing(self):
        loaded, said = self.load(NORV_BATTERY_LIBRARY="libnorv-battery-info.so", LD_LIBRARY_PATH=str(self.decoys))
        self.assertEqual(loaded, "[]\n")
        self.assertIn("by its absolute path, not by 'libnorv-battery-info.so'", said)

    def test_the_named_file_is_loaded(self):
        named = str(self.decoys / self.FILES[0])
        loaded, said = self.load(NORV_BATTERY_LIBRARY=named)
        self.assertIn(named, loaded)
        self.assertEqual(said, "")

    def test_the_file_beside_the_package_is_loaded(self):
        package = self.decoys / "package"
        shutil.copytree(PACKAGE / "norv_battery", package / "norv_battery")
        beside = shutil.copy(self.decoys / self.FILES[0], package / "norv_battery")
        loaded, said = self.load(package, LD_LIBRARY_PATH=str(self.decoys))
        self.assertIn(str(beside), loaded)
        self.assertNotIn(str(self.decoys / self.FILES[0]), loaded)
        self.assertEqual(said, "")


if __name__ == "__main__":
    unittest.main()
