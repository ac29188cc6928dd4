"""Finds the small changes of a C++ source that a good test notices: its mutants.

The source is read as tokens and as statements, no deeper; a change that makes no sense does not compile
and costs no more than that. The rules lean on the project's format, in which a binary operator has a
blank on both sides and a bracket of a template has not.
"""
import bisect
import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<space>\s+|\\\n)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<string>(?:u8|[uUL])?R"(?P<delimiter>[^(\s]*)\(.*?\)(?P=delimiter)"|(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
  | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<mark>\.\.\.|<=>|<<=|>>=|->\*|::|->|\+\+|--|&&|\|\||<<|>>|[-+*/%&|^=!<>]=|\#\#|.)
""", re.VERBOSE | re.DOTALL)
INTEGER = re.compile(r"(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9][0-9']*)([uUlLzZ]*)")

KINDS = ("constant", "comparison", "arithmetic", "logic", "condition", "statement", "argument", "return",
         "string")
COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
# A number may be missed on one side alone.
ONE_SIDED = {"==": ("<=", ">="), "!=": ("<", ">")}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|",
              "|": "&", "^": "&", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "%=": "/=",
              "<<=": ">>=", ">>=": "<<=", "&=": "|=", "|=": "&=", "^=": "&="}
LOGIC = {"&&": "||", "||": "&&"}
NAMES = {"true": "false", "false": "true", "CS_TRUE": "CS_FALSE", "CS_FALSE": "CS_TRUE",
         "CS_SUCCEED": "CS_FAIL", "CS_FAIL": "CS_SUCCEED", "min": "max", "max": "min"}
PAIRS = {"(": ")", "[": "]", "{": "}"}
# Values whose return is a constant mutant already, or the same as that of an empty one.
PLAIN_RETURNS = {"CS_SUCCEED", "CS_FAIL", "true", "false", "0", "nullptr", "{}"}
# Names before a parenthesis that are no calls.
NO_CALLS = {"if", "for", "while", "switch", "return", "sizeof", "alignof", "catch", "decltype", "noexcept",
            "defined", "alignas", "static_assert", "requires", "offsetof"}
DECLARATIONS = {"const", "constexpr", "constinit", "auto", "static", "using", "typedef", "struct", "class",
                "union", "enum", "extern", "static_assert", "volatile", "thread_local", "asm", "unsigned",
                "template", "goto"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutant:
    """Replaces text[start:end]. The number of lines stays, and so do the lines that a check reports."""
    kind: str
    line: int
    start: int
    end: int
    new: str
    note: str  # "old -> new" for a reader

    def apply(self, text):
        lost = text.count("\n", self.start, self.end) - self.new.count("\n")
        return text[:self.start] + self.new + "\n" * lost + text[self.end:]


def find_mutants(text, strings=False):
    """The mutants of a source, in its order; those of string literals only when they are asked for."""
    found = Reader(text, strings).read()
    return sorted(set(found), key=lambda mutant: (mutant.start, mutant.end, mutant.kind, mutant.new))


class Reader:
    def __init__(self, text, strings):
        self.text = text
        self.strings = strings
        self.line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
        self.found = []
        self.calls = set()    # opening parentheses whose arguments were swapped
        self.headers = set()  # tokens in the head of a for loop

    def read(self):
        plain, macros = self.tokenise()
        for tokens, is_code in [(plain, False)] + [(macro, True) for macro in macros]:
            self.tokens = tokens
            self.close = self.match_brackets()
            self.open = {end: start for start, end in self.close.items()}
            self.dead = self.find_dead()
            self.statements(0, len(tokens)) if is_code else self.declarations(0, len(tokens))
            for i in range(len(tokens)):
                if i not in self.dead:
                    self.token(i)
        return self.found

    # ---- reading ----

    def tokenise(self):
        """The tokens outside of directives, and those of the body of each macro."""
        plain, macros = [], []
        directive = None  # the tokens of the directive that is being read
        for match in TOKEN.finditer(self.text):
            kind = match.lastgroup
            if kind == "space":
                if directive is not None and "\n" in match[0].replace("\\\n", ""):
                    self.end_directive(directive, macros)
                    directive = None
            elif kind != "comment":
                if match[0] == "#" and directive is None:
                    directive = []
                (plain if directive is None else directive).append(Token(kind, match[0], match.start()))
        if directive is not None:
            self.end_directive(directive, macros)
        return plain, macros

    @staticmethod
    def end_directive(tokens, macros):
        if len(tokens) < 4 or tokens[1].text != "define":
            return
        body = 3
        if tokens[3].text == "(" and tokens[3].start == tokens[2].end:
            while tokens[body].text != ")":
                body += 1
            body += 1
        macros.append(tokens[body:])

    def match_brackets(self):
        close, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind != "mark":
                continue
            if token.text in PAIRS:
                stack.append(i)
            elif stack and token.text == PAIRS[self.tokens[stack[-1]].text]:
                close[stack.pop()] = i
        return close

    def find_dead(self):
        """Tokens that no change touches: attributes, assertions of the compiler, heads of templates."""
        dead = set()
        for i, token in enumerate(self.tokens):
            end = i
            if token.text == "[" and self.text_of(i + 1) == "[":
                end = self.close.get(i, i)
            elif token.text in ("static_assert", "alignas") and i + 1 in self.close:
                end = self.close[i + 1]
            elif token.text == "template" and self.text_of(i + 1) == "<":
                end = self.end_of_template(i + 1)
            elif token.text == "operator":
                end = i + 1
            elif token.text == "extern" and i + 1 < len(self.tokens):
                end = i + 1 if self.tokens[i + 1].kind == "string" else i
            else:
                continue
            dead.update(range(i, end + 1))
        return dead

    def end_of_template(self, i):
        depth = 0
        for j in range(i, min(i + 200, len(self.tokens))):
            depth += {"<": 1, ">": -1, ">>": -2}.get(self.tokens[j].text, 0)
            if depth <= 0:
                return j
        return i

    def text_of(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    # ---- structure: declarations, then statements ----

    def declarations(self, i, end):
        while i < end:
            i = self.declaration(i, end)

    def declaration(self, i, end):
        """Reads one declaration; returns where the next one begins."""
        start, has_call, has_value, words = i, False, False, set()
        while i < end:
            text = self.tokens[i].text
            if text == ";":
                return i + 1
            if text == "}":
                return i + 1
            if text == "=":
                has_value = True
            if text == "(" and not has_value and i > start:
                has_call = True
            if self.tokens[i].kind == "name":
                words.add(text)
            if text == "{":
                inside = i + 1, self.close.get(i, end)
                if words & {"struct", "class", "union", "namespace"} and not has_call or \
                        words == {"extern"}:
                    self.declarations(*inside)
                    return inside[1] + 1
                if has_call and not has_value:
                    self.statements(*inside)
                    return inside[1] + 1
                if self.is_lambda(i):
                    self.statements(*inside)
                i = inside[1]
            elif text in "([" and i in self.close:
                i = self.close[i]
            i += 1
        return end

    def is_lambda(self, i):
        return self.text_of(i - 1) in (")", "]", "mutable", "noexcept")

    def statements(self, i, end):
        while i < end:
            i = self.statement(i, end)

    def statement(self, i, end):
        """Reads one statement; returns where the next one begins."""
        text = self.tokens[i].text
        if text == "{":
            stop = self.close.get(i, end)
            self.statements(i + 1, stop)
            return stop + 1
        if text == "[" and self.text_of(i + 1) == "[":
            return self.close.get(i, i) + 1
        if text in ("if", "while", "for", "switch"):
            return self.control(i, end)
        if text in ("else", "do"):
            return i + 1
        if text in ("case", "default"):
            while i < end and self.tokens[i].text != ":":
                i += 1
            return i + 1
        return self.simple_statement(i, end)

    def control(self, i, end):
        word = self.tokens[i].text
        opening = i + 1
        while opening < end and self.tokens[opening].text != "(":
            opening += 1
        stop = self.close.get(opening, end)
        self.expression(opening + 1, stop)
        first = opening + 1
        for j in range(first, stop):
            if self.tokens[j].text == ";":
                first = j + 1
        if word == "for":
            self.headers.update(range(opening, stop))
        elif word != "switch" and first < stop:
            values = ("false", "true") if word == "if" else ("false",)
            for value in values:
                self.add("condition", self.tokens[first].start, self.tokens[stop - 1].end, value)
        return stop + 1

    def simple_statement(self, i, end):
        stop = i
        while stop < end and self.tokens[stop].text != ";":
            stop = self.close.get(stop, stop) + 1
        stop = min(stop, end)
        first = self.tokens[i]
        self.expression(i, stop)
        if first.text == "return" and i + 1 < stop:
            self.empty_return(i, stop)
        elif i < stop and first.text not in DECLARATIONS and not self.is_declaration(i, stop):
            self.drop(i, stop)
        return stop + 1

    def is_declaration(self, i, stop):
        """A type and a name: words that follow one another, with '*' or '&' between them."""
        if self.tokens[i].kind != "name":
            return False
        i += 1
        while i < stop:
            text = self.tokens[i].text
            if text == "::":
                i += 2
            elif text == "<" and self.tokens[i].start == self.tokens[i - 1].end:
                i = self.end_of_template(i) + 1
            else:
                break
        while self.text_of(i) in ("*", "&", "&&", "const", "[[") and i < stop:
            i += 1
        return i < stop and self.tokens[i].kind == "name"

    def drop(self, i, stop):
        self.add("statement", self.tokens[i].start, self.tokens[stop - 1].end, "", "(dropped)")

    def empty_return(self, i, stop):
        """That a code passes through the trace is not the business of a unit's tests."""
        is_traced = self.text_of(i + 1) == "COMN_TRACE" and self.close.get(i + 2) == stop - 1
        first, last = (i + 3, stop - 2) if is_traced else (i + 1, stop - 1)
        start, end = self.tokens[first].start, self.tokens[last].end
        value = self.text[start:end]
        if value not in PLAIN_RETURNS and not INTEGER.fullmatch(value):
            self.add("return", start, end, "CS_FAIL" if is_traced else "{}", show=(i, stop - 1))

    # ---- expressions ----

    def expression(self, i, stop):
        """Calls and lambdas between two tokens of a function's body."""
        while i < stop:
            token = self.tokens[i]
            if token.text == "(" and i in self.close and self.is_call(i):
                self.swap_arguments(i)
            elif token.text == "{" and self.is_lambda(i) and i in self.close:
                self.statements(i + 1, self.close[i])
                i = self.close[i]
            i += 1

    def is_call(self, i):
        before = self.tokens[i - 1] if i else None
        if before is None or before.end != self.tokens[i].start or i in self.calls:
            return False
        return (before.kind == "name" and before.text not in NO_CALLS) or before.text in (")", "]", ">")

    def swap_arguments(self, opening):
        self.calls.add(opening)
        parts, begin, i, stop = [], opening + 1, opening + 1, self.close[opening]
        while i < stop:
            if i in self.close:
                i = self.close[i]
            elif self.tokens[i].text == "<" and self.tokens[i].start == self.tokens[i - 1].end:
                i = self.end_of_template(i)
            elif self.tokens[i].text == ",":
                parts.append((begin, i))
                begin = i + 1
            i += 1
        parts.append((begin, stop))
        for (a, b), (c, d) in zip(parts, parts[1:]):
            if a < b and c < d:
                start, left_end = self.tokens[a].start, self.tokens[b - 1].end
                right_start, end = self.tokens[c].start, self.tokens[d - 1].end
                left, right = self.text[start:left_end], self.text[right_start:end]
                if left != right and "\n" not in left + right:
                    self.add("argument", start, end, right + self.text[left_end:right_start] + left)

    # ---- single tokens ----

    def token(self, i):
        token = self.tokens[i]
        if token.kind == "number":
            self.number(i)
        elif token.kind == "char":
            self.replace("constant", i, f"({token.text} + 1)")
        elif token.kind == "string":
            if self.strings:
                self.string(i)
        elif token.kind == "name":
            if token.text in NAMES and (token.text not in ("min", "max") or self.text_of(i + 1) in "(<"):
                self.replace("constant", i, NAMES[token.text])
        elif self.is_binary(i):
            self.binary(i)
        elif token.text in ("++", "--") and i not in self.headers:
            self.replace("arithmetic", i, "--" if token.text == "++" else "++")
        elif token.text in ("!", "~") or token.text == "-" and self.is_sign(i):
            self.replace("logic" if token.text == "!" else "arithmetic", i, "")

    def is_binary(self, i):
        token = self.tokens[i]
        around = self.text[token.start - 1:token.start], self.text[token.end:token.end + 1]
        return all(c.isspace() for c in around) and i > 0 and self.text_of(i - 1) != "template"

    def is_sign(self, i):
        follows = i + 1 < len(self.tokens) and self.tokens[i + 1].kind == "name" or \
            self.text_of(i + 1) == "("
        return follows and self.tokens[i + 1].start == self.tokens[i].end

    def binary(self, i):
        text = self.tokens[i].text
        for kind, table in (("comparison", COMPARISONS), ("arithmetic", ARITHMETIC), ("logic", LOGIC)):
            if text in table:
                self.replace(kind, i, table[text])
        if text in ONE_SIDED and i + 1 < len(self.tokens) and self.tokens[i + 1].kind == "number":
            for new in ONE_SIDED[text]:
                self.replace("comparison", i, new)
        if text in LOGIC:
            self.drop_operands(i)
        if text == "?":
            first = self.edge(i, -1)
            if first < i:
                self.add("condition", self.tokens[first].start, self.tokens[i - 1].end, "false")
                self.add("condition", self.tokens[first].start, self.tokens[i - 1].end, "true")

    def drop_operands(self, i):
        first, last = self.edge(i, -1, LOGIC), self.edge(i, 1, LOGIC)
        is_first = self.text_of(first - 1) not in LOGIC
        if is_first and first < i and i + 1 < len(self.tokens):
            self.add("logic", self.tokens[first].start, self.tokens[i + 1].start, "",
                     show=(first, last))
        if i < last:
            self.add("logic", self.tokens[i - 1].end, self.tokens[last].end, "", show=(first, last))

    def edge(self, i, step, also=()):
        """The last token of the operand on one side of an operator."""
        skip = self.close if step > 0 else self.open
        stops = {";", ",", "?", ":", "=", "return", "case", "(", ")", "[", "]", "{", "}", *also}
        j = i + step
        while 0 <= j < len(self.tokens):
            if j in skip:
                j = skip[j]
            elif self.tokens[j].text in stops or self.tokens[j].text.endswith("=") and \
                    self.tokens[j].text in ARITHMETIC:
                break
            j += step
        return j - step

    def number(self, i):
        match = INTEGER.fullmatch(self.tokens[i].text)
        if not match:
            self.replace("constant", i, f"({self.tokens[i].text} + 1)")
            return
        digits = match[1].replace("'", "")
        base = {"x": 16, "b": 2}.get(digits[1:2].lower(), 8 if digits[0] == "0" else 10)
        value = int(digits, base)
        for new in (value + 1, value - 1):
            if new >= 0:
                self.replace("constant", i, (hex(new) if base == 16 else str(new)) + match[2])

    def string(self, i):
        text = self.tokens[i].text
        quote = text.index('"')
        if text[quote - 1:quote] == "R" or len(text) < quote + 3 or text[quote + 1] == "\\":
            return
        new = "#" if text[quote + 1] != "#" else "%"
        self.replace("string", i, text[:quote + 1] + new + text[quote + 2:])

    # ---- what was found ----

    def replace(self, kind, i, new):
        self.add(kind, self.tokens[i].start, self.tokens[i].end, new, show=(i - 2, i + 2))

    def add(self, kind, start, end, new, label=None, show=None):
        """show: the tokens that a reader sees with the change, as far as they are on its line."""
        if "\\\n" in self.text[start:end]:
            return  # lines of a macro cannot be put back
        line = bisect.bisect_right(self.line_starts, start)
        left, right = start, end
        if show:
            begin = self.line_starts[line - 1]
            stop = self.text.find("\n", end)
            stop = len(self.text) if stop < 0 else stop
            left = max(self.tokens[max(show[0], 0)].start, begin) if show[0] >= 0 else start
            right = min(self.tokens[min(show[1], len(self.tokens) - 1)].end, stop)
            left, right = min(left, start), max(right, end)
        old = brief(self.text[left:right])
        note = f"{old} -> {label or brief(self.text[left:start] + new + self.text[end:right])}"
        self.found.append(Mutant(kind, line, start, end, new, note))


def brief(text):
    text = " ".join(text.replace("\\\n", " ").split())
    return text if len(text) <= 72 else text[:34] + " ... " + text[-33:]
