"""Every way to use the package wrongly ends with an exception: never with a crash, never with what nobody answered."""

import concurrent.futures
import copy
import dataclasses
import gc
import os
import pickle
import subprocess
import sys
import textwrap
import threading
import time
import unittest
import weakref

from test_norv_battery import COUNTERS, make_block, one_battery

import norv_battery
from norv_battery import Answer, Field, InUseError, LogLevel, Status

BLOCK = make_block()


def run_python(program):
    """What a program prints that has this package and this folder at hand, and that must not crash."""
    folder = os.path.dirname(os.path.abspath(__file__))
    done = subprocess.run([sys.executable, "-B", "-c", textwrap.dedent(program)], capture_output=True, check=False, text=True,
                          env=dict(os.environ, PYTHONPATH=folder), timeout=60)
    return done.returncode, done.stdout, done.stderr


class CopyTest(unittest.TestCase):
    def test_batteries_are_neither_copied_nor_pickled(self):
        with norv_battery.open(channel=one_battery) as batteries:
            for held in (batteries, batteries[0], norv_battery.decode(BLOCK)):
                for duplicate in (copy.copy, copy.deepcopy, pickle.dumps, lambda what: copy.deepcopy([what])):
                    with self.assertRaisesRegex(TypeError, f"{type(held).__name__} objects .* neither copied nor pickled"):
                        duplicate(held)
            self.assertEqual(batteries[0].ct_supplier, "B2")

    def test_what_is_read_is_copied_and_pickled(self):
        battery = norv_battery.decode(make_block(serial=b"0123456789ABCDEF"))
        for value in (battery.read(Field.VOLTAGE), battery.age_error, norv_battery.describe(Field.AGE), Answer(BLOCK)):
            for duplicate in (copy.copy, copy.deepcopy, lambda what: pickle.loads(pickle.dumps(what))):
                self.assertEqual(duplicate(value), value)

    def test_exceptions_go_from_process_to_process(self):
        with norv_battery.open(channel=lambda *_: Answer(return_code=9)) as batteries:
            with self.assertRaises(norv_battery.NoBatteryError) as raised:
                batteries[0]
        other = pickle.loads(pickle.dumps(raised.exception))
        self.assertEqual((type(other), str(other)), (norv_battery.NoBatteryError, str(raised.exception)))
        self.assertEqual((other.status, other.error), (raised.exception.status, raised.exception.error))


class ConstructionTest(unittest.TestCase):
    def test_a_battery_is_not_made_of_a_number(self):
        for arguments in ((4096,), (4096, None), (0, 0, 0)):
            with self.assertRaises(TypeError):
                norv_battery.Battery(*arguments)

    def test_an_object_opened_again_leaves_the_callbacks_of_a_running_test_alone(self):
        def log(*_):
            if opened and not again:
                again.append(True)
                batteries.__init__(channel=one_battery)
                gc.collect()

        opened, again = [], []
        batteries = norv_battery.open(channel=one_battery, log=log)
        opened.append(True)
        with self.assertRaises(norv_battery.NoVerdictError):
            batteries.run_test()
        self.assertTrue(again)
        self.assertEqual(batteries[0].ct_supplier, "B2")
        batteries.close()


class InUseTest(unittest.TestCase):
    @staticmethod
    def uses(batteries, battery):
        return (batteries.close, batteries.run_test, batteries.__enter__, lambda: batteries[0], lambda: list(batteries),
                lambda: batteries.error, lambda: batteries.test_error, lambda: batteries.read_test(Field.TEST_LABEL),
                lambda: battery.voltage, lambda: battery.age_error, lambda: battery.bytes(Field.VOLTAGE),
                lambda: list(battery.readings()), lambda: batteries.__exit__(None, None, None))

    def assert_refused(self, batteries, battery):
        for use in self.uses(batteries, battery):
            with self.assertRaisesRegex(InUseError, "in use, by another thread or by the call"):
                use()

    def test_a_log_function_uses_nothing_of_the_batteries_that_are_tested(self):
        def log(*_):
            if battery:
                self.assert_refused(batteries, battery[0])
                refused.append(True)

        battery, refused = [], []
        with norv_battery.open(channel=one_battery, log=log) as batteries:
            battery.append(batteries[0])
            with self.assertRaises(norv_battery.NoVerdictError):
                batteries.run_test()
            self.assertTrue(refused)
            self.assertEqual(battery[0].ct_supplier, "B2")
            battery.clear()

    def test_what_a_log_function_was_refused_is_raised_by_the_test(self):
        def log(*_):
            if opened:
                opened[0].close()

        opened = []
        with norv_battery.open(channel=one_battery, log=log) as batteries:
            opened.append(batteries)
            with self.assertRaises(InUseError):
                batteries.run_test()
            self.assertIs(batteries[0].valid, True)

    def test_another_thread_uses_nothing_of_the_batteries_that_are_tested(self):
        def log(*_):
            if not opening.is_set():
                testing.set()
                self.assertTrue(finish.wait(20))

        opening, testing, finish = threading.Event(), threading.Event(), threading.Event()
        opening.set()
        with norv_battery.open(channel=one_battery, log=log) as batteries:
            opening.clear()
            battery = batteries[0]
            with concurrent.futures.ThreadPoolExecutor(1) as pool:
                tested = pool.submit(batteries.run_test)
                try:
                    self.assertTrue(testing.wait(20))
                    self.assert_refused(batteries, battery)
                finally:
                    finish.set()
                self.assertIsInstance(tested.exception(20), norv_battery.NoVerdictError)
            self.assertEqual(battery.ct_supplier, "B2")

    def test_threads_that_read_and_close_meet_exceptions_only(self):
        def until_closed(use):
            while True:
                try:
                    use()
                except InUseError:
                    time.sleep(0.0001)
                except ValueError:
                    return

        def read(battery, seen):
            until_closed(lambda: (time.sleep(0), seen.add((battery.serial_number, str(battery.error(Field.AGE))))))

        for _ in range(20):
            seen = set()
            batteries = norv_battery.open(channel=one_battery)
            battery = batteries[0]
            threads = [threading.Thread(target=read, args=(battery, seen)) for _ in range(3)]
            for thread in threads:
                thread.start()
            until_closed(lambda: (batteries.close(), batteries.error))
            for thread in threads:
                thread.join()
            self.assertLessEqual(seen, {("04217 2022-09-14", "None")})

    def test_a_channel_may_open_other_batteries(self):
        def nested(*command):
            with norv_battery.open(channel=one_battery) as others:
                serials.append(others[0].serial_number)
            return one_battery(*command)

        serials = []
        with norv_battery.open(channel=nested) as batteries:
            self.assertEqual(serials, [batteries[0].serial_number] * 2)


class LifetimeTest(unittest.TestCase):
    def test_iterators_answer_no_more_after_the_batteries_are_closed(self):
        batteries = norv_battery.open(channel=one_battery)
        readings = batteries[0].readings()
        slots = iter(batteries)
        next(readings), next(slots)
        batteries.close()
        for iterator in (readings, slots):
            with self.assertRaisesRegex(ValueError, "closed"):
                next(iterator)

    def test_a_log_function_that_knows_its_batteries_keeps_nothing_alive(self):
        holder = []
        holder.append(norv_battery.open(channel=one_battery, log=lambda *_: holder))
        gone = weakref.ref(holder[0])
        handle = weakref.ref(holder[0]._handle)
        del holder
        gc.collect()
        self.assertIsNone(gone())
        self.assertIsNone(handle())

    @unittest.skipUnless(hasattr(os, "fork"), "there is no fork on this system")
    def test_a_forked_process_has_its_own(self):
        self.assertEqual(run_python("""
            import os
            from test_norv_battery import norv_battery, one_battery
            batteries = norv_battery.open(channel=one_battery)
            child = os.fork()
            if child:
                print(os.waitpid(child, 0)[1])
            print(batteries[0].ct_supplier)
            batteries.close()
        """), (0, "B2\n0\nB2\n", ""))

    def test_the_end_of_the_interpreter_closes_what_is_open(self):
        self.assertEqual(run_python("""
            import atexit
            def late():
                try:
                    batteries[0]
                except ValueError as closed:
                    print(closed)
            atexit.register(late)
            from test_norv_battery import norv_battery, one_battery
            class Last:
                def __del__(self):
                    print(norv_battery is not None and decoded.slot)
            batteries = norv_battery.open(channel=one_battery, log=lambda *_: globals())
            decoded = next(iter(batteries))
            last = Last()
        """), (0, "these batteries are closed\n0\n", ""))

    def test_the_end_of_the_interpreter_waits_for_the_functions_of_the_host(self):
        for call in ("lambda: norv_battery.open(channel=one_battery, log=log)",
                     "norv_battery.open(channel=one_battery, log=lambda *_: called.is_set() and log()).run_test"):
            done, heard, said = run_python(f"""
                import os, threading, time
                from test_norv_battery import norv_battery, one_battery
                def log(*_):
                    entered.set()
                    time.sleep(0.1)
                    os.write(1, b".")
                called, entered = threading.Event(), threading.Event()
                threading.excepthook = lambda *_: None
                call = {call}
                called.set()
                threading.Thread(target=call, daemon=True).start()
                entered.wait(20)
            """)
            self.assertEqual((done, said), (0, ""))
            self.assertRegex(heard, r"^\.\.+$")

    def test_the_end_of_the_interpreter_waits_for_nothing_else(self):
        self.assertEqual(run_python("""
            import threading, time
            from test_norv_battery import norv_battery
            handle = norv_battery.decode(bytes(128))._handle
            def use():
                with handle:
                    used.set()
                    time.sleep(100)
            used = threading.Event()
            threading.Thread(target=use, daemon=True).start()
            used.wait(20)
        """), (0, "", ""))

    @unittest.skipUnless(hasattr(os, "fork"), "there is no fork on this system")
    def test_a_forked_process_does_not_wait_for_threads_that_it_lacks(self):
        self.assertEqual(run_python("""
            import os, sys, threading
            from test_norv_battery import norv_battery, one_battery
            def log(*_):
                entered.set()
                forked.wait(20)
            entered, forked = threading.Event(), threading.Event()
            thread = threading.Thread(target=norv_battery.open, kwargs={"channel": one_battery, "log": log})
            thread.start()
            entered.wait(20)
            child = os.fork()
            if child:
                print(os.waitpid(child, 0)[1])
                forked.set()
                thread.join()
        """)[:2], (0, "0\n"))  # later versions of Python warn of such a fork


class AnswerTest(unittest.TestCase):
    def test_takes_nothing_but_bytes_and_numbers(self):
        for wrong in ({"block": 128}, {"block": "x" * 128}, {"block": None}, {"block": [0] * 128},
                      {"return_code": True}, {"return_code": 6.0}, {"return_code": "6"}, {"return_code": None},
                      {"status": False}, {"status": 0.0}, {"status": None}):
            with self.assertRaisesRegex(TypeError, f"the {next(iter(wrong)).replace('_', ' ')} of an answer is "):
                Answer(**{"block": BLOCK, **wrong})

    def test_takes_no_numbers_that_do_not_fit(self):
        for wrong in ({"return_code": -1}, {"return_code": 2**32}, {"status": 2**31}, {"status": 0x80070005},
                      {"status": -(2**31) - 1}, {"status": 2**32}, {"return_code": 2**64}):
            with self.assertRaisesRegex(ValueError, "of an answer is .* to .*, not "):
                Answer(BLOCK, **wrong)
        self.assertEqual(Answer(return_code=2**32 - 1).return_code, 2**32 - 1)
        self.assertEqual(Answer(status=-(2**31)).status, -(2**31))

    def test_a_success_has_a_whole_block(self):
        for block in (b"", BLOCK[:-1], BLOCK + b"\0", BLOCK * 2):
            with self.assertRaisesRegex(ValueError, f"128 bytes, not with {len(block)}"):
                Answer(block)
        with self.assertRaisesRegex(ValueError, "128 bytes, not with 0"):
            Answer()

    def test_takes_every_kind_of_bytes_as_a_copy(self):
        changing = bytearray(BLOCK)
        every_second = bytes(byte for byte in BLOCK for _ in range(2))
        for block in (changing, memoryview(changing), memoryview(every_second)[::2], memoryview(BLOCK).cast("H")):
            self.assertIs(type(Answer(block).block), bytes)
            self.assertEqual(Answer(block), Answer(BLOCK))
            self.assertEqual(hash(Answer(block)), hash(Answer(BLOCK)))
        answer = Answer(changing)
        changing[0] ^= 1
        self.assertEqual(answer.block, BLOCK)

    def test_a_channel_answers_with_nothing_else(self):
        @dataclasses.dataclass(frozen=True)
        class Unchecked(Answer):
            def __post_init__(self):
                pass

        for wrong in (None, BLOCK, (BLOCK, 0, 0), 0, Unchecked("x" * 128), Unchecked(BLOCK, 0.5), Unchecked(BLOCK, 0, 2**32)):
            with self.assertRaises((TypeError, ValueError), msg=wrong):
                norv_battery.open(channel=lambda *_, wrong=wrong: wrong)


class ArgumentTest(unittest.TestCase):
    def test_slots_are_whole_numbers(self):
        with norv_battery.open(channel=one_battery) as batteries:
            for slot in (True, False, 0.0, "0", None, b"\0", slice(0, 1)):
                with self.assertRaisesRegex(TypeError, "a slot is a whole number"):
                    batteries[slot]
            for slot in (2**32, -(2**32), 10**30, 256):
                with self.assertRaises(IndexError):
                    batteries.get(slot)

    def test_fields_are_those_there_are(self):
        with norv_battery.open(channel=one_battery) as batteries:
            battery = batteries[0]
            for call in (battery.read, battery.bytes, battery.error, batteries.read_test, norv_battery.describe):
                for field in (0, -1, max(Field) + 1, 2**32 + Field.VOLTAGE, -(2**32) + 1, 10**30):
                    with self.assertRaisesRegex(ValueError, "a field is 1 to 68, not "):
                        call(field)
                for field in (True, 13.0, "voltage", None):
                    with self.assertRaisesRegex(TypeError, "a field is a whole number"):
                        call(field)
            self.assertEqual(battery.read(int(Field.VOLTAGE)), battery.read(Field.VOLTAGE))

    def test_options_are_of_their_kind(self):
        for wrong in ({"cell_swell": "no"}, {"test": 0}, {"channel": 0}, {"log": "log.txt"}, {"log_level": None},
                      {"log_level": True}, {"log_level": 4.0}, {"channel": Answer(BLOCK)}):
            with self.assertRaisesRegex(TypeError, f"^{next(iter(wrong))} is "):
                norv_battery.open(**{"channel": one_battery, **wrong})
        for level in (-1, 7, 2**32 + LogLevel.INFO):
            with self.assertRaisesRegex(ValueError, "^log_level is 0 to 6, not "):
                norv_battery.open(channel=one_battery, log_level=level)

    def test_a_channel_that_counts_as_false_is_one_all_the_same(self):
        class Channel(list):
            def __call__(self, *command):
                return one_battery(*command)

        with norv_battery.open(channel=Channel()) as batteries:
            self.assertEqual(batteries[0].ct_supplier, "B2")

    def test_blocks_are_bytes(self):
        for wrong in (128, "x" * 128, None, [0] * 128):
            with self.assertRaisesRegex(TypeError, "a block is bytes"):
                norv_battery.decode(wrong)
        for wrong in (128, "x" * 128, [0] * 128):
            with self.assertRaisesRegex(TypeError, "a cell swell protection block is bytes"):
                norv_battery.decode(BLOCK, wrong)
        for counters in (b"", COUNTERS[:-1], COUNTERS + b"\0"):
            with self.assertRaises(norv_battery.BatteryError) as raised:
                norv_battery.decode(BLOCK, counters)
            self.assertEqual(raised.exception.status, Status.INVALID_SIZE)
        battery = norv_battery.decode(bytearray(BLOCK), memoryview(COUNTERS))
        self.assertEqual((battery.ct_supplier, battery.time_charge), ("B2", 1001))


class RaisingTest(unittest.TestCase):
    def test_what_a_log_raises_during_a_test_is_raised(self):
        def log(*_):
            if opened:
                raise OSError("disk full")

        opened = []
        with norv_battery.open(channel=one_battery, log=log) as batteries:
            opened.append(True)
            with self.assertRaisesRegex(OSError, "disk full"):
                batteries.run_test()
            opened.clear()
            with self.assertRaises(norv_battery.NoVerdictError):
                batteries.run_test()

    def test_an_interrupt_is_raised(self):
        def interrupted(*_):
            raise KeyboardInterrupt

        for callbacks in ({"channel": interrupted}, {"channel": one_battery, "log": interrupted}):
            with self.assertRaises(KeyboardInterrupt):
                norv_battery.open(**callbacks)


if __name__ == "__main__":
    unittest.main()
