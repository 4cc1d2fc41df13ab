#!/usr/bin/env python3
"""What the tool writes to: files made with --output, and standard streams that are missing or that nobody reads.

  output_test.py --tool PROGRAM [--sync-log LIBRARY]

LIBRARY, when it is preloaded, tells on standard error what is synced.
"""

import argparse
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = ""
SYNC_LOG = None
ENDINGS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT)
SLOW = {"description": "A machine whose battery test takes long", "slots": [None, None],
        "testProgram": {"version": "1.2.3.4", "status": 0, "runsMilliseconds": 60000}}


class OutputCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.target = self.path("target")

    def path(self, name):
        return pathlib.Path(self.folder.name, name)

    def names(self):
        return sorted(os.listdir(self.folder.name))

    def run_tool(self, *arguments, tool=None, **more):
        return subprocess.run([tool or TOOL, *map(str, arguments)], check=False, timeout=60,
                              **{"capture_output": True, **more})

    def write(self, *arguments, **more):
        """Writes a recording to the target, or to another --output."""
        return self.run_tool("record", "--machine", "two-batteries", "--output", *(arguments or [self.target]), **more)

    def assert_written(self, done, path=None):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
        self.assertIn("slots", json.loads((path or self.target).read_text(encoding="utf-8")))

    def assert_refused(self, done, *parts):
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        for part in parts:
            self.assertIn(part, done.stderr.decode())


class RightsTest(OutputCase):
    def tool_for_all(self):
        """How to run a copy of the tool that every user reaches, wherever it was built."""
        folder = self.path("bin")
        folder.mkdir()
        tool = shutil.copy(TOOL, folder)
        needed = subprocess.run(["ldd", TOOL], check=True, capture_output=True, text=True).stdout
        for library in re.findall(r"libnorv-battery-info\S* => (\S+)", needed):
            shutil.copy(library, folder)
        return {"tool": tool, "env": {**os.environ, "LD_LIBRARY_PATH": str(folder)}}

    def rights(self):
        return stat.S_IMODE(self.target.stat().st_mode)

    def test_a_new_file_is_the_users_alone(self):
        commands = (["record", "--machine", "two-batteries"], ["decode"], ["encode", "--machine", "two-batteries"])
        for command in commands:
            for mask in (0, 0o022, 0o777):
                self.run_tool(*command, "--output", self.target, input=b"00", umask=mask)
                self.assertEqual(oct(self.rights()), oct(0o600), (command, mask))
                self.target.unlink()

    def test_a_file_that_is_replaced_keeps_its_rights(self):
        for rights in (0o600, 0o640, 0o664, 0o400):
            self.target.write_text("before", encoding="ascii")
            self.target.chmod(rights)
            self.assert_written(self.write(umask=0o077))
            self.assertEqual(oct(self.rights()), oct(rights))

    @unittest.skipIf(os.geteuid() != 0, "nobody else can give files away")
    def test_a_file_that_is_replaced_keeps_its_owner(self):
        self.target.write_text("before", encoding="ascii")
        os.chown(self.target, 1234, 4321)
        self.target.chmod(0o640)
        self.assert_written(self.write())
        self.assertEqual((self.target.stat().st_uid, self.target.stat().st_gid, self.rights()), (1234, 4321, 0o640))

    @unittest.skipIf(os.geteuid() != 0, "nobody else can give files away")
    def test_a_group_that_the_file_cannot_go_to_leaves_its_rights_to_no_other_group(self):
        os.chmod(self.folder.name, 0o777)
        self.target.write_text("before", encoding="ascii")
        os.chown(self.target, 1234, 4321)
        self.target.chmod(0o664)
        self.assert_written(self.write(**self.tool_for_all(), user=2345, group=2345, extra_groups=[]))
        self.assertEqual((self.target.stat().st_uid, self.target.stat().st_gid, self.rights()), (2345, 2345, 0o604))


class TargetTest(OutputCase):
    def test_links_stay_and_what_they_lead_to_is_made(self):
        self.path("folder").mkdir()
        self.path("link").symlink_to("folder/second")
        self.path("folder/second").symlink_to("../target")
        for _ in range(2):  # the second time the file is there
            self.assert_written(self.write(self.path("link")))
            self.assertEqual(self.names(), ["folder", "link", "target"])
            self.assertTrue(self.path("folder/second").is_symlink())
            self.assertFalse(self.target.is_symlink())

    def test_a_link_in_a_circle_is_told(self):
        self.path("first").symlink_to("second")
        self.path("second").symlink_to("first")
        self.assert_refused(self.write(self.path("first")), "--output", "first", "Too many levels of symbolic links")
        self.assertEqual(self.names(), ["first", "second"])

    @unittest.skipIf(os.geteuid() != 0, "nobody else can be two users")
    def test_a_link_of_somebody_else_in_a_folder_for_all_is_not_followed(self):
        if pathlib.Path("/proc/sys/fs/protected_symlinks").read_text(encoding="ascii") == "0\n":
            self.skipTest("this system follows such links")
        os.chmod(self.folder.name, 0o1777)
        self.target.write_text("before", encoding="ascii")
        os.chown(self.target, 2345, 2345)
        self.path("link").symlink_to("target")
        self.path("dangling").symlink_to("missing")
        for name in ("link", "dangling"):
            os.lchown(self.path(name), 1234, 1234)
            done = self.write(self.path(name), user=2345, group=2345, extra_groups=[])
            self.assert_refused(done, name, "Permission denied")
        self.assertEqual((self.target.read_text(encoding="ascii"), len(self.names())), ("before", 3))

    def test_a_link_to_a_folder_that_is_not_there(self):
        self.path("link").symlink_to("missing/target")
        self.assert_refused(self.write(self.path("link")), "missing/target", "No such file or directory")

    def test_the_longest_name(self):
        longest = self.path("x" * 255)
        self.assert_written(self.write(longest), longest)
        self.assert_refused(self.write(self.path("x" * 256)), "File name too long")

    def test_no_name(self):
        self.assert_refused(self.write(""), "--output", "it has no name")

    def test_a_name_without_a_folder(self):
        self.assert_written(self.write("target", cwd=self.folder.name))

    def test_it_is_on_the_disk_before_it_has_its_name_and_so_is_the_name(self):
        if not SYNC_LOG:
            self.skipTest("a sanitizer cannot be together with it")
        for target, folder in ((self.target, None), ("target", self.folder.name)):
            done = self.write(target, env=dict(os.environ, LD_PRELOAD=SYNC_LOG), cwd=folder)
            self.assertEqual((done.returncode, done.stderr.decode().splitlines()),
                             (0, ["fsync file", "rename", "fsync folder"]))

    def test_a_folder_that_nobody_may_write_to(self):
        if os.geteuid() == 0:
            done = self.write("/proc/target")
        else:
            os.chmod(self.folder.name, 0o555)
            done = self.write()
        self.assert_refused(done, "target' cannot be written to: ")


class EndTest(OutputCase):
    """How a command that is ended leaves the folder of its output."""

    def start(self, *arguments, **more):
        command = subprocess.Popen([TOOL, *arguments, "--output", str(self.target)], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)
        for _ in range(2000):
            if any(name.endswith(".part") for name in self.names()):
                return command
            time.sleep(0.01)
        command.kill()
        self.fail(command.communicate())

    def end(self, command, number):
        command.send_signal(number)
        output, errors = command.communicate(timeout=60)
        self.assertEqual((command.returncode, output, errors), (-number, b"", b""))

    def test_signals_leave_nothing(self):
        machine = self.path("slow.json")
        machine.write_text(json.dumps(SLOW), encoding="utf-8")
        for arguments in (["decode"], ["encode"], ["record", "--test", "--machine", str(machine)]):
            for number in ENDINGS:
                with self.subTest(command=arguments[0], signal=number):
                    self.end(self.start(*arguments), number)
                    self.assertEqual(self.names(), ["slow.json"])

    def test_the_former_file_stays(self):
        self.target.write_text("before", encoding="ascii")
        self.end(self.start("decode"), signal.SIGTERM)
        self.assertEqual((self.names(), self.target.read_text(encoding="ascii")), (["target"], "before"))

    def test_a_signal_that_was_ignored_stays_ignored(self):
        command = self.start("decode", preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        command.send_signal(signal.SIGHUP)
        time.sleep(0.2)
        _, errors = command.communicate(b"00", timeout=60)
        self.assertEqual((command.returncode, errors), (1, b"0 good rows, 1 bad row\n"))
        self.assertEqual(self.names(), ["target"])

    def test_a_limit_of_size_is_an_error(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
        self.assert_refused(self.write(preexec_fn=limit), "target' cannot be written to: File too large")
        self.assertEqual(self.names(), [])

    def test_standard_error_that_nobody_reads(self):
        reading, writing = os.pipe()
        os.close(reading)
        done = self.write(self.target, "--redact", capture_output=False, stderr=writing,
                          preexec_fn=lambda: signal.signal(signal.SIGPIPE, signal.SIG_DFL))
        os.close(writing)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.names(), ["target"])


class MissingStreamTest(OutputCase):
    """A shell's <&- and >&-: the number of the stream is free for the next file."""

    def run_without(self, streams, *arguments):
        def close():
            for stream in streams:
                os.close(stream)
        return self.run_tool(*arguments, stdin=subprocess.DEVNULL, preexec_fn=close)

    def test_the_key_does_not_go_into_the_recording(self):
        for streams in ((2,), (1, 2), (0, 1, 2)):
            done = self.run_without(streams, "record", "--machine", "two-batteries", "--redact", "--output", self.target)
            self.assertEqual(done.returncode, 0)
            self.assertNotIn(b"key", self.target.read_bytes())
            json.loads(self.target.read_bytes())

    def test_every_command_writes_its_file_and_nothing_else_into_it(self):
        for command in (["decode", "/dev/null"], ["encode", "--machine", "two-batteries"],
                        ["record", "--machine", "no-battery"]):
            status = self.run_tool(*command, "--output", self.target).returncode
            expected = self.target.read_bytes()
            done = self.run_without((0, 1, 2), *command, "--output", self.target)
            self.assertEqual((done.returncode, self.target.read_bytes()), (status, expected))

    def test_output_that_goes_nowhere_is_an_error(self):
        for command in ("report", "machines", "decode", "encode", "record", "watch"):
            machine = [] if command in ("machines", "decode") else ["--machine", "two-batteries"]
            self.assert_refused(self.run_without((1,), command, *machine), "standard output cannot be written to")

    def test_input_that_is_missing_is_an_error(self):
        done = self.run_without((0,), "decode")
        self.assertIn("cannot be read", json.loads(done.stdout)["rowError"])


def main():
    global TOOL, SYNC_LOG
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--sync-log", type=os.path.abspath)
    arguments, others = parser.parse_known_args()
    TOOL, SYNC_LOG = os.path.abspath(arguments.tool), arguments.sync_log
    unittest.main(argv=[sys.argv[0], *others])


if __name__ == "__main__":
    main()
