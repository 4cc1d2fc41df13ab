#!/usr/bin/env python3
"""Changes operators and constants of the library one at a time and sees whether the unit tests notice.

    mutate.py BUILD-FOLDER [--only TEXT] [--sample N] [--jobs N]

BUILD-FOLDER is a Ninja build in which norv-battery-unit-tests is built, best without optimisation. Nothing in the
source tree or the build is changed: each mutant is compiled from a copy and linked in front of the library. Changes
that are known to make no difference stand in equivalent.txt beside this file, each with the reason.
"""
import argparse
import concurrent.futures
import os
import pathlib
import random
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
FOLDERS = ('record', 'access', 'settings', 'test', 'diagnostics')
TARGET = 'norv-battery-unit-tests'
# The quick tests first: most mutants do not live to see the others.
SLOW = 'Patterns*:*FaultMatrix*:*Posix*:*Simulat*:*Sample*:*MachineFile*'
# A mutant may never end. It is given this many times what the library itself takes, and at least so many seconds.
PATIENCE = 10
LEAST_SECONDS = 120

# clang-format puts blanks around binary operators and around nothing else that looks like one.
OPERATORS = {
    '==': ['!='], '!=': ['=='], '<': ['<='], '>': ['>='], '<=': ['<'], '>=': ['>'], '&&': ['||'], '||': ['&&'],
    '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['*'], '&': ['|'], '|': ['&'], '<<': ['>>'], '>>': ['<<'],
    '+=': ['-='], '-=': ['+='],
}
OPERATOR = re.compile(r'(?<= )(?:' + '|'.join(re.escape(op) for op in sorted(OPERATORS, key=len, reverse=True)) +
                      r')(?= )')
NUMBER = re.compile(r"(?<![\w.'])(?:0x[0-9A-Fa-f]+|\d+)(?=U?(?![\w.']))")
WORD = re.compile(r'\b(?:true|false)\b')
NEGATION = re.compile(r'(?<=[( ])!(?=[\w(])')
STEP = re.compile(r'\+\+|--')
CHARACTER = re.compile(r"'([0-9A-Za-z])'")
SKIPPED_LINE = re.compile(r'^\s*(?://|#|static_assert|using |namespace |template|assert\()')


class Mutant:
    def __init__(self, path, line, start, end, new, text):
        self.path, self.line, self.start, self.end, self.new, self.text = path, line, start, end, new, text

    def source(self):
        lines = self.path.read_text().split('\n')
        lines[self.line] = self.text[:self.start] + self.new + self.text[self.end:]
        return '\n'.join(lines)

    def place(self):
        return f'{self.path.relative_to(ROOT)}:{self.line + 1}'

    def change(self):
        changed = self.text[:self.start] + self.new + self.text[self.end:]
        return f'{self.text.strip()}  =>  {changed.strip()}'


def without_texts(line):
    """The line with its texts and its comment blanked out, so that nothing in them is changed."""
    blanked = re.sub(r'"(?:\\.|[^"\\])*"', lambda match: ' ' * len(match.group()), line)
    return re.sub(r'//.*', lambda match: ' ' * len(match.group()), blanked)


def changes(line):
    code = without_texts(line)
    for match in OPERATOR.finditer(code):
        yield from ((match.start(), match.end(), new) for new in OPERATORS[match.group()])
    for match in NUMBER.finditer(code):
        yield match.start(), match.end(), str(int(match.group(), 0) + 1)
    for match in WORD.finditer(code):
        yield match.start(), match.end(), 'false' if match.group() == 'true' else 'true'
    for match in NEGATION.finditer(code):
        yield match.start(), match.end(), ''
    for match in STEP.finditer(code):
        yield match.start(), match.end(), '--' if match.group() == '++' else '++'
    for match in CHARACTER.finditer(code):
        yield match.start(1), match.end(1), chr(ord(match.group(1)) + 1)


def all_mutants():
    for folder in FOLDERS:
        for path in sorted((ROOT / 'src' / folder).iterdir()):
            if path.suffix not in ('.cpp', '.h'):
                continue
            for number, line in enumerate(path.read_text().split('\n')):
                if not SKIPPED_LINE.match(line):
                    yield from (Mutant(path, number, *change, line) for change in changes(line))


class Build:
    """What is needed to compile one file of the library and to link the tests again."""

    def __init__(self, folder):
        self.folder = folder
        commands = subprocess.run(['ninja', '-C', folder, '-t', 'commands', TARGET], check=True, capture_output=True,
                                  text=True).stdout.splitlines()
        commands = [line for line in commands if not line.startswith('ninja:')]
        # The quickest linker there is: a mutant is linked as often as it is compiled.
        self.linker = ' -fuse-ld=gold -Wl,--strip-debug' if shutil.which('ld.gold') else ''
        self.link = next(line for line in reversed(commands) if f'-o tests/{TARGET} ' in line)
        self.compile = {}
        for line in commands:
            source = re.search(r' -c (\S+)$', line)
            if source and '/src/' in source.group(1):
                self.compile[pathlib.Path(source.group(1))] = line
        self.users = self.read_users()

    def read_users(self):
        """Which files of the library include a header of its own."""
        users, current = {}, None
        deps = subprocess.run(['ninja', '-C', self.folder, '-t', 'deps'], check=True, capture_output=True, text=True)
        for line in deps.stdout.splitlines():
            if line and not line.startswith(' '):
                current = line.split(':')[0]
            elif '/src/' in line and line.endswith('.h') and current.startswith('src/'):
                source = next((path for path in self.compile if current.endswith(str(path).split('/src/')[1] + '.o')),
                              None)
                if source:
                    users.setdefault(pathlib.Path(line.strip()), set()).add(source)
        return users

    def make(self, mutant, folder):
        """Compiles the mutant and links the tests with it. The program, or None when it does not compile."""
        relative = mutant.path.relative_to(ROOT / 'src')
        copy = folder / relative
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_text(mutant.source())
        sources = sorted(self.users.get(mutant.path, ())) if mutant.path.suffix == '.h' else [mutant.path]
        objects = []
        for index, source in enumerate(sources):
            result = folder / f'{index}.o'
            read = copy if source == mutant.path else source
            command = re.sub(r' -c \S+$', f' -c {read}', self.compile[source])
            command = re.sub(r' -o \S+', f' -o {result}', command, count=1)
            command = re.sub(r' -MD -MT \S+ -MF \S+', '', command)
            command = command.replace(' -I', f' -I{folder} -I', 1).replace(' -Werror', '')
            if run(command, self.folder) != 0:
                return None
            objects.append(str(result))
        program = folder / 'tests'
        link = re.sub(r'^: && | && :$', '', self.link).split(' && ')[0]
        # In front of everything, so that of inline functions the mutant's is taken.
        compiler, rest = link.replace(f'-o tests/{TARGET} ', f'-o {program} ', 1).split(' ', 1)
        link = ' '.join([compiler, *objects, rest]) + self.linker
        return program if objects and run(link, self.folder) == 0 else None


def run(command, folder, seconds=300):
    arguments = shlex.split(command) if isinstance(command, str) else command
    environment = dict(os.environ, GCOV_PREFIX='/dev/null')
    try:
        return subprocess.run(arguments, cwd=folder, timeout=seconds, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, env=environment, check=False).returncode
    except subprocess.TimeoutExpired:
        return -1


def passes(program, tests, folder, seconds):
    return run([str(program), '--gtest_brief=1', '--gtest_fail_fast', f'--gtest_filter={tests}'], folder, seconds) == 0


def measure(build):
    """How long the tests of the library as it is take; they must pass."""
    start = time.monotonic()
    if not passes(f'./tests/{TARGET}', '*', build.folder, None):
        sys.exit(f'mutate: {TARGET} fails without any change')
    return max(LEAST_SECONDS, PATIENCE * (time.monotonic() - start))


def judge(build, mutant, seconds):
    """'killed', 'survived' or 'not compiled'."""
    with tempfile.TemporaryDirectory(prefix='mutant-') as name:
        folder = pathlib.Path(name)
        program = build.make(mutant, folder)
        if program is None:
            return 'not compiled'
        for tests in (f'-{SLOW}', SLOW):
            if not passes(program, tests, folder, seconds):
                return 'killed'
    return 'survived'


def read_equivalent():
    """PATH | CHANGE, a regular expression | REASON"""
    lines = (HERE / 'equivalent.txt').read_text().splitlines()
    rows = [[part.strip() for part in line.split(' | ')] for line in lines if line and not line.startswith('#')]
    return [(path, re.compile(change), reason) for path, change, reason in rows]


def reason_of(mutant, known):
    path = str(mutant.path.relative_to(ROOT))
    return next((reason for place, change, reason in known if place == path and change.fullmatch(mutant.change())), None)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('build')
    parser.add_argument('--only', default='', help='mutants of files whose path has this text in it')
    parser.add_argument('--sample', type=int, help='this many mutants only, always the same ones')
    parser.add_argument('--jobs', type=int, default=os.cpu_count())
    options = parser.parse_args()

    build = Build(str(pathlib.Path(options.build).resolve()))
    seconds = measure(build)
    known = read_equivalent()
    mutants = [mutant for mutant in all_mutants() if options.only in str(mutant.path)]
    if options.sample and options.sample < len(mutants):
        mutants = random.Random(20240601).sample(mutants, options.sample)
    # In no order, so that a run that is cut short has seen something of everything.
    random.Random(20240601).shuffle(mutants)
    counts = {'killed': 0, 'survived': 0, 'not compiled': 0, 'equivalent': 0}
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        futures = {pool.submit(judge, build, mutant, seconds): mutant for mutant in mutants}
        for future in concurrent.futures.as_completed(futures):
            mutant, verdict = futures[future], future.result()
            reason = reason_of(mutant, known) if verdict == 'survived' else None
            if verdict == 'survived':
                verdict = 'equivalent' if reason else verdict
                print(f'{verdict}: {mutant.place()}: {mutant.change()}' + (f'  ({reason})' if reason else ''),
                      flush=True)
            counts[verdict] += 1
            if sum(counts.values()) % 25 == 0:
                print(f'{sum(counts.values())} of {len(mutants)} judged: {counts["killed"]} killed', flush=True)
    judged = counts['killed'] + counts['survived']
    share = 100.0 * counts['killed'] / judged if judged else 0.0
    print(f'{len(mutants)} mutants: ' + ', '.join(f'{count} {verdict}' for verdict, count in counts.items()) +
          f'; {share:.1f} % of those that make a difference were killed')
    return 0 if judged and share >= 90 else 1


if __name__ == '__main__':
    sys.exit(main())
