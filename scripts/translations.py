#!/usr/bin/env python3
"""Checks the texts for users: every text that the sources hand to tr(), translate() or QT_TRANSLATE_NOOP() has an English
translation in its context, with the same placeholders; every translation belongs to a text; and no Russian text goes
past these calls. All sources of the product are read, with a reader of its own: Qt 5's takes neither nested
namespaces written in one nor digit separators.

Use: scripts/translations.py [DIRECTORY]. Prints what is wrong, with its place; the exit code tells."""
import re, sys
from collections import Counter
from pathlib import Path
from xml.etree import ElementTree

ROOT = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
TRANSLATIONS = ROOT / "translations" / "orvane_en.ts"
# Words that are data: names that are read in both languages, and examples of the reference.
WORDS = re.compile(r"platform/geometry/measures/Units\.cpp|engine/functions/DateTokens\.cpp|"
                   r"host/adaptor/functions/\w+Records\.cpp|host/providers/text/TextTable\.cpp")

RUSSIAN = re.compile("[А-Яа-яЁё]")
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|#\s*include[^\n]*|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|'
                   r"""(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|(?:u8|[uUL])?'(?:\\.|[^'\\\n])+'|::|\d(?:'?[\w.])*|\w+|\S""", re.S)
ESCAPE = re.compile(r"\\(x[0-9a-fA-F]+|u[0-9a-fA-F]{4}|.)", re.S)
CLASS = re.compile(r"\b(?:class|struct) (?:[A-Z_]+ )?(\w+)[^;{]*\{")
NAMESPACE = re.compile(r"^(?:inline )?namespace ([\w:]+) \{", re.M)
DECLARATIONS = re.compile(r"^namespace [\w:]+ \{[^{}]*\}", re.M)
MARK = re.compile(r"\bQ_DECLARE_TR_FUNCTIONS\(([\w:]+)\)|\bQ_OBJECT\b")
MEMBER = re.compile(r"^(?=[^\s#/}]).*?\b(\w+)::~?\w+(?:\(| \{)", re.M)


def value(literal):
    def plain(found):
        code = found[1]
        return chr(int(code[1:], 16)) if code[0] in "xu" and len(code) > 1 else {"n": "\n", "t": "\t"}.get(code, code)
    return ESCAPE.sub(plain, literal[literal.index('"') + 1:-1])


def last(pattern, text, end):
    found = None
    for found in pattern.finditer(text, 0, end):
        pass
    return found


def contexts_of(text):
    """The classes of a file that have a tr() of their own, with their contexts."""
    contexts = {"QObject": "QObject"}
    text = DECLARATIONS.sub(lambda found: " " * len(found[0]), text)
    for mark in MARK.finditer(text):
        name = last(CLASS, text, mark.start())[1]
        space = last(NAMESPACE, text, mark.start())
        contexts[name] = mark[1] or (space[1] + "::" if space else "") + name
    return contexts


class Source:
    def __init__(self, path):
        self.name = path.relative_to(ROOT).as_posix()
        self.text = path.read_text()
        self.contexts = contexts_of(self.text)

    def place(self, position):
        return f"{self.name}:{self.text.count(chr(10), 0, position) + 1}"

    def texts(self, classes):
        """(context, text, place) of each; the context is None for Russian outside the calls, "" where it is unknown."""
        tokens = [(found[0], found.start()) for found in TOKEN.finditer(self.text)
                  if not re.match(r"//|/\*|#", found[0])]
        words = [token for token, _ in tokens]
        i = 0
        while i < len(tokens):
            if '"' not in words[i] or words[i][0] == "'":
                i += 1
                continue
            start = i
            while i < len(tokens) and '"' in words[i] and words[i][0] != "'":
                i += 1
            text = "".join(map(value, words[start:i]))
            before = words[max(start - 4, 0):start]
            place = tokens[start][1]
            if before[-2:] == ["tr", "("]:
                if words[start - 3] == "::":
                    name = words[start - 4]
                else:
                    member = last(MEMBER, self.text, place)
                    name = member[1] if member else ""
                yield self.contexts.get(name, classes.get(name, "")), text, self.place(place)
            elif before[-1:] == [","] and before[-4:-2] in (["translate", "("], ["QT_TRANSLATE_NOOP", "("]):
                yield value(before[-2]), text, self.place(place)
            elif RUSSIAN.search(text) and not WORDS.fullmatch(self.name):
                yield None, text, self.place(place)


def translations():
    """(context, text) -> translation, and what is wrong with the file itself."""
    found, wrong = {}, []
    for context in ElementTree.parse(TRANSLATIONS).iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            key = (name, message.findtext("source"))
            translation = message.find("translation")
            if key in found or len(message) != 2:
                wrong.append(f"{TRANSLATIONS.name}: twice or two in one in {name}: {key[1]}")
            if translation is None or translation.get("type") or not (translation.text or "").strip():
                wrong.append(f"{TRANSLATIONS.name}: unfinished in {name}: {key[1]}")
                continue
            if RUSSIAN.search(translation.text):
                wrong.append(f"{TRANSLATIONS.name}: Russian in the translation in {name}: {key[1]}")
            found[key] = translation.text
    return found, wrong


def placeholders(text):
    return set(re.findall(r"%L?\d|%n", text))


def main():
    sources = [Source(path) for folder in ("platform", "engine", "include", "host")
               for path in sorted((ROOT / folder).rglob("*")) if path.suffix in (".h", ".cpp")]
    classes = {name: context for source in sources if source.name.endswith(".h")
               for name, context in source.contexts.items()}
    english, wrong = translations()
    used = Counter()
    for source in sources:
        for context, text, place in source.texts(classes):
            if context is None:
                wrong.append(f"{place}: not handed to a translation: {text}")
            elif not context:
                wrong.append(f"{place}: the context of this tr() is not known: {text}")
            elif (context, text) not in english:
                wrong.append(f"{place}: no translation in {context}: {text}")
            else:
                used[context, text] += 1
                if placeholders(text) != placeholders(english[context, text]):
                    wrong.append(f"{place}: other placeholders in the translation: {text} / {english[context, text]}")
    for context, text in english:
        if not used[context, text]:
            wrong.append(f"{TRANSLATIONS.name}: in no source of {context}: {text}")
    print(*wrong, sep="\n", end="\n" if wrong else "")
    print(f"translations: {len(used)} texts, {len(wrong)} wrong", file=sys.stderr)
    return 1 if wrong or not used else 0


if __name__ == "__main__":
    sys.exit(main())
