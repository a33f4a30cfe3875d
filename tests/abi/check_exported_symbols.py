"""The ABI of libqm_api.so.1 changes only on purpose: the dynamic symbols the library exports
must equal the checked-in list, and every exported C function must be declared in a public header.

QM_Service's methods are listed mangled, so their parameter types are part of the list; the
public-surface check keeps those equal to the C functions' types.
Usage: check_exported_symbols.py LIBRARY HEADER_DIR [NM] [--update]
"""
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "facade"))
from check_public_surface import declared_functions  # noqa: E402

SYMBOL_LIST = pathlib.Path(__file__).resolve().parent / "libqm_api.so.1.symbols"
HEADER = ("# Dynamic symbols of libqm_api.so.1, one per line (C++ ones mangled).\n"
          "# Regenerate deliberately: python3 tests/abi/check_exported_symbols.py LIBRARY HEADER_DIR NM --update\n")


def exported(library, nm):
    """Mangled name -> readable name of every defined dynamic symbol."""
    def names(demangle):
        args = [nm, "-D", "--defined-only"] + (["-C"] if demangle else []) + [library]
        lines = subprocess.run(args, capture_output=True, text=True, check=True).stdout.splitlines()
        return [line.split(" ", 2)[2] for line in lines if len(line.split(" ", 2)) == 3]
    return dict(zip(names(False), names(True)))


def main():
    args = [a for a in sys.argv[1:] if a != "--update"]
    library, header_dir = args[:2]
    nm = args[2] if len(args) > 2 else "nm"
    symbols = exported(library, nm)
    if "--update" in sys.argv:
        SYMBOL_LIST.write_text(HEADER + "".join(f"{s}\n" for s in sorted(symbols)))
        print(f"{len(symbols)} symbols written to {SYMBOL_LIST}")
        return 0
    listed = {line for line in SYMBOL_LIST.read_text().splitlines() if line and not line.startswith("#")}
    declared = set(declared_functions(header_dir))
    problems = [f"new export {symbols[s]}: an addition to the ABI (minor version); if deliberate, update the list"
                for s in sorted(symbols.keys() - listed)]
    problems += [f"{s} is no longer exported: an incompatible change (new soname)" for s in sorted(listed - symbols.keys())]
    problems += [f"{s} is exported but declared in no public header"
                 for s in sorted(symbols) if not s.startswith("_Z") and s not in declared]
    for p in problems:
        print(p)
    print(f"{len(symbols)} exported symbols, {len(listed)} listed, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
