# SPDX-License-Identifier: MIT

"""Makes the reference: build/docs/html, by Doxygen alone and without a network.

It fails where Doxygen warns, and where the module exports a name, or a class shows a member, that no text explains.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
OUT = ROOT / "build" / "docs"
THEME = pathlib.Path("/usr/share/doxygen-awesome-css")
MATHJAX = pathlib.Path("/usr/share/javascript/mathjax")
SCRIPTS = ["doxygen-awesome-darkmode-toggle.js", "doxygen-awesome-fragment-copy-button.js",
           "doxygen-awesome-paragraph-link.js"]
STYLES = ["doxygen-awesome.css", "doxygen-awesome-sidebar-only.css", "doxygen-awesome-sidebar-only-darkmode-toggle.css"]


def doxygen(*arguments, **options):
    return subprocess.run(["doxygen", *map(str, arguments)], cwd=ROOT, text=True, **options)


def page_head():
    """Doxygen's own head of a page, with the theme's scripts."""
    doxygen("-w", "html", OUT / "header.html", OUT / "footer.html", OUT / "unused.css", check=True)
    head = (OUT / "header.html").read_text()
    scripts = "".join(f'<script type="text/javascript" src="$relpath^{name}"></script>\n' for name in SCRIPTS)
    scripts += ("<script type=\"text/javascript\">DoxygenAwesomeDarkModeToggle.init(); "
                "DoxygenAwesomeFragmentCopyButton.init(); DoxygenAwesomeParagraphLink.init();</script>\n")
    (OUT / "header.html").write_text(head.replace("</head>", scripts + "</head>"))


def layout():
    """Doxygen's own order of a page, but that the description comes first, and without the indices of all members."""
    doxygen("-l", OUT / "layout.xml", check=True)
    text = (OUT / "layout.xml").read_text()
    for page in ("class", "file"):
        start, end = text.index(f"<{page}>"), text.index(f"</{page}>")
        body = text[start:end].replace('<detaileddescription title=""/>', "").replace(
            "<memberdecl>", '<detaileddescription title=""/>\n    <memberdecl>').replace(
                '<allmemberslink visible="yes"/>', '<allmemberslink visible="no"/>')
        text = text[:start] + body + text[end:]
    for tab in INDICES:
        text = text.replace(f'type="{tab}" visible="yes"', f'type="{tab}" visible="no"')
    (OUT / "layout.xml").write_text(text)


INDICES = ["classmembers", "globals", "hierarchy"]
UNLINKED = ["functions*.html", "globals*.html", "*-members.html", "classes.html"]


def tidy():
    """Drops the pages that no link leads to, and MathJax from those without a formula."""
    for pattern in UNLINKED:
        for page in (OUT / "html").glob(pattern):
            page.unlink()
    for page in (OUT / "html").glob("*.html"):
        text = page.read_text()
        if not re.search(r"\\[(\[]", text):
            page.write_text(re.sub(r'<script type="text/x-mathjax-config">.*?</script>\s*<script[^>]*MathJax.js"></script>',
                                   "", text, flags=re.S))


def mathjax():
    """As much of MathJax as typesets TeX into SVG."""
    for part in ["MathJax.js", "extensions", "jax/element", "jax/input/TeX", "jax/output/SVG"]:
        target = OUT / "html" / "mathjax" / part
        target.parent.mkdir(parents=True, exist_ok=True)
        if (MATHJAX / part).is_dir():
            shutil.copytree(MATHJAX / part, target,
                            ignore=lambda folder, names: [n for n in names if folder.endswith("fonts") and n != "TeX"])
        else:
            shutil.copy(MATHJAX / part, target)


def undocumented():
    """Public names without a text, and exported names that the reference does not have."""
    missing, known = [], set()
    for file in (OUT / "xml").glob("*.xml"):
        for compound in xml.parse(file).getroot().iter("compounddef"):
            scope = compound.findtext("compoundname")
            if scope.endswith(".md"):
                continue
            if compound.get("kind") in ("class", "struct", "file"):
                known.add(scope)
                described(compound, scope, missing)
            for member in compound.iter("memberdef"):
                name = member.findtext("name")
                full = f"{scope}::{name}" if compound.get("kind") in ("class", "struct") else name
                known.add(full)
                if member.get("prot") != "private":
                    described(member, full + (member.findtext("argsstring") or ""), missing)
                    for value in member.iter("enumvalue"):
                        described(value, f"{full}::{value.findtext('name')}", missing)
    exported = exported_names()
    missing += [f"{name}, which a module exports" for name in exported - known]
    if not missing:
        print(f"{len(known)} names have a text, among them all {len(exported)} that the modules export")
    return sorted(set(missing))


def exported_names():
    """What the modules export, without arguments and instances."""
    symbols = "".join(line.split()[0] + "\n" for file in (ROOT / "tests" / "module").glob("*.exports")
                      for line in file.read_text().splitlines())
    names = set()
    for symbol in subprocess.run(["c++filt", "-p"], input=symbols, stdout=subprocess.PIPE, text=True).stdout.splitlines():
        name = symbol.split(" for ")[-1]  # "vtable for X"
        while (shorter := re.sub(r"(?<!operator)(?<!operator<)<[^<>]*>", "", name)) != name:
            name = shorter
        names.add(name.split("[")[0] if "operator[" not in name else name)
    return names


def described(element, name, missing):
    if not any("".join(part.itertext()).strip() for part in
               (element.find("briefdescription"), element.find("detaileddescription")) if part is not None):
        missing.append(name)


def main():
    shutil.rmtree(OUT, ignore_errors=True)
    OUT.mkdir(parents=True)
    page_head()
    layout()
    version = re.search(r"project\(TARNtnla\s+VERSION\s+(\S+)", (ROOT / "CMakeLists.txt").read_text())[1]
    settings = (HERE / "Doxyfile").read_text() + "\n".join([
        f"PROJECT_NUMBER = {version}",
        f"OUTPUT_DIRECTORY = {OUT}",
        f"LAYOUT_FILE = {OUT / 'layout.xml'}",
        f"HTML_HEADER = {OUT / 'header.html'}",
        "HTML_EXTRA_STYLESHEET = " + " ".join(str(THEME / name) for name in STYLES) + f" {HERE / 'style.css'}",
        "HTML_EXTRA_FILES = " + " ".join(str(THEME / name) for name in SCRIPTS),
    ])
    made = doxygen("-", input=settings, stderr=subprocess.PIPE)
    sys.stderr.write(made.stderr)
    if made.returncode != 0 or made.stderr.strip():
        sys.exit("doxygen has complaints")
    mathjax()
    tidy()
    if missing := undocumented():
        sys.exit("without a text:\n  " + "\n  ".join(missing))
    print(OUT / "html" / "index.html")


main()
