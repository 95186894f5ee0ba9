"""Builds the test programs with one mutated source, and runs the tests that can detect it."""
import bisect
import collections
import os
import re
import shlex
import shutil
import signal
import subprocess

HERE = os.path.dirname(os.path.abspath(__file__))
FLOOR = 20  # seconds that every run of tests may take, even if it is usually short
TIMES = 5  # a run of tests may also take this many times its usual time
SHORT = 300  # milliseconds of the tests that run first
MEMORY = 6 << 20  # KiB
ENDLESS = 'does not end'


class Broken(Exception):
    """Raised if the original sources do not build or their tests fail."""


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


def must(command, **options):
    done = run(command, **options)
    if done.returncode != 0:
        raise Broken(f'{shlex.join(command)}\n{done.stdout[-3000:]}')
    return done.stdout


class Tree:
    """A build of the original sources, with the commands that compile and link its parts."""

    def __init__(self, source, build, programs, settings):
        self.source, self.build, self.programs = source, build, programs
        linker = ['-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld'] if shutil.which('ld.lld') else []
        must(['cmake', '-S', source, '-B', build, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Debug',
              '-DSITEHLP_WARNINGS_AS_ERRORS=OFF', '-DSITEHLP_BUILD_TOOL=OFF', *linker, *settings])
        must(['ninja', '-C', build, '-j2', *programs])
        self.compile, self.link, self.users = {}, {}, collections.defaultdict(set)
        for program in programs:
            commands = must(['ninja', '-C', build, '-t', 'commands', program]).splitlines()
            self.link[program] = shlex.split(commands[-1].removeprefix(': && ').removesuffix(' && :'))
            for words in map(shlex.split, commands):
                path = os.path.relpath(words[-1], source)
                if words[-2] == '-c' and path.startswith('sitehlp/'):
                    if os.path.basename(words[0]) == 'ccache':  # it would store every mutation
                        del words[0]
                    self.compile[path] = words
        unit = None
        for line in must(['ninja', '-C', build, '-t', 'deps']).splitlines():
            if not line.startswith(' '):
                unit = re.sub(r'^sitehlp/CMakeFiles/sitehlp-objects.dir/(.*)\.o: .*', r'sitehlp/\1', line)
            elif unit in self.compile:
                self.users[os.path.relpath(os.path.join(build, line.strip()), source)].add(unit)

    def object_of(self, unit):
        words = self.compile[unit]
        return words[words.index('-o') + 1]

    def compiled(self, unit, directory, options=()):
        """Compiles into `directory`, which also has the mutated sources. Returns None on failure."""
        changed = os.path.join(directory, unit)
        source = changed if os.path.exists(changed) else os.path.join(self.source, unit)
        target = os.path.join(directory, unit.replace('/', '_') + '.o')
        words = []
        rest = iter(self.compile[unit])
        for word in rest:
            if word in ('-MT', '-MF', '-o', '-c'):
                next(rest)
            elif word != '-MD' and not word.startswith('-W'):
                words.append(word)
        words += ['-w', *options, '-o', target, '-c', source]
        words[1:1] = ['-I', directory]
        return target if run(words, cwd=self.build).returncode == 0 else None

    def linked(self, program, objects, directory, extra=()):
        """Links with `objects`, {unit: its object}, instead of the objects of the build."""
        places = {self.object_of(unit): target for unit, target in objects.items()}
        target = os.path.join(directory, program)
        words = [places.get(word, word) for word in self.link[program]]
        words[words.index('-o') + 1] = target
        must(words + list(extra), cwd=self.build)
        return target


class Tests:
    """The lines and the time of each test. Tests are pairs (program, name)."""

    def __init__(self, tree, directory):
        shutil.rmtree(directory, ignore_errors=True)
        os.makedirs(directory)
        self.time, self.places = {}, collections.defaultdict(lambda: collections.defaultdict(set))
        objects = {}
        for unit in tree.compile:
            objects[unit] = tree.compiled(unit, directory, ['-fsanitize-coverage=trace-pc', '-g1'])
        recorder = os.path.join(directory, 'recorder.o')
        must(['c++', '-std=c++17', '-O1', '-c', os.path.join(HERE, 'recorder.cpp'), '-o', recorder])
        for program in tree.programs:
            binary = tree.linked(program, objects, directory, [recorder])
            record = os.path.join(directory, f'{program}.places')
            environment = dict(os.environ, MUTATE_MAP=f'{record}.map', MUTATE_RECORD=record)
            must([binary, '--gtest_brief=1'], env=environment)
            self.read(tree, program, binary, record)

    def read(self, tree, program, binary, record):
        runs = {}
        with open(record) as file:
            for line in file:
                name, milliseconds, *offsets = line.split()
                self.time[program, name] = int(milliseconds)
                runs[program, name] = {int(offset, 16) for offset in offsets}
        symbols = must(['nm', binary])
        start = int(re.search(r'^([0-9a-f]+) . __executable_start$', symbols, re.M).group(1), 16)
        offsets = sorted(set().union(*runs.values()))
        # The recorded place is the one after the call.
        answer = must(['addr2line', '-e', binary], input='\n'.join(hex(start + o - 1) for o in offsets))
        lines = {}
        for offset, line in zip(offsets, answer.splitlines()):
            path, _, number = line.split(' ')[0].rpartition(':')
            path = os.path.relpath(path, tree.source)
            if path.startswith('sitehlp/') and number.isdigit():
                lines[offset] = path, int(number)
        for test, places in runs.items():
            for path, number in {lines[offset] for offset in places if offset in lines}:
                self.places[path][number].add(test)

    def in_order(self, change):
        """Returns lists of tests, beginning with the most probable to detect the mutation."""
        numbers = self.places.get(change.path, {})
        if change.block:  # a test that does not run the function cannot detect it
            start, end = change.block
            possible = set().union(*(tests for number, tests in numbers.items()
                                     if start < number <= end + 1))
        elif numbers and change.path.endswith('.cpp'):
            possible = set().union(*numbers.values())
        else:
            possible = set()
        if not possible:
            possible = set(self.time)
        first = sorted(numbers)
        at = bisect.bisect_right(first, change.number + change.count)
        likely = sorted(possible.intersection(numbers[first[at - 1]]) if at else [], key=lambda test: (self.time[test], test))
        total, quick = 0, []
        for test in likely:
            total += self.time[test]
            if quick and total > SHORT:
                break
            quick.append(test)
        groups = [quick, likely[len(quick):], sorted(possible - set(likely))]
        return [group for group in groups if group]


def run_tests(binary, names, seconds, directory, memory=MEMORY):
    """Returns the name of the failed test, None if all passed, or ENDLESS."""
    temporary = os.path.join(directory, 'tmp')
    shutil.rmtree(temporary, ignore_errors=True)
    os.makedirs(temporary)
    output = os.path.join(directory, 'output')
    words = [binary, '--gtest_fail_fast', '--gtest_brief=1', '--gtest_filter=' + ':'.join(names)]
    if memory:
        words = ['/bin/sh', '-c', f'ulimit -v {memory}; exec "$@"', 'sh', *words]
    with open(output, 'w') as out:
        child = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                 start_new_session=True, env=dict(os.environ, TMPDIR=temporary))
        try:
            status = child.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            status = None
        try:
            os.killpg(child.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        child.wait()
    if status == 0:
        return None
    if status is None:
        return ENDLESS
    with open(output, errors='replace') as file:
        text = file.read()
    failed = re.search(r'^\[  FAILED  \] ([\w./]+)', text, re.M)
    return failed.group(1) if failed else f'ends with {status}'
