"""Generates the ctypes layer of the Python package (python/qm/_api.py) from the public C headers:
every constant, enumeration, record (with a dataclass twin and converters both ways), callback
type and function prototype.

Usage: generate_python_api.py [--check] [HEADER_DIR] [OUTPUT]
  --check  exit 1 when OUTPUT differs from what the headers give (a header changed without
           regenerating).
"""
import keyword
import pathlib
import sys

import header_reader

ROOT = pathlib.Path(__file__).resolve().parents[1]
HEADER_DIR = ROOT / "src/Application/public_headers"
OUTPUT = ROOT / "python/qm/_api.py"

SCALARS = {
    "int": ("ctypes.c_int", "int", "0"),
    "float": ("ctypes.c_float", "float", "0.0"),
    "double": ("ctypes.c_double", "float", "0.0"),
    "bool": ("ctypes.c_bool", "bool", "False"),
    "char": ("ctypes.c_char", "str", '""'),
    "int8_t": ("ctypes.c_int8", "int", "0"),
    "uint8_t": ("ctypes.c_uint8", "int", "0"),
    "int16_t": ("ctypes.c_int16", "int", "0"),
    "uint16_t": ("ctypes.c_uint16", "int", "0"),
    "int32_t": ("ctypes.c_int32", "int", "0"),
    "uint32_t": ("ctypes.c_uint32", "int", "0"),
    "int64_t": ("ctypes.c_int64", "int", "0"),
    "uint64_t": ("ctypes.c_uint64", "int", "0"),
    "va_list": ("ctypes.c_void_p", "int", "0"),
}


def camel(c_name):
    """qm_current_arm_state_t -> CurrentArmState; LogLevel stays."""
    if "_" not in c_name:
        return c_name
    words = c_name.split("_")
    words = words[1:] if words[0] == "qm" else words
    words = words[:-1] if words[-1] in ("t", "e") else words
    return "".join(w[:1].upper() + w[1:] for w in words)


def short_members(members):
    """Enumerator names without the words they all share: QM_TRIPLE_MODE_E -> TRIPLE."""
    split = [name.split("_") for name, _ in members]
    head = 0
    while all(len(s) > head + 1 and s[head] == split[0][head] for s in split):
        head += 1
    tail = 0
    while all(len(s) > head + tail + 1 and s[-1 - tail] == split[0][-1 - tail] for s in split):
        tail += 1
    names = ["_".join(s[head:len(s) - tail]) for s in split]
    if any(not n or n[0].isdigit() or keyword.iskeyword(n) for n in names) or len(set(names)) < len(names):
        names = [name for name, _ in members]
    return [(n, v) for n, (_, v) in zip(names, members)]


class Generator:
    def __init__(self, headers):
        self.h = headers
        self.enums = {e.name: e for e in headers.enums}
        self.records = {r.name: r for r in headers.records}
        self.callbacks = {c.name: c for c in headers.callbacks}
        self.out = []

    def emit(self, line=""):
        self.out.append(line)

    # ---- types ----

    def ctype(self, t, result=False):
        base = t.base
        if base in SCALARS:
            expr = SCALARS[base][0]
        elif base in self.enums:
            expr = "ctypes.c_int"
        elif base in self.records or base in self.callbacks:
            expr = base
        elif base == "void":
            expr = "None"
        else:
            raise SystemExit(f"unknown C type {base}")
        if t.pointers > 1:
            raise SystemExit(f"pointer to pointer of {base} is not supported")
        if t.pointers == 1:
            if base == "char" and (t.const or result):
                expr = "ctypes.c_char_p"
            elif base == "void":
                expr = "ctypes.c_void_p"
            else:
                expr = f"ctypes.POINTER({expr})"
        for d in reversed(t.dims):
            expr = f"({expr} * {d})"
        return expr

    def is_text(self, t):
        return t.base == "char" and t.pointers == 0 and len(t.dims) == 1

    def default(self, t):
        """The dataclass default of a field: an expression, or a factory when prefixed by '*'."""
        if t.pointers:
            return "*list"
        if self.is_text(t):
            return '""'
        if t.base in self.records:
            value = f"{camel(t.base)}()"
        elif t.base in self.enums:
            value = f"{camel(t.base)}.{short_members(self.enums[t.base].members)[0][0]}"
        else:
            value = SCALARS[t.base][2]
        if not t.dims:
            return "*" + camel(t.base) if t.base in self.records else value
        for d in reversed(t.dims):
            value = f"[{value} for _ in range({d})]" if "(" in value or "[" in value else f"[{value}] * {d}"
        return f"*lambda: {value}"

    def annotation(self, t):
        if t.pointers or t.dims and not self.is_text(t):
            return "list"
        if t.base in self.records or t.base in self.enums:
            return f'"{camel(t.base)}"'
        return SCALARS[t.base][1]

    # ---- conversions ----

    def to_py(self, f):
        t, v = f.type, f"self.{f.name}"
        if t.pointers:
            return "[]"
        if self.is_text(t):
            return f"_text({v})"
        if t.base in self.records:
            item = "{}.as_record()"
        elif t.base in self.enums:
            item = "_enum(" + camel(t.base) + ", {})"
        else:
            item = None
        if not t.dims:
            return item.format(v) if item else v
        if len(t.dims) == 1:
            return f"[{item.format('x')} for x in {v}]" if item else f"list({v})"
        inner = f"[{item.format('x')} for x in row]" if item else "list(row)"
        return f"[{inner} for row in {v}]"

    def to_c(self, f):
        t, v, s = f.type, f"self.{f.name}", f"s.{f.name}"
        if t.pointers:
            return f"if {v}:\n            {s} = ({self.ctype(header_reader.CType(t.base))} * len({v}))(*{v})"
        if self.is_text(t):
            return f"{s} = _bytes({v}, {t.dims[0]})"
        if not t.dims:
            if t.base in self.records:
                return f"{s} = {v}.as_struct()"
            return f"{s} = {v}"
        if t.base in self.records:
            return f"for i, x in enumerate({v}[:{t.dims[0]}]):\n            {s}[i] = x.as_struct()"
        if len(t.dims) == 1:
            return f"_fill({s}, {v})"
        return f"for i, row in enumerate({v}[:{t.dims[0]}]):\n            _fill({s}[i], row)"

    # ---- sections ----

    def prologue(self):
        self.emit('"""ctypes declarations of the public C API, generated by scripts/generate_python_api.py from')
        self.emit("the public headers; do not edit. Every record has a ctypes Structure under its C name and a")
        self.emit('dataclass twin (qm_pose_t and Pose); as_record() and as_struct() convert between them."""')
        self.emit("# fmt: off")
        self.emit("import ctypes")
        self.emit("import dataclasses")
        self.emit("import enum")
        self.emit()
        self.emit()
        self.emit("def _text(raw):")
        self.emit('    return raw.decode("utf-8", "replace")')
        self.emit()
        self.emit()
        self.emit("def _bytes(text, size):")
        self.emit('    return (text.encode() if isinstance(text, str) else bytes(text))[:size - 1]')
        self.emit()
        self.emit()
        self.emit("def _fill(array, values):")
        self.emit("    n = min(len(array), len(values))")
        self.emit("    array[:n] = list(values)[:n]")
        self.emit()
        self.emit()
        self.emit("def _enum(kind, value):")
        self.emit("    try:")
        self.emit("        return kind(value)")
        self.emit("    except ValueError:  # a value the controller sent that the enumeration does not name")
        self.emit("        return value")
        self.emit()
        self.emit()
        for name, value in self.h.constants.items():
            self.emit(f"{name} = {value!r}")

    def enum(self, e):
        self.emit()
        self.emit()
        self.emit(f"class {camel(e.name)}(enum.IntEnum):")
        self.emit(f'    """{e.name}"""')
        for name, value in short_members(e.members):
            self.emit(f"    {name} = {value}")
        self.emit()
        for (c_name, _), (name, _) in zip(e.members, short_members(e.members)):
            self.emit(f"{c_name} = {camel(e.name)}.{name}")

    def record(self, r):
        py = camel(r.name)
        self.emit()
        self.emit()
        self.emit(f"class {r.name}(ctypes.Structure):")
        self.emit("    _fields_ = [")
        for f in r.fields:
            self.emit(f'        ("{f.name}", {self.ctype(f.type)}),')
        self.emit("    ]")
        self.emit()
        self.emit("    def as_record(self):")
        self.emit(f"        return {py}(")
        for f in r.fields:
            self.emit(f"            {f.name}={self.to_py(f)},")
        self.emit("        )")
        self.emit()
        self.emit()
        self.emit("@dataclasses.dataclass")
        self.emit(f"class {py}:")
        self.emit(f'    """{r.name}"""')
        for f in r.fields:
            if keyword.iskeyword(f.name):
                raise SystemExit(f"{r.name}.{f.name} is a Python keyword")
            default = self.default(f.type)
            if default.startswith("*"):
                default = f"dataclasses.field(default_factory={default[1:]})"
            self.emit(f"    {f.name}: {self.annotation(f.type)} = {default}")
        self.emit()
        self.emit("    def as_struct(self):")
        self.emit(f"        s = {r.name}()")
        for f in r.fields:
            self.emit(f"        {self.to_c(f)}")
        self.emit("        return s")

    def callback(self, c):
        args = ", ".join([self.ctype(c.result, result=True)] + [self.ctype(p.type) for p in c.params])
        self.emit()
        self.emit(f"{c.name} = ctypes.CFUNCTYPE({args})")

    def functions(self):
        self.emit()
        self.emit("# name: (result, argument types, argument names)")
        self.emit("FUNCTIONS = {")
        for f in self.h.functions:
            args = "".join(self.ctype(p.type) + ", " for p in f.params)
            names = "".join(f'"{p.name}", ' for p in f.params)
            self.emit(f'    "{f.name}": ({self.ctype(f.result, result=True)}, ({args}), ({names})),')
        self.emit("}")
        self.emit()
        self.emit()
        self.emit("def bind(cdll):")
        self.emit('    """Declares every function of the C API on a loaded library."""')
        self.emit("    for name, (result, args, _) in FUNCTIONS.items():")
        self.emit("        function = getattr(cdll, name)")
        self.emit("        function.restype = result")
        self.emit("        function.argtypes = args")
        self.emit("    return cdll")

    def generate(self):
        names = [camel(n) for n in list(self.enums) + list(self.records)]
        if len(set(names)) != len(names):
            raise SystemExit("two declarations map to the same Python name")
        self.prologue()
        for e in self.h.enums:
            self.enum(e)
        for r in self.h.records:
            self.record(r)
        self.emit()
        for c in self.h.callbacks:
            self.callback(c)
        self.functions()
        return "\n".join(self.out) + "\n"


def layout_probe(headers):
    """A C program printing "record size" and "record.field offset" lines for every record."""
    lines = ['#include <stddef.h>', '#include <stdio.h>', '#include "qm_interface.h"', "int main(void) {"]
    for r in headers.records:
        lines.append(f'    printf("{r.name} %zu\\n", sizeof({r.name}));')
        for f in r.fields:
            lines.append(f'    printf("{r.name}.{f.name} %zu\\n", offsetof({r.name}, {f.name}));')
    lines += ["    return 0;", "}"]
    return "\n".join(lines) + "\n"


def main(argv):
    check = "--check" in argv
    args = [a for a in argv if a != "--check"]
    header_dir = pathlib.Path(args[0]) if args else HEADER_DIR
    output = pathlib.Path(args[1]) if len(args) > 1 else OUTPUT
    text = Generator(header_reader.read_headers(header_dir)).generate()
    if check:
        if not output.exists() or output.read_text() != text:
            print(f"{output} is out of date: run python3 scripts/generate_python_api.py")
            return 1
        print(f"{output} matches the headers")
        return 0
    output.write_text(text)
    print(f"wrote {output}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
