"""Where the agent's code decides something, and what else it could do there. Knows C++ by its tokens, not by its
grammar: a proposal that does not compile is for the caller to pass over."""
import dataclasses
import random
import re

TOKEN = re.compile(r'''
  (?P<comment>//[^\n]*|/\*.*?\*/)
 |(?P<directive>^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*)
 |(?P<string>(?:u8|[uUL])?(?:R"(?P<rim>[^(\s]*)\(.*?\)(?P=rim)"|"(?:\\.|[^"\\\n])*")\w*)
 |(?P<char>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
 |(?P<number>\d(?:'?[\w.])*)
 |(?P<word>[A-Za-z_]\w*)
 |(?P<mark>->|::|<<=|>>=|<=>|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|\S)
''', re.X | re.S | re.M)

# What is checked by the compiler or in debug builds alone, or changes nothing but memory, handles, time and names of
# threads.
SILENT = {'static_assert', 'alignas', 'Q_ASSERT', 'Q_ASSERT_X', 'Q_UNREACHABLE', 'assertMainThread', 'reserve',
          'nameThisThread', 'sleep_for', 'deleteLater', 'disconnectFromBus'}
LOG_WRITE = re.compile(r'write\w*Log|log[A-Z]\w*|q(?:Debug|Info|Warning|Critical)')
SWAPS = {'&&': '||', '||': '&&', '==': '!=', '!=': '==', '<': '<=', '<=': '<', '>': '>=', '>=': '>',
         'true': 'false', 'false': 'true'}
BOUNDS = {'<', '<=', '>', '>='}
CLOSING = {'(': ')', '[': ']', '{': '}'}
ENDS_BEFORE_CONDITION = {'=', 'return', ',', ';', '<<', '+=', ':', '?', '(', '[', '{'}

NO_CALL = {'return', 'new', 'delete', 'throw', 'else', 'if', 'for', 'while', 'switch', 'do', 'case'}

# How often each kind is taken. Few tests look at the text of the log.
SHARES = {'condition': 35, 'call': 25, 'code': 12, 'constant': 12, 'bound': 15, 'truth': 5, 'log': 1}


@dataclasses.dataclass(frozen=True)
class Point:
    kind: str
    file: str
    line: int
    start: int
    end: int
    text: str  # what stands between start and end afterwards


@dataclasses.dataclass
class Token:
    sort: str
    text: str
    start: int
    end: int
    partner: int = -1  # of a bracket: the other one's index
    silent: bool = False
    function: str = ''  # what is around it: 'bool', 'void' or 'other' by what it returns, or 'lambda'


def tokens_of(source):
    tokens = [Token(m.lastgroup if m.lastgroup != 'rim' else 'string', m.group(), m.start(), m.end())
              for m in TOKEN.finditer(source)]
    tokens = [t for t in tokens if t.sort not in ('comment', 'directive')]
    pair_brackets(tokens)
    mark_silent(tokens)
    mark_functions(tokens)
    return tokens


def pair_brackets(tokens):
    opened = []
    for i, token in enumerate(tokens):
        if token.text in CLOSING and token.sort == 'mark':
            opened.append(i)
        elif opened and token.sort == 'mark' and token.text == CLOSING[tokens[opened[-1]].text]:
            token.partner = opened.pop()
            tokens[token.partner].partner = i


def mark_silent(tokens):
    """Of what writes to the log the arguments alone: it may be dropped as a whole."""
    for i, token in enumerate(tokens[:-1]):
        if token.sort != 'word' or tokens[i + 1].text != '(':
            continue
        before = (tokens[i - 2].text, tokens[i - 1].text)
        is_handle = token.text == 'close' and before[1] == '::' and tokens[i - 2].sort != 'word'
        is_thread = token.text == 'check' and before[0].lower().endswith('thread')
        is_debug = token.text in SILENT or is_handle or is_thread
        if is_debug or LOG_WRITE.fullmatch(token.text):
            for inner in tokens[i if is_debug else i + 1:tokens[i + 1].partner + 1]:
                inner.silent = True


def functions_asserted(tokens):
    names = set()
    for i, token in enumerate(tokens[:-1]):
        if token.text == 'static_assert':
            inside = range(i + 2, tokens[i + 1].partner)
            names.update(tokens[j].text for j in inside if tokens[j].sort == 'word' and tokens[j + 1].text == '(')
    return names


def mark_functions(tokens):
    """A body is what follows a closing parenthesis or a word such as const, and is no lambda's."""
    proofs = functions_asserted(tokens)
    i = 0
    while i < len(tokens):
        opens = tokens[i].text == '{' and tokens[i].partner > 0
        if opens and tokens[i - 1].text in (')', 'const', 'noexcept', 'override'):
            head = i - 1
            while head >= 0 and tokens[head].text not in (';', '}', '{'):
                head = tokens[head].partner if tokens[head].text == ')' else head - 1
            words = [t.text for t in tokens[head + 1:i]]
            words = words[words.index(']') + 2:] if words[:1] == ['['] and words[1:2] == ['['] else words
            words = [w for w in words if w not in ('static', 'inline', 'constexpr')]
            is_proof = bool(proofs.intersection(words))
            returns = words[0] if words and words[0] in ('bool', 'void') else 'other'
            for inner in tokens[i:tokens[i].partner]:
                inner.function = returns
                inner.silent |= is_proof
            mark_lambdas(tokens, i + 1, tokens[i].partner)
            i = tokens[i].partner
        i += 1


def mark_lambdas(tokens, begin, end):
    for i in range(begin, end):
        before = tokens[i - 1]
        ends_head = before.text in (']', 'mutable') or before.text == ')' and tokens[before.partner - 1].text == ']'
        if tokens[i].text == '{' and ends_head:
            for inner in tokens[i:tokens[i].partner]:
                inner.function = 'lambda'


class Finder:
    """Collects the points of one file."""

    def __init__(self, file, source, enums, chance):
        self.file, self.source, self.enums, self.chance = file, source, enums, chance
        self.tokens = tokens_of(source)
        self.points = []
        self.log_conditions = self.find_log_conditions()
        self.constants = self.find_constants()
        self.literals = self.find_literals()

    def find(self):
        for i, token in enumerate(self.tokens[:-1]):
            if token.silent:
                continue
            if token.sort == 'mark':
                self.look_at_mark(i, token)
            elif token.sort == 'word':
                self.look_at_word(i, token)
            elif token.sort == 'number':
                self.look_at_number(i, token)
            elif token.sort == 'string':
                self.exchange(i, self.literals)
        return self.points

    def add(self, kind, start, end, text):
        if any(first <= start < last for first, last in self.log_conditions):
            kind = 'log'
        self.points.append(Point(kind, self.file, self.source.count('\n', 0, start) + 1, start, end, text))

    def text(self, first, last):
        return self.source[self.tokens[first].start:self.tokens[last].end]

    def is_binary(self, token):
        return self.source[token.start - 1].isspace() and self.source[token.end].isspace()

    def look_at_mark(self, i, token):
        if token.text in SWAPS and self.is_binary(token) and not (token.text in BOUNDS and self.is_beside_now(i)):
            self.add('bound' if token.text in BOUNDS else 'condition', token.start, token.end, SWAPS[token.text])
        elif token.text == '!':
            self.add('condition', token.start, token.end, '')
        elif token.text == '?':
            self.turn_choice(i)
        elif token.text in ('{', '}', ';'):
            self.drop_call(i + 1)

    def is_beside_now(self, i):
        """An instant that is just the one compared with never comes."""
        called = self.tokens[i - 1].partner - 1 if self.tokens[i - 1].text == ')' else i - 1
        return 'now' in (self.tokens[called].text, self.tokens[i + 1].text)

    def look_at_word(self, i, token):
        following = self.tokens[i + 1]
        if token.text in ('if', 'while') and following.text == '(':
            self.turn_condition(i + 1)
            self.drop_call(following.partner + 1)
        elif token.text == 'for' and following.text == '(':
            self.drop_call(following.partner + 1)
        elif token.text == 'else':
            self.drop_call(i + 1)
        elif token.text == 'return':
            self.look_at_return(i)
        elif token.text in ('true', 'false'):
            self.add('truth', token.start, token.end, SWAPS[token.text])
        elif token.text in self.enums and following.text == '::':
            self.exchange_code(i, token)
        else:
            self.exchange(i, self.constants)

    def turn(self, first, last):
        self.add('condition', self.tokens[first].start, self.tokens[last].end, f'!({self.text(first, last)})')

    def turn_condition(self, opening):
        first, last = opening + 1, self.tokens[opening].partner - 1
        for i in range(first, last):
            if self.tokens[i].text == ';':
                first = i + 1
        if not any(t.text == '=' for t in self.tokens[first:last + 1]):
            self.turn(first, last)

    def turn_choice(self, question):
        first = question
        while first > 0 and self.tokens[first - 1].text not in ENDS_BEFORE_CONDITION:
            before = self.tokens[first - 1]
            first = before.partner if before.text in (')', ']', '}') else first - 1
        if first < question:
            self.turn(first, question - 1)

    def statement_end(self, first):
        """The index of the semicolon, where the statement is one call and nothing else."""
        i, called = first, False
        while i < len(self.tokens):
            token = self.tokens[i]
            if token.text == ';':
                return i if called else None
            called = token.text == '('
            if called or token.text == '[':
                i = token.partner + 1
            elif token.sort == 'word' and token.text not in NO_CALL:
                if i > first and (self.tokens[i - 1].sort == 'word' or self.tokens[i - 1].text == ')'):
                    return None  # a declaration
                i += 1
            elif token.text in ('.', '->', '::'):
                i += 1
            else:
                return None
        return None

    def name_of_call(self, first):
        end = first
        while self.tokens[end].text != '(':
            end += 1
        return self.tokens[first:end]

    def drop_call(self, first):
        if first >= len(self.tokens) or self.tokens[first].silent or not self.tokens[first].function:
            return
        call = first + 3 if self.text(first, min(first + 2, len(self.tokens) - 1)) == '(void)' else first
        end = self.statement_end(call)
        name = self.name_of_call(call) if end is not None else []
        if name and not any(t.silent for t in name):
            self.add('log' if self.is_log_write(call) else 'call', self.tokens[first].start, self.tokens[end].start, '')

    def look_at_return(self, i):
        end = self.statement_end(i + 1)
        function = self.tokens[i].function
        if end is not None and function == 'void':
            self.add('call', self.tokens[i + 1].start, self.tokens[end].start, '')
        elif end is not None and function in ('bool', 'lambda'):
            self.turn(i + 1, end - 1)

    def look_at_number(self, i, token):
        if re.fullmatch(r"0|[1-9][\d']*", token.text) and not self.is_beginning(i):
            value = int(token.text.replace("'", ''))
            self.add('bound', token.start, token.end, str(value + self.chance.choice((-1, 1) if value else (1,))))

    def is_beginning(self, i):
        """What a variable holds before it is given its value, and a nought that is told to a function, bound nothing."""
        before, after = self.tokens[i - 1].text, self.tokens[i + 1].text
        if self.tokens[i].text == '0' and before in '(,{' and after in '),}':
            return True
        first = i - 1
        while first > 0 and self.tokens[first].text not in ('(', '{', '}', ';'):
            first -= 1
        words = {token.text for token in self.tokens[first:i]}
        is_loop = self.tokens[first - 1].text == 'for'
        return before == '=' and not is_loop and not words & {'const', 'constexpr'}

    def exchange_code(self, i, token):
        name = self.tokens[i + 2]
        others = [e for e in self.enums[token.text] if e != name.text]
        if others != self.enums[token.text] and others and self.tokens[i - 1].text != 'case':
            self.add('code', name.start, name.end, self.chance.choice(others))

    def find_log_conditions(self):
        """Where it is decided whether to write to the log, and no more."""
        found = []
        for i, token in enumerate(self.tokens[:-1]):
            if token.text == 'if' and self.tokens[i + 1].text == '(':
                closing = self.tokens[i + 1].partner
                end = self.statement_end(closing + 1)
                if end is not None and self.is_log_write(closing + 1) and self.tokens[end + 1].text != 'else':
                    found.append((self.tokens[i + 1].start, self.tokens[closing].end))
        return found

    def is_log_write(self, call):
        name = self.name_of_call(call)
        return bool(name) and bool(LOG_WRITE.fullmatch(name[-1].text))

    def find_constants(self):
        """By use: the other constants of the file that are of the same type and another value."""
        found = re.findall(r'\bconst(?:expr)? ([\w:]+) (k[A-Z]\w*) = ([^;]*);', self.source)
        groups = {}
        for sort, name, value in found:
            groups.setdefault((sort, re.sub(r'.*"|[^\w"].*|\d', '', value) if sort == 'auto' else ''), []).append((name, value))
        return {name: [n for n, v in group if v != value] for group in groups.values() for name, value in group}

    def find_literals(self):
        groups = {}
        for token in self.tokens:
            if token.sort == 'string' and not token.silent and len(token.text) > 2:
                groups.setdefault(re.sub(r'"(.*)"', '', token.text, flags=re.S), []).append(token.text)
        return {text: sorted(set(texts) - {text}) for texts in groups.values() for text in texts}

    def exchange(self, i, groups):
        token = self.tokens[i]
        if groups.get(token.text) and self.tokens[i + 1].text != '=':
            self.add('constant', token.start, token.end, self.chance.choice(groups[token.text]))


def enums_in(sources):
    enums = {}
    for source in sources:
        plain = re.sub(r'//[^\n]*', '', source)
        for name, body in re.findall(r'\benum class (\w+)[^{;]*\{([^}]*)\}', plain):
            enums[name] = re.findall(r'(\w+)(?:\s*=[^,]*)?(?:,|$)', body.strip())
    return enums


def candidates(points, chance):
    """All of a room's points in the order in which they are tried: the kinds by their shares, a line once."""
    piles = {}
    for point in points:
        piles.setdefault(point.kind, []).append(point)
    for kind in sorted(piles):
        chance.shuffle(piles[kind])
    used = set()
    while piles:
        kind = chance.choices(sorted(piles), [SHARES[k] for k in sorted(piles)])[0]
        point = piles[kind].pop()
        if not piles[kind]:
            del piles[kind]
        if (point.file, point.line) not in used:
            used.add((point.file, point.line))
            yield point
