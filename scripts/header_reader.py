"""Reads the declarations of the public C headers: constants, enumerations, records, callback
types and functions, in the order the headers declare them.

The headers are plain C with one declaration per statement and no nested braces, so a few
regular expressions read them completely; the readers of the public surface (the surface check,
the Python binding generator) share this one.
"""
import dataclasses
import pathlib
import re

# The C++ facade repeats the functions as methods; it is not part of the C surface.
FACADE_HEADER = "qm_service.h"
# Headers in the order their declarations build on each other.
C_HEADERS = ("qm_version.h", "qm_define.h", "qm_interface.h")


@dataclasses.dataclass
class CType:
    """A C type as written: base name, pointer depth, const-ness and array dimensions."""
    base: str
    pointers: int = 0
    const: bool = False
    dims: tuple = ()


@dataclasses.dataclass
class Declarator:
    name: str
    type: CType


@dataclasses.dataclass
class Enum:
    name: str
    members: list  # (name, value)


@dataclasses.dataclass
class Record:
    name: str
    fields: list  # Declarator


@dataclasses.dataclass
class Function:
    name: str
    result: CType
    params: list  # Declarator


@dataclasses.dataclass
class Headers:
    constants: dict
    enums: list
    records: list
    callbacks: list  # Function, the callback type's name as name
    functions: list

    def function_names(self):
        return [f.name for f in self.functions]


def _strip(text):
    text = re.sub(r"/\*.*?\*/|//[^\n]*", " ", text, flags=re.S)
    return text


def _constants(text):
    constants = {}
    for name, value in re.findall(r"^\s*#\s*define\s+(\w+)[ \t]+(\S[^\n]*?)\s*$", text, flags=re.M):
        if re.fullmatch(r"-?\d+", value):
            constants[name] = int(value)
        elif re.fullmatch(r'"[^"]*"', value):
            constants[name] = value[1:-1]
    return constants


def parse_type(text, constants):
    """Splits "const float* joint" or "float data[4][4]" into its name and CType."""
    text = " ".join(text.split())
    dims = tuple(int(constants.get(d, d)) for d in re.findall(r"\[\s*(\w+)\s*\]", text))
    text = re.sub(r"\[.*", "", text).strip()
    match = re.fullmatch(r"(.*?)(\w+)", text)
    words, name = match.group(1), match.group(2)
    pointers = words.count("*")
    tokens = words.replace("*", " ").split()
    const = "const" in tokens
    base = " ".join(t for t in tokens if t != "const")
    if not base:  # an unnamed parameter such as "void"
        base, name = name, ""
    return Declarator(name, CType(base, pointers, const, dims))


def _params(text, constants):
    text = text.strip()
    if text in ("", "void"):
        return []
    return [parse_type(p, constants) for p in text.split(",")]


def _enum_members(body):
    members, value = [], -1
    for item in filter(None, (i.strip() for i in body.split(","))):
        name, _, given = item.partition("=")
        value = int(given.strip(), 0) if given.strip() else value + 1
        members.append((name.strip(), value))
    return members


_BLOCK = re.compile(r"typedef\s+(enum|struct)\s*\w*\s*\{(.*?)\}\s*(\w+)\s*;", re.S)
_CALLBACK = re.compile(r"typedef\s+([\w\s\*]+?)\(\s*\*\s*(\w+)\s*\)\s*\(([^)]*)\)\s*;")
_FUNCTION = re.compile(r"([\w\s\*]+?)\b(qm_\w+)\s*\(([^)]*)\)\s*;")


def read_headers(header_dir):
    """Every C declaration of the public headers in `header_dir`."""
    header_dir = pathlib.Path(header_dir)
    texts = [header_dir / h for h in C_HEADERS]
    texts += sorted(p for p in header_dir.glob("*.h") if p.name not in C_HEADERS + (FACADE_HEADER,))
    constants, found = {}, []
    for path in texts:
        raw = _strip(path.read_text())
        constants.update(_constants(raw))
        text = re.sub(r"^\s*#.*$", "", raw, flags=re.M)
        for m in _BLOCK.finditer(text):
            found.append((path, m.start(), "block", m))
        text = _BLOCK.sub(lambda m: " " * len(m.group(0)), text)
        for m in _CALLBACK.finditer(text):
            found.append((path, m.start(), "callback", m))
        text = _CALLBACK.sub(lambda m: " " * len(m.group(0)), text)
        for m in _FUNCTION.finditer(text):
            found.append((path, m.start(), "function", m))
    headers = Headers(constants, [], [], [], [])
    order = {p: i for i, p in enumerate(texts)}
    for _, _, kind, m in sorted(found, key=lambda f: (order[f[0]], f[1])):
        if kind == "block" and m.group(1) == "enum":
            headers.enums.append(Enum(m.group(3), _enum_members(m.group(2))))
        elif kind == "block":
            fields = [parse_type(f, constants) for f in m.group(2).split(";") if f.strip()]
            headers.records.append(Record(m.group(3), fields))
        elif kind == "callback":
            result = parse_type(m.group(1) + " x", constants).type
            headers.callbacks.append(Function(m.group(2), result, _params(m.group(3), constants)))
        else:
            result = parse_type(m.group(1) + " x", constants).type
            headers.functions.append(Function(m.group(2), result, _params(m.group(3), constants)))
    return headers
