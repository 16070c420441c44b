"""Plants faults in a C++ source: each mutant is the source with one small change.

  (1) cut the text into tokens; comments, preprocessor lines, attributes, assertions and operators'
      names stay as they are
  (2) tell braces around code from those of types, namespaces and initialisers
  (3) take each function body apart into statements
  (4) make mutants of tokens, of conditions and of statements

No compiler helps: a mutant that means nothing does not compile and does not count. Binary operators
have spaces on both sides, as clang-format writes them; template brackets and references have not.
"""

import dataclasses
import hashlib
import re

TOKEN = re.compile(r"""
    (?P<blank>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\\\n]|\\.)*)
  | (?P<string>(?:u8|[uUL])?(?:R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"|"(?:[^"\\]|\\.)*"))
  | (?P<character>'(?:[^'\\]|\\.)+')
  | (?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><=>|<<=|>>=|\.\.\.|::|->|\+\+|--|&&|\|\||<<|>>|[-<>=!+*/%&|^]=|.)
    """, re.VERBOSE | re.MULTILINE | re.DOTALL)
PARTNERS = {"(": ")", "[": "]", "{": "}"}

# By the group of names: the operator and its replacement.
BINARY = {
    "relation": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "arithmetic": {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/"},
    "assignment": {"+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "%=": "/=", "&=": "|=",
                   "|=": "&=", "^=": "|=", "<<=": ">>=", ">>=": "<<="},
    "logic": {"&&": "||", "||": "&&"},
    "bits": {"&": "|", "|": "&", "^": "|", "<<": ">>", ">>": "<<"},
}
TYPES = {"class", "struct", "union", "enum", "namespace", "extern"}
BEFORE_CODE = {")", "const", "noexcept", "override", "else", "do", "try", "mutable", "]"}
HEADS = {"if", "while", "for", "switch", "catch"}
DECLARE = {"using", "static", "constexpr", "typedef", "struct", "friend", "static_assert", "goto"}
ENDS = {"return", "break", "continue", "throw"}
UNARY_PLACES = {"(", "[", ",", "=", "return", "?", ":", "&&", "||", "!", "==", "!="}
# Returned values that {} is the same as, or that the other operators change.
PLAIN_VALUES = {"false", "true", "nullptr", "{ }", "0", "* this"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclasses.dataclass(frozen=True)
class Mutant:
    """Replaces the characters from `begin` to `end`. `before` and `after` are the lines around them,
    with single spaces: they name the mutant wherever its line moves. `content` is a hash of the file."""
    content: str
    file: str
    line: int
    column: int
    operator: str
    begin: int
    end: int
    replacement: str
    before: str
    after: str

    @property
    def name(self):
        return f"{self.file}:{self.line}:{self.column}:{self.operator}"

    def applied_to(self, text):
        return text[:self.begin] + self.replacement + text[self.end:]


def tokens_of(text):
    tokens = [Token(match.lastgroup if match.lastgroup != "mark" else "string", match[0],
                    match.start(), match.end())
              for match in TOKEN.finditer(text) if match.lastgroup != "blank"]
    return without_fixed(tokens)


def without_fixed(tokens):
    """Leaves out attributes and replaces assertions by an empty statement's semicolon."""
    kept, i = [], 0
    while i < len(tokens):
        texts = [token.text for token in tokens[i:i + 2]]
        if texts == ["[", "["]:
            while [token.text for token in tokens[i:i + 2]] != ["]", "]"]:
                i += 1
            i += 2
        elif texts[0] in ("static_assert", "assert"):
            while tokens[i].text != ";":
                i += 1
        else:
            kept.append(tokens[i])
            i += 1
    return kept


class Mutator:
    """The mutants of one source."""

    def __init__(self, file, text):
        self.file = file
        self.text = text
        self.content = hashlib.sha256(text.encode()).hexdigest()[:16]
        self.tokens = tokens_of(text)
        self.texts = [token.text for token in self.tokens]
        self.mutants = {} # by name
        self.partner = {}
        self.code = set() # indices of the braces around code
        self._match_braces()

    def all(self):
        for i in range(len(self.tokens)):
            self._mutate_token(i)
        for i in self.code: # those in others come twice, as the same mutants
            self._walk(i + 1, self.partner[i])
        return sorted(self.mutants.values(), key=lambda mutant: (mutant.line, mutant.column))

    def _add(self, operator, begin, end, replacement):
        """Plants `replacement` for the text from `begin` to `end`."""
        line = self.text.count("\n", 0, begin) + 1
        first = self.text.rfind("\n", 0, begin) + 1
        last = self.text.find("\n", end - 1)
        last = len(self.text) if last < 0 else last
        around = self.text[first:begin] + replacement + self.text[end:last]
        mutant = Mutant(self.content, self.file, line, begin - first + 1, operator, begin, end,
                        replacement, " ".join(self.text[first:last].split()),
                        " ".join(around.split()))
        self.mutants[mutant.name] = mutant

    def _replace(self, operator, i, replacement):
        self._add(operator, self.tokens[i].begin, self.tokens[i].end, replacement)

    # ---- braces

    def _match_braces(self):
        open_ones = []
        for i, text in enumerate(self.texts):
            if text in PARTNERS:
                if text == "{" and self._begins_code(i, open_ones):
                    self.code.add(i)
                open_ones.append(i)
            elif open_ones and text == PARTNERS[self.texts[open_ones[-1]]]:
                self.partner[open_ones[-1]] = i
                self.partner[i] = open_ones.pop()

    def _begins_code(self, i, open_ones):
        if i == 0:
            return False
        begin = self._begin_of_declaration(i)
        if self._declares_type(begin, i):
            return False
        previous = self.texts[i - 1]
        if previous in BEFORE_CODE:
            return True
        if previous in (";", "{", "}", ":"):
            # A block in a block, or the body of a constructor after its last initialiser.
            return open_ones[-1:] and open_ones[-1] in self.code if previous != "}" else self.texts[begin] != "{"
        return "->" in self.texts[max(begin, i - 8):i] and ")" in self.texts[begin:i]

    def _begin_of_declaration(self, i):
        """The first token after the last end of a statement; `template <…>` is none of it."""
        begin = i
        while begin > 0 and self.texts[begin - 1] not in (";", "{"):
            if self.texts[begin - 1] == "}" and self.partner.get(begin - 1) in self.code:
                break
            begin -= 1
        if self.texts[begin] == "template":
            depth = 0
            for at in range(begin + 1, i):
                depth += {"<": 1, ">": -1, ">>": -2}.get(self.texts[at], 0)
                if depth == 0:
                    return at + 1
        return begin

    def _declares_type(self, begin, i):
        """Whether a keyword of types is there, other than for a parameter."""
        depth = 0
        for text in self.texts[begin:i]:
            depth += {"(": 1, ")": -1}.get(text, 0)
            if text in TYPES and depth == 0:
                return True
        return False

    # ---- tokens

    def _spaced(self, i):
        token = self.tokens[i]
        return self.text[token.begin - 1].isspace() and self.text[token.end:token.end + 1].isspace()

    def _mutate_token(self, i):
        token, previous = self.tokens[i], self.texts[i - 1] if i else ""
        if previous == "operator":
            return
        if token.kind == "sign":
            self._mutate_sign(i, token.text, previous)
        elif token.kind == "number":
            self._mutate_number(i, previous)
        elif token.kind == "string" and previous != "extern":
            end = token.text.rindex(')' if 'R"' in token.text[:4] else '"')
            self._replace("text", i, token.text[:end] + "~" + token.text[end:])
        elif token.kind == "character":
            self._mutate_character(i)
        elif token.text in ("true", "false"):
            self._replace("boolean", i, "false" if token.text == "true" else "true")
        elif token.text == "noexcept" and self._stands_alone(i):
            self._replace("noexcept", i, "")

    def _stands_alone(self, i):
        """Whether the function of a noexcept has no second declaration, which would repeat it."""
        if self.texts[i + 1] in ("(", ";"):
            return False
        opening = max((self.partner[at] for at in range(i) if self.texts[at] == ")"), default=0)
        return "::" not in self.texts[max(0, opening - 2):opening]

    def _mutate_sign(self, i, text, previous):
        if self._spaced(i) and previous != "template":
            of_texts = "string" in [token.kind for token in self.tokens[i - 1:i + 2]]
            for operator, replacements in BINARY.items():
                if text in replacements and not self._ends_template(i) and not (
                        of_texts and text in ("+", "+=")):
                    self._replace(operator, i, replacements[text])
        if text in ("++", "--"):
            self._replace("step", i, "--" if text == "++" else "++")
        elif text in ("!", "-", "~") and previous in UNARY_PLACES and not self._spaced(i):
            self._replace("unary", i, "")
        elif text == "?":
            self._negate(self._begin_of_condition(i), i)

    def _ends_template(self, i):
        """Whether a spaced > ends the brackets of a `template <…>`."""
        begin = self._begin_of_declaration(i)
        return self.texts[i] == ">" and "template" in self.texts[max(0, begin - 1):i]

    def _mutate_number(self, i, previous):
        text = self.texts[i]
        if previous == "=" and self.texts[i - 2] in (")", "const", "noexcept", "override"):
            return # a pure virtual function
        digits = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+\.[\d']*|[\d']+)([uUlLzZfF]*)", text)
        if digits is None:
            return
        number, suffix = digits[1].replace("'", ""), digits[2]
        if "." in number:
            self._replace("constant+1", i, f"{float(number) + 1}{suffix}")
            return
        value, shown = (int(number, 16), hex) if "x" in number.lower() else (int(number), str)
        self._replace("constant+1", i, shown(value + 1) + suffix)
        if value == 1:
            self._replace("constant-1", i, shown(0) + suffix)

    def _mutate_character(self, i):
        content = self.texts[i][1:-1]
        other = chr(ord(content) + 1) if len(content) == 1 else "x"
        self._replace("character", i, "'\\''" if other == "'" else f"'{other}'".replace("'\\'", "'\\\\'"))

    # ---- conditions

    def _negate(self, begin, end):
        """The condition of the tokens from `begin` to before `end`, unless another mutant is the same:
        one without && and || that compares once or begins with !."""
        inner = self.texts[begin:end]
        if not inner or "=" in inner:
            return
        plain = "&&" not in inner and "||" not in inner
        if plain and (inner[0] == "!" or inner.count("==") + inner.count("!=") == 1):
            return
        first, last = self.tokens[begin].begin, self.tokens[end - 1].end
        self._add("negation", first, last, f"!({self.text[first:last]})")

    def _begin_of_condition(self, i):
        """Of the one that ends before the ? at `i`."""
        begin = i
        while begin > 0:
            text = self.texts[begin - 1]
            if text in (")", "]", "}"):
                begin = self.partner[begin - 1]
            elif text in ("(", "[", "{", ",", "=", ";", "?", ":", "return", "<<", "+="):
                break
            else:
                begin -= 1
        return begin

    # ---- statements

    def _walk(self, begin, end):
        """The statements between the braces of a block."""
        i, controlled, last = begin, False, None
        while i < end:
            text = self.texts[i]
            if text == ";":
                i, last = i + 1, None
            elif text == "{":
                if i in self.code:
                    self._walk(i + 1, self.partner[i])
                i, controlled, last = self.partner[i] + 1, False, None
            elif text in HEADS:
                i, controlled, last = self._walk_head(i), True, None
            elif text in ("else", "do", "try"):
                i, controlled, last = i + 1, True, None
            elif text in ("case", "default"):
                while self.texts[i] != ":":
                    i += 1
                i, last = i + 1, None
            else:
                stop = self._end_of_statement(i, end)
                self._mutate_statement(i, stop, controlled)
                movable = not controlled and text not in ENDS | DECLARE
                if last is not None and movable:
                    self._swap(last, i, stop)
                i, controlled, last = stop + 1, False, i if movable else None

    def _walk_head(self, i):
        """Returns the index after the parentheses of if, while, for, switch or catch."""
        word = self.texts[i]
        opening = self.texts.index("(", i)
        closing = self.partner[opening]
        self._walk_inner_code(opening, closing)
        if word in ("if", "while", "for"):
            ends = [at for at in range(opening + 1, closing) if self.texts[at] == ";"]
            begin = ends[0] + 1 if ends else opening + 1
            if word != "for" or ends:
                self._negate(begin, ends[1] if len(ends) > 1 else closing)
        return closing + 1

    def _walk_inner_code(self, begin, end):
        """The bodies of lambdas in an expression."""
        for i in range(begin, end):
            if i in self.code:
                self._walk(i + 1, self.partner[i])

    def _end_of_statement(self, i, end):
        stop = i
        while stop < end and self.texts[stop] != ";":
            stop = self.partner.get(stop, stop) + 1
        self._walk_inner_code(i, stop)
        return min(stop, end - 1)

    def _mutate_statement(self, i, stop, controlled):
        """The statement of the tokens from `i` to the semicolon at `stop`. A function may do without a
        return of a value only where that is under a condition."""
        word = self.texts[i]
        begin, end = self.tokens[i].begin, self.tokens[stop].end
        if word in ("break", "continue"):
            self._replace("jump", i, "continue" if word == "break" else "break")
        if word == "return" and stop > i + 1:
            value = " ".join(self.texts[i + 1:stop])
            if value not in PLAIN_VALUES and not re.fullmatch(r"\d+|.*:: none", value):
                self._add("return", self.tokens[i + 1].begin, self.tokens[stop - 1].end, "{}")
            if controlled:
                self._add("removal", begin, end, "{}")
        elif word in ENDS or (
                word not in DECLARE and not self._declares(i, stop)):
            self._add("removal", begin, end, "{}")

    def _declares(self, i, stop):
        """Whether two names, or a type's end and a name, follow each other at the beginning."""
        while self.texts[i] in ("*", "++", "--", "!", "("):
            i += 1
        for at in range(i, stop - 1):
            if self.texts[at + 1] in ("(", "=", "[", ".", "->", ";", "{") and at == i:
                return False
            if self.texts[at] in ("(", "=", "[", ".", "->", "{"):
                return False
            if self.tokens[at + 1].kind == "word" and (
                    self.tokens[at].kind == "word" or self.texts[at] in (">", "*", "&", "&&", "]")):
                return True
        return False

    def _swap(self, first, second, stop):
        """Exchanges two statements whose order may matter: a declaration stays before its use, and of
        two declarations or assignments at least one has to call something."""
        middle = second - 1
        name, other = self._made_name(first, middle), self._made_name(second, stop)
        if self._declares(first, middle) and name in self.texts[second:stop]:
            return
        earlier, later = self.texts[first:middle], self.texts[second:stop]
        if name and other and name not in later and other not in earlier and (
                "(" not in earlier or "(" not in later or "const" in earlier and "const" in later):
            return
        begin, end = self.tokens[first].begin, self.tokens[stop].end
        between = self.text[self.tokens[middle].end:self.tokens[second].begin]
        self._add("swap", begin, end, self.text[self.tokens[second].begin:end] + between +
                  self.text[begin:self.tokens[middle].end])

    def _made_name(self, i, stop):
        """What a statement declares or assigns; nothing for other statements."""
        for at in range(i, stop + 1):
            if self.texts[at] in ("=", "+=", "-=") or (
                    self.texts[at] in ("(", "{", "[", ";") and self._declares(i, stop)):
                return self.texts[at - 1]
        return None


def mutants_of(file, text):
    """All mutants of a source, in the order of their places."""
    return Mutator(file, text).all()
