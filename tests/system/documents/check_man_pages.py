"""Every exported function has its manual page.

    check_man_pages.py NM LIBRARY MAN_FOLDER

`man FUNCTION` leads to the page of a family, which declares the function and has a section about it; the page's own name
line lists it, so that `apropos` finds it. There is no page of a function that is not exported.
"""
import pathlib
import re
import subprocess
import sys

nm, library, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
symbols = subprocess.run([nm, "-D", "-C", "--defined-only", "--format=posix", library], check=True,
                         capture_output=True, text=True).stdout
names = {re.match(r"\w+", line).group() for line in symbols.splitlines()
         if not line.startswith("OPCV_1.")}    # the version of the names
if not names:
    sys.exit(f"{library} exports nothing")
faults = []
for name in sorted(names):
    link = folder / "man3" / f"{name}.3"
    match = re.fullmatch(r"\.so (man3/\w+\.3)\n", link.read_text()) if link.exists() else None
    family = folder / match.group(1) if match else None
    if not family or not family.exists():
        faults.append(f"man {name} leads nowhere")
        continue
    text = family.read_text()
    head = text[text.index(".SH NAME\n"):text.index(".SH SYNOPSIS\n")]
    synopsis = text[text.index(".SH SYNOPSIS\n"):]
    for what, found in (("name line", re.search(rf"\b{name}\b", head)),
                        ("synopsis", f" {name}(\\fP" in synopsis),
                        ("section", f".SS {name}\n.HP\n" in text)):
        if not found:
            faults.append(f"{family.name}: no {what} for {name}")
pages = {path.stem for path in (folder / "man3").glob("*.3") if path.read_text().startswith(".so ")}
faults += [f"{name} has a manual page and is not exported" for name in sorted(pages - names)]
if faults:
    sys.exit("\n".join(faults))
