# SPDX-License-Identifier: MIT

"""Lets Doxygen read the project's files as they are: filter.py FILE writes what it is to read instead.

Headers carry plain comments, so that they read well in an editor.  A comment above a declaration is its text, and that
of the declarations right below which have none.  One behind a declaration is added to that.  One above an empty line
is about the file, and about its classes too.  "// --- Title ---" heads a group of members.

Pages are Markdown as a forge shows it, with $formulas$.  A section of mathematics.md whose title names a class or
function is given with that class or function, too.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCS = ROOT / "docs"

# --- Pages ----------------------------------------------------------------------------------------------------------


def slug(title):
    """The anchor that a forge gives to a heading."""
    return re.sub(r"[^\w -]", "", title.lower()).strip().replace(" ", "-")


def label(page, anchor=""):
    name = "index" if page.stem == "README" else page.stem
    return f"{name}-{anchor}" if anchor else name


def target(page, link):
    """Where a link leads in the reference; nothing where it leads to a file that the reference does not hold."""
    if re.match(r"https?:", link):
        return link
    path, _, anchor = link.partition("#")
    file = (page.parent / path).resolve() if path else page
    if not file.exists():
        sys.exit(f"{page}: the link {link} leads nowhere")
    if file.suffix == ".h":
        return f"@ref {file.name}"
    if file.suffix in (".svg", ".png"):
        return file.name  # Doxygen looks for it in IMAGE_PATH
    if file.parent != DOCS or file.suffix != ".md" or f"docs/{file.name}" in UNPUBLISHED:
        return None
    headings = re.findall(r"^#+ (.*)", file.read_text(), re.M)
    if anchor and anchor not in map(slug, headings):
        sys.exit(f"{page}: the link {link} leads to no heading")
    return f"@ref {label(file, anchor)}"


UNPUBLISHED = re.search(r"^EXCLUDE *=(.*)", (DOCS / "doxygen" / "Doxyfile").read_text(), re.M)[1].split()


def markdown(page, text):
    """Doxygen's Markdown for a piece of a page."""
    def link(match):
        image, words, where = match.groups()
        to = target(page, where)
        if to is None:
            return words
        return f"{image}[{words.replace('`', '')}]({to})"  # Doxygen knows no code in a link

    def heading(match):
        level, title = match.groups()
        title = title.replace("`", "")
        if level == "#":
            return f"# {title}" if page.stem == "README" else f"# {title} {{#{label(page)}}}"
        return f"{level} {title} {{#{label(page, slug(title))}}}"

    def prose(part):
        part = re.sub(r"(!?)\[([^\]]*)\]\(([^)\s]*)\)", link, part)
        part = re.sub(r"^(#+) (.*)", heading, part, flags=re.M)
        part = re.sub(r"\\$", "<br>", part, flags=re.M)
        if page.stem == "README":  # its table is the order of the pages
            part = re.sub(r"^\| \[(.*)\]\(@ref (\w+)\)", r'| @subpage \2 "\1"', part, flags=re.M)
        return re.sub(r"`([^`]+)`|\$([^$]+)\$", lambda m: code(m[1]) if m[1] else rf"\f${m[2]}\f$", part)

    def block(match):
        language, body = match.groups()
        if language == "math":
            return f"\\f[\n{body}\\f]\n"
        return f"```{{.{language}}}\n{body}```\n" if language else match[0]

    parts = re.split(r"(^```\w*\n.*?^```\n)", text, flags=re.M | re.S)
    return "".join(re.sub(r"^```(\w*)\n(.*?)^```\n", block, part, flags=re.M | re.S) if part.startswith("```")
                   else prose(part) for part in parts)


def code(text):
    """Code in a line, as Doxygen reads it without minding its quotes."""
    return f"``{text}``"


def formulas():
    """The sections of mathematics.md, by the names in their titles."""
    page = DOCS / "mathematics.md"
    sections = re.findall(r"^## ([^\n]*)\n(.*?)(?=^## |\Z)", page.read_text(), re.M | re.S)
    return {name: markdown(page, body) for title, body in sections for name in re.findall(r"`(\w+)`", title)}


# --- Comments -------------------------------------------------------------------------------------------------------


def words(text):
    """A paragraph of a comment: nothing in it is markup but `code`; the library's functions become links."""
    def plain(part):
        part = part.replace("\\", "\\\\").replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
        part = re.sub(r"([*@#|~])", r"\\\1", part)
        part = re.sub(r"(?:::)?(operator(?: new| delete|\S+))", code(r"\1"), part)
        part = re.sub(r"(?<![/\w])(tnla?_\w+|kit_\w+)\b(?![(.]\w?)", r"::\1", part)
        return re.sub(r"\b(Asserted)\b", r"**\1**", part)

    return "".join(code(part[1:-1]) if part.startswith("`") else plain(part) for part in re.split(r"(`[^`]*`)", text))


def paragraphs(lines):
    """The lines of a comment as (kind, lines): text, items, or a drawing that is kept as it is."""
    found = []
    fresh = True  # whether a drawing may begin here
    for line in lines:
        indented = line.startswith("    ")
        if not line:
            fresh = True
        elif fresh and indented:
            if found and found[-1][0] == "drawing" and found[-1][2]:
                found[-1][1].extend(["", line])
            else:
                found.append(["drawing", [line], True])
            fresh = False
        elif found and found[-1][0] == "drawing" and indented:
            found[-1][1].append(line)
        elif re.match(r" ?\(\d+\) ", line):
            if not found or found[-1][0] != "numbers":
                found.append(["numbers", [], True])
            found[-1][1].append(line.strip())
            fresh = False
        elif not fresh and found[-1][0] == "numbers":
            found[-1][1][-1] += " " + line.strip()
        elif not fresh and found[-1][0] in ("text", "terms"):
            if indented:
                found[-1][0] = "terms"  # what hangs, belongs to the line above
                found[-1][1][-1] += " " + line.strip()
            else:
                found[-1][1].append(line)
        else:
            found.append(["text", [line], True])
            fresh = False
    return [(kind, body) for kind, body, _ in found]


def document(lines):
    """The text of a comment in Doxygen's markup."""
    out = []
    for number, (kind, body) in enumerate(paragraphs(lines)):
        if kind == "drawing":
            depth = min(len(line) - len(line.lstrip()) for line in body if line)
            language = "cpp" if any(line.rstrip().endswith(";") for line in body) else "unparsed"
            out += [f"@code{{.{language}}}"] + [line[depth:] for line in body] + ["@endcode"]
        elif kind == "numbers":
            out += [re.sub(r"^\((\d+)\) (.*)", lambda m: f"{m[1]}. {words(m[2])}", item) for item in body]
        elif kind == "terms":
            out += ["- " + words(item) for item in body]
        else:
            text = " ".join(body)
            first = re.match(r"(.*?[^\s.]\.)(?=\s|$)", text)
            if number == 0 and first:
                out += ["@brief " + words(first[1]), ""]
                text = text[first.end():].strip()
            if text:
                out.append(words(text))
        out.append("")
    return out


# --- Headers --------------------------------------------------------------------------------------------------------


def standard(code):
    """What need not be said of a member that every class has."""
    if re.search(r"= delete;", code):
        return ["Deleted: objects of this class are not copied."]
    if re.match(r"\s*(virtual )?~", code):
        return ["Frees what the object owns."]
    if re.match(r"\s*(\w+)\(const \1& ?\w*\)", code):
        return ["A copy, independent of the original."]
    if re.match(r"\s*(\w+)& operator=\(const \1&", code):
        return ["Takes the value of another object."]
    return []


def header(path):
    out = []
    sections = formulas()

    def emit(text):
        out.extend("/// " + line for line in text)

    pending, inherited, about_file = [], [], []
    scopes = []  # of each brace that is open: "class", "struct", "enum", or "" for what is passed through
    shown = [True]  # whether the members of each scope are public or protected
    group = False
    statement = []  # the lines of the declaration that has begun
    depth = 0  # of the parentheses and the braces inside it

    def finish():
        nonlocal inherited, pending, sections
        code = "\n".join(statement)
        bare = re.sub(r"//.*", "", code)
        forward = re.match(r"\s*(template\s*<[^{]*>\s*)?(class|struct)\s+\w+\s*;|\s*extern template|\s*static_assert", bare)
        if shown[-1] and not forward:
            behind = re.match(r".*?[;{,}]\s*// (.*)", statement[0 if "{" in bare else -1])
            own = pending or standard(bare) or inherited
            if behind:
                own = [re.sub(r"^[a-z]+\b(?!_)", lambda m: m[0].capitalize(), behind[1]).rstrip(".") + ".", ""] + own
            kind = re.match(r"\s*(?:template\s*<.*?>\s*)?(class|struct)\s+(?:TNLA_API |TN_API )?(\w+)", bare, re.S)
            text = document(own)
            if kind and about_file and not pending:
                text = document(about_file)
            elif kind and about_file and "_API" in bare:
                text += [re.sub("^@brief ", "", line) for line in document(about_file)]
            name = kind[2] if kind else (re.search(r"(\w+)\s*\(", bare) or [None, None])[1]
            if name in sections and (kind or not any(scopes)):
                text += ["@par In formulas", ""] + sections[name].splitlines()
                sections = {other: body for other, body in sections.items() if other != name}  # once for all overloads
            emit(text)
        if not forward:
            inherited = pending or inherited
        pending = []
        out.extend(statement)
        statement.clear()

    lines = path.read_text().splitlines()
    at = 1  # below the licence
    while at < len(lines):
        line = lines[at]
        stripped = line.strip()
        comment = re.match(r"\s*// ?(.*)", line)
        if comment and not statement:
            block = []
            while at < len(lines) and (match := re.match(r"\s*//(?: (.*)|(.*))$", lines[at])):
                block.append((match[1] or match[2] or "").rstrip())
                at += 1
            title = re.match(r"--- (.*?) -+$", block[0])
            follows = lines[at].strip() if at < len(lines) else ""
            if title:
                if group:
                    out.append("///@}")
                out.append(f"/// @name {title[1]}\n///@{{")
                group = True
            elif not follows:
                about_file += [""] + block if about_file else block
            else:
                pending = block
            continue
        at += 1
        if not statement:
            if not stripped:
                pending, inherited = [], []
                out.append(line)
                continue
            if stripped.startswith("#"):
                if stripped.startswith("#define") and pending:
                    emit(document(pending))
                pending = []
                out.append(line)
                while line.endswith("\\"):
                    line = lines[at]
                    out.append(line)
                    at += 1
                continue
            if access := re.match(r"(public|protected|private):", stripped):
                if group and access[1] == "private":
                    out.append("///@}")
                    group = False
                shown[-1] = access[1] != "private"
                pending, inherited = [], []
                out.append(line)
                continue
            if scopes and stripped.startswith("}"):
                scopes.pop()
                shown.pop()
                pending, inherited = [], []
                out.append(line)
                continue
        statement.append(line)
        code = re.sub(r"//.*", "", line)
        depth += code.count("(") + code.count("{") - code.count(")") - code.count("}")
        text = " ".join(re.sub(r"//.*", "", part) for part in statement)
        if opens := re.match(r"\s*(?:template\s*<[^{]*>\s*)?(class|struct|enum)\b[^;()]*\{\s*$", text):
            finish()
            scopes.append(opens[1])
            shown.append(opens[1] != "class")
            inherited = []
            depth = 0
        elif depth == 0 and (text.rstrip().endswith((";", "}")) or scopes[-1:] == ["enum"] and text.rstrip().endswith(",")):
            finish()
    first = next((line for line in out if line.startswith("/// @brief")), "/// @brief Nothing.")
    about = ["/// " + part for part in document(about_file)] or [first]  # or what it declares first
    out = ["/// @file"] + about + [""] + out
    return "\n".join(out) + "\n"


if __name__ == "__main__":
    file = pathlib.Path(sys.argv[1]).resolve()
    print(header(file) if file.suffix == ".h" else markdown(file, file.read_text()))
