"""The list of mutations that no test can detect, each with the reason.

  FILE
    the line before the mutation
  - an old line
  + a new line
  = the reason, in one or more lines

An empty line ends an entry.
"""
import os

PATH = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'explained.txt')


def read():
    """Returns {key of a mutation: reason}."""
    entries = {}
    with open(PATH) as file:
        blocks = [block for block in file.read().split('\n\n') if block.strip()]
    for block in blocks:
        lines = [line for line in block.strip('\n').split('\n') if not line.startswith('#')]
        if not lines:
            continue

        def marked(mark):
            return tuple(line[2:].strip() for line in lines[1:] if line.startswith(mark))

        context, reason = marked('  '), ' '.join(marked('= '))
        known = all(line[:2] in ('  ', '- ', '+ ', '= ') or line == '+' for line in lines[1:])
        if not known or len(context) > 1 or not marked('- ') or not reason:
            raise SystemExit(f'{PATH}: cannot be read:\n{block}')
        key = (lines[0], context[0] if context else '', marked('- '), marked('+ '))
        if key in entries:
            raise SystemExit(f'{PATH}: twice:\n{block}')
        entries[key] = reason
    return entries
