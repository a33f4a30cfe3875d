"""The public surface is complete: every qm_* function that the public headers declare has a
QM_Service method of the same signature and an exported definition in libqm_api.so.

The function list comes from the headers themselves; the compiler compares the types.
Usage: check_public_surface.py HEADER_DIR LIBRARY CXX [NM]
"""
import pathlib
import re
import subprocess
import sys
import tempfile

# Declared in the facade but never given a body, as the interface has always had them.
UNDEFINED_METHODS = {
    "qm_get_joint_software_version", "qm_get_tool_software_version", "qm_set_DH_data",
    "qm_set_force_position", "qm_set_plan_speed", "qm_start_multi_drag_teach",
}
FACADE_HEADER = "qm_service.h"


def declared_functions(header_dir):
    """Names of the functions the C headers declare, in order of appearance."""
    names = []
    for header in sorted(pathlib.Path(header_dir).glob("*.h")):
        if header.name == FACADE_HEADER:
            continue
        text = re.sub(r"/\*.*?\*/|//[^\n]*", " ", header.read_text(), flags=re.S)
        text = re.sub(r"^\s*#.*$", "", text, flags=re.M)
        # A function pointer typedef reads "(*name)(", so only declarations match.
        names += [n for n in re.findall(r"\b(qm_\w+)\s*\(", text) if n not in names]
    return names


def compile_signature_checks(header_dir, cxx, names):
    """Lets the compiler compare every method's type with its function's; returns its errors."""
    checks = "\n".join(
        f'static_assert(std::is_same_v<free_form<decltype(&QM_Service::{n})>::type, decltype(::{n})>,\n'
        f'              "QM_Service::{n} differs from {n} in its parameter or return types");'
        for n in names)
    source = f"""#include <type_traits>
#include "{FACADE_HEADER}"
// A non-static, non-const member function as the free function type it must equal.
template <class M> struct free_form {{ using type = void; }};
template <class R, class... A> struct free_form<R (QM_Service::*)(A...)> {{ using type = R(A...); }};
static_assert(std::is_empty_v<QM_Service>, "QM_Service holds data members");
static_assert(!std::is_polymorphic_v<QM_Service>, "QM_Service has something virtual");
static_assert(std::is_trivially_default_constructible_v<QM_Service> &&
              std::is_trivially_destructible_v<QM_Service>, "QM_Service construction does something");
{checks}
"""
    with tempfile.TemporaryDirectory() as tmp:
        path = pathlib.Path(tmp) / "facade_signatures.cpp"
        path.write_text(source)
        run = subprocess.run([cxx, "-std=c++20", "-fsyntax-only", "-fmax-errors=50", f"-I{header_dir}", str(path)],
                             capture_output=True, text=True)
    if run.returncode == 0:
        return []
    # The first error of each line is the one that names the method; what follows from it is noise.
    errors = [line.split("error: ", 1)[1] for line in run.stderr.splitlines()
              if "error: " in line and "template argument" not in line]
    return errors or [run.stderr.strip() or "the signature check did not compile"]


def exported(library, nm, demangle):
    args = [nm, "-D", "--defined-only"] + (["-C"] if demangle else []) + [library]
    return subprocess.run(args, capture_output=True, text=True, check=True).stdout.splitlines()


def export_problems(library, nm, names):
    functions = {line.split()[-1] for line in exported(library, nm, False) if len(line.split()) == 3}
    methods = set(re.findall(r"\bQM_Service::(\w+)\(", "\n".join(exported(library, nm, True))))
    problems = [f"{n} is declared but libqm_api.so exports no definition" for n in names if n not in functions]
    for n in names:
        if n in UNDEFINED_METHODS and n in methods:
            problems.append(f"QM_Service::{n} must stay declared without a definition")
        elif n not in UNDEFINED_METHODS and n not in methods:
            problems.append(f"libqm_api.so exports no definition of QM_Service::{n}")
    problems += [f"QM_Service::{m} forwards to no public function" for m in sorted(methods - set(names))]
    return problems


def main():
    header_dir, library, cxx = sys.argv[1:4]
    nm = sys.argv[4] if len(sys.argv) > 4 else "nm"
    names = declared_functions(header_dir)
    if len(names) < 300:
        print(f"only {len(names)} public functions found in {header_dir}: the header scan is broken")
        return 1
    missing_six = sorted(UNDEFINED_METHODS - set(names))
    problems = [f"{n} is no longer a public function" for n in missing_six]
    problems += compile_signature_checks(header_dir, cxx, names)
    problems += export_problems(library, nm, names)
    for p in problems:
        print(p)
    print(f"{len(names)} public functions, {len(names) - len(UNDEFINED_METHODS)} facade methods defined, "
          f"{len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
