"""The mutations of a source."""
import collections
import random
import re

KINDS = {
    'comparison': [(' == ', ' != '), (' != ', ' == '), (' < ', ' <= '), (' <= ', ' < '), (' > ', ' >= '),
                   (' >= ', ' > ')],
    'logic': [(' && ', ' || '), (' || ', ' && ')],
    'arithmetic': [(' + ', ' - '), (' - ', ' + '), ('++', '--'), (' += ', ' -= ')],
    'truth': [('true', 'false'), ('false', 'true')],
    'log': [('logError', 'logInfo'), ('logInfo', 'logDetail'), ('logDetail', 'logInfo'),
            ('logInternalError', 'logError'), ('ADetailTrace', 'AnInfoTrace'),
            ('AnInfoTrace', 'ADetailTrace')],
    'result code': [('c_success', 'c_errorGeneral'), ('c_errorGeneral', 'c_errorNoPath')],
}
STATEMENT = re.compile(r'^\s+[\w*&(!].*;$')
LEFT_OUT = re.compile(r'^\s+(?!return|const |static |using |case |default|delete |break|continue)'
                      r'([\w.:>*()\[\]-]+ (=|\+=|\|=) .*|[\w.:>*()-]+\(.*\)|(break|continue)|\+\+\w+);$')


class Change:
    """Lines of a file and their replacement. `key` also has the line before them."""

    def __init__(self, path, text, number, count, new, kind, what):
        self.path, self.number, self.count, self.new = path, number, count, new
        self.kind, self.what = kind, what
        self.block = block_of(text, number)
        before = [line.strip() for line in text[:number] if line.strip()]
        self.key = (path, before[-1] if before else '',
                    tuple(line.strip() for line in text[number:number + count]),
                    tuple(line.strip() for line in new))

    def __str__(self):
        return f'{self.path}:{self.number + 1}: {self.kind}: {self.what}'

    def entry(self):
        """Returns the mutation in the form of explained.txt."""
        path, context, old, new = self.key
        lines = [path] + [f'  {context}'] * bool(context)
        return '\n'.join(lines + [f'- {line}' for line in old] + [f'+ {line}' for line in new])

    def applied(self, text):
        return text[:self.number] + self.new + text[self.number + self.count:]


def block_of(text, number):
    """Returns the first and last line of the function around a line, or None for data."""
    start = number
    while start > 0 and not text[start][:1].isalnum():
        start -= 1
    until_body = masked('\n'.join(text[start:number + 1]))
    end = number
    while '{' not in until_body and ';' not in until_body and end + 1 < len(text):
        end += 1
        until_body += text[end]
    if '{' not in until_body.split(';')[0]:
        return None
    while end + 1 < len(text) and not text[end].startswith('}') and (end > start or '}' not in text[end]):
        end += 1
    return start, end


def without_comment(line):
    return re.sub(r'\s+//.*$', '', line)


def masked(line):
    """Returns the line without the contents of its string literals."""
    return re.sub(r'"[^"\\]*(?:\\.[^"\\]*)*"|\'(?:[^\'\\]|\\.)\'',
                  lambda match: match.group()[0] + '~' * (len(match.group()) - 2) + match.group()[-1], line)


def closing(line, opening):
    depth = 0
    for at in range(opening, len(line)):
        depth += {'(': 1, ')': -1}.get(line[at], 0)
        if depth == 0:
            return at
    return None


def replacements(line):
    """Yields (from, to, new, kind) for every mutation inside a line."""
    bare = masked(line)
    for kind, pairs in KINDS.items():
        for old, new in pairs:
            edge = r'\b' if old[0].isalpha() else ''
            if kind == 'arithmetic' and '"' in bare:  # this joins string literals
                continue
            for match in re.finditer(edge + re.escape(old) + edge, bare):
                yield match.start(), match.end(), new, kind
    for match in re.finditer(r'\bc_error(?!General)\w+', bare):
        yield match.start(), match.end(), 'c_errorGeneral', 'result code'
    for match in re.finditer(r'(?<![\w!=])!(?=[\w(*])', bare):
        yield match.start(), match.end(), '', 'negation'
    for match in re.finditer(r'(?<![\w.])(\d+|0x[0-9A-F]+)(?![\w.])', bare):
        yield match.start(), match.end(), str(int(match.group(), 0) + 1), 'constant'
    for match in re.finditer(r'\b(if|while) (\()', bare):
        end = closing(bare, match.start(2))
        if end and not re.match(r'\((true|false)\)', bare[match.start(2):]):
            for always in ('true', 'false') if match.group(1) == 'if' else ('false',):
                yield match.start(2) + 1, end, always, 'condition'
    for match in re.finditer(r'"(~+)"|\'~+\'', bare):
        if match.group()[0] == '"':
            yield match.start(1), match.start(1), '~', 'text'
        else:
            yield match.start() + 1, match.end() - 1, '~', 'text'


def is_code(line):
    bare = line.strip()
    return (bare and not bare.endswith(('= delete;', '= default;'))
            and not bare.startswith(('//', '#', 'using ', 'namespace', '}  //', 'static_assert')))


def is_whole_statement(text, number):
    """Returns whether the line is one complete statement."""
    before = next((without_comment(line).rstrip() for line in reversed(text[:number])
                   if line.strip() and not line.strip().startswith('//')), '')
    return bool(STATEMENT.match(without_comment(text[number]))) and before[-1:] in ('{', '}', ';', ':')


def declares(line):
    return bool(re.match(r'(const|constexpr|static|using|return|break|continue|delete|throw)\b'
                         r'|\w[\w:<>*&, ]*[ *&][\w\[\]]+( =|;|\(|\{)', line.strip()))


def changes_of(path, text):
    for number, line in enumerate(text):
        if not is_code(line):
            continue
        code = without_comment(line)
        for start, end, new, kind in replacements(code):
            yield Change(path, text, number, 1, [code[:start] + new + code[end:]], kind,
                         f'{code[start:end].strip()!r} -> {new.strip()!r} in column {start + 1}')
        if not is_whole_statement(text, number):
            continue
        if LEFT_OUT.match(code) or (re.match(r'\s+if \(.*;$', code) and ') return' in code):
            yield Change(path, text, number, 1, [re.match(r'\s*', code).group() + ';'], 'left out',
                         code.strip())
        if number + 1 < len(text):
            below = text[number + 1]
            same_depth = re.match(r'\s*', below).group() == re.match(r'\s*', line).group()
            if (same_depth and is_whole_statement(text, number + 1) and not declares(code)
                    and not declares(without_comment(below))):
                yield Change(path, text, number, 2, [below, line], 'order',
                             f'{code.strip()} after {without_comment(below).strip()}')


def spread(changes, most, seed):
    """Picks mutations evenly from all files and kinds."""
    chance = random.Random(seed)
    waiting = collections.defaultdict(lambda: collections.defaultdict(list))
    for change in changes:
        waiting[change.path][change.kind].append(change)
    for kinds in waiting.values():
        for found in kinds.values():
            chance.shuffle(found)
    used = collections.Counter()
    chosen = []
    while waiting and len(chosen) < most:
        for path in sorted(waiting):
            kinds = waiting[path]
            kind = min(kinds, key=lambda name: (used[path, name], used[name], name))
            chosen.append(kinds[kind].pop())
            used[path, kind] += 1
            used[kind] += 1
            if not kinds[kind]:
                del kinds[kind]
            if not kinds:
                del waiting[path]
    return chosen[:most]
