"""Writes the same large module (about 10 000 lines) in each benchmarked language.

The module holds a few hundred small numeric functions (a loop with an If/ElseIf chain, a Select
Case, a Do loop and a call of the previous function); its entry point calls the last one once and
prints a checksum, so the compile row is checked like every other program and the run itself costs
next to nothing beside the compile.
"""

import pathlib

# The BASIC form has at least this many lines; the other languages get the same functions.
TARGET_LINES = 10000
ENTRY_ARGUMENT = 5


def _basic(count):
    out = ["' Generated module for the compile benchmark."]
    for k in range(1, count + 1):
        previous = f"F{k - 1}(a, 1)" if k > 1 else "a"
        out += [
            f"Function F{k}(ByVal a As Long, ByVal b As Long) As Long",
            "    Dim i As Long, s As Long, t As Double",
            "    s = a",
            "    t = 0",
            "    For i = 1 To b",
            "        If s Mod 3 = 0 Then",
            "            s = s + i * 2",
            "        ElseIf s > 1000 Then",
            "            s = s - 7",
            "        Else",
            "            s = s + 1",
            "        End If",
            "        t = t + s * 0.5",
            "    Next i",
            "    Select Case s Mod 4",
            "        Case 0",
            f"            s = s + {k}",
            "        Case 1, 2",
            "            s = s * 2",
            "        Case Else",
            "            s = s - 1",
            "    End Select",
            "    Do While s > 100000",
            "        s = s \\ 2",
            "    Loop",
            f"    If b > 0 Then s = s + {previous} Mod 1000",
            "    F{0} = (s + Int(t)) Mod 1000003".format(k),
            "End Function",
            "",
        ]
    out += [
        "Sub Main",
        f'    Debug.Print "checksum " & F{count}({ENTRY_ARGUMENT}, 3)',
        "End Sub",
    ]
    return "\r\n".join(out) + "\r\n"


def _vbscript(count):
    out = ["' Generated module for the compile benchmark.", "Option Explicit"]
    for k in range(1, count + 1):
        previous = f"F{k - 1}(a, 1)" if k > 1 else "a"
        out += [
            f"Function F{k}(ByVal a, ByVal b)",
            "    Dim i, s, t",
            "    s = a",
            "    t = 0",
            "    For i = 1 To b",
            "        If s Mod 3 = 0 Then",
            "            s = s + i * 2",
            "        ElseIf s > 1000 Then",
            "            s = s - 7",
            "        Else",
            "            s = s + 1",
            "        End If",
            "        t = t + s * 0.5",
            "    Next",
            "    Select Case s Mod 4",
            "        Case 0",
            f"            s = s + {k}",
            "        Case 1, 2",
            "            s = s * 2",
            "        Case Else",
            "            s = s - 1",
            "    End Select",
            "    Do While s > 100000",
            "        s = s \\ 2",
            "    Loop",
            f"    If b > 0 Then s = s + {previous} Mod 1000",
            f"    F{k} = (s + Int(t)) Mod 1000003",
            "End Function",
            "",
        ]
    out += [f'WScript.Echo "checksum " & F{count}({ENTRY_ARGUMENT}, 3)']
    return "\r\n".join(out) + "\r\n"


def _lua(count):
    out = ["-- Generated module for the compile benchmark."]
    for k in range(1, count + 1):
        previous = f"F{k - 1}(a, 1)" if k > 1 else "a"
        out += [
            f"function F{k}(a, b)",
            "    local s, t = a, 0.0",
            "    for i = 1, b do",
            "        if s % 3 == 0 then",
            "            s = s + i * 2",
            "        elseif s > 1000 then",
            "            s = s - 7",
            "        else",
            "            s = s + 1",
            "        end",
            "        t = t + s * 0.5",
            "    end",
            "    local r = s % 4",
            "    if r == 0 then",
            f"        s = s + {k}",
            "    elseif r == 1 or r == 2 then",
            "        s = s * 2",
            "    else",
            "        s = s - 1",
            "    end",
            "    while s > 100000 do",
            "        s = s // 2",
            "    end",
            f"    if b > 0 then s = s + {previous} % 1000 end",
            "    return (s + math.floor(t)) % 1000003",
            "end",
            "",
        ]
    out += [f'print(string.format("checksum %d", F{count}({ENTRY_ARGUMENT}, 3)))']
    return "\n".join(out) + "\n"


def _python(count):
    out = ["# Generated module for the compile benchmark.", "import math", ""]
    for k in range(1, count + 1):
        previous = f"F{k - 1}(a, 1)" if k > 1 else "a"
        out += [
            f"def F{k}(a, b):",
            "    s = a",
            "    t = 0.0",
            "    for i in range(1, b + 1):",
            "        if s % 3 == 0:",
            "            s = s + i * 2",
            "        elif s > 1000:",
            "            s = s - 7",
            "        else:",
            "            s = s + 1",
            "        t = t + s * 0.5",
            "    r = s % 4",
            "    if r == 0:",
            f"        s = s + {k}",
            "    elif r == 1 or r == 2:",
            "        s = s * 2",
            "    else:",
            "        s = s - 1",
            "    while s > 100000:",
            "        s = s // 2",
            "    if b > 0:",
            f"        s = s + {previous} % 1000",
            "    return (s + math.floor(t)) % 1000003",
            "",
        ]
    out += [f'print("checksum %d" % F{count}({ENTRY_ARGUMENT}, 3))']
    return "\n".join(out) + "\n"


def _c(count):
    out = ["/* Generated module for the compile benchmark. */", "#include <math.h>", "#include <stdio.h>", ""]
    for k in range(1, count + 1):
        previous = f"F{k - 1}(a, 1)" if k > 1 else "a"
        out += [
            f"static long F{k}(long a, long b)",
            "{",
            "    long s = a;",
            "    double t = 0;",
            "    for (long i = 1; i <= b; ++i) {",
            "        if (s % 3 == 0)",
            "            s = s + i * 2;",
            "        else if (s > 1000)",
            "            s = s - 7;",
            "        else",
            "            s = s + 1;",
            "        t = t + s * 0.5;",
            "    }",
            "    switch (s % 4) {",
            f"    case 0: s = s + {k}; break;",
            "    case 1: case 2: s = s * 2; break;",
            "    default: s = s - 1; break;",
            "    }",
            "    while (s > 100000)",
            "        s = s / 2;",
            "    if (b > 0)",
            f"        s = s + {previous} % 1000;",
            "    return (s + (long)floor(t)) % 1000003;",
            "}",
            "",
        ]
    out += [
        "int main(void)",
        "{",
        f'    printf("checksum %ld\\n", F{count}({ENTRY_ARGUMENT}, 3));',
        "    return 0;",
        "}",
    ]
    return "\n".join(out) + "\n"


WRITERS = {"bas": _basic, "vbs": _vbscript, "lua": _lua, "py": _python, "c": _c}


def _function_count():
    """The fewest functions whose BASIC form reaches TARGET_LINES lines."""
    fixed = _basic(0).count("\n")
    per_function = _basic(1).count("\n") - fixed
    return -(-(TARGET_LINES - fixed) // per_function)


def write_all(folder):
    """Writes large_module.EXT for every language into folder; answers the BASIC line count."""
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    count = _function_count()
    for extension, writer in WRITERS.items():
        (folder / f"large_module.{extension}").write_bytes(writer(count).encode("ascii"))
    return (folder / "large_module.bas").read_bytes().count(b"\n")
