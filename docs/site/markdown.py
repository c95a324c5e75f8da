# SPDX-License-Identifier: BSL-1.0
"""Writes Markdown so that Doxygen reads it as GitHub does: code spans, and links to headings and to other pages."""

import re

SPAN = re.compile(r"(?<![`\\])(`+)(?!`)(.+?)(?<!`)\1(?!`)", re.DOTALL)
NAME = re.compile(r"[\w:~]+(\(\))?")
LINK = re.compile(r"\[([^\[\]]*)\]\(([^()\s#]*)(?:#([^()\s]*))?\)")
COMMENT = re.compile(r"(?:^[ \t]*///(?![/<]).*\n)+|///<.*", re.MULTILINE)


def code(match):
    """The span as HTML in which nothing is a command or a mark; a name alone may become a link."""
    text = match[2]
    if text.startswith(" ") and text.endswith(" ") and text.strip():
        text = text[1:-1]  # where backticks stand inside
    escaped = re.sub(r"[\\@#%*_\[\]()!`$]|-{2,3}", lambda m: "\\" + m[0], text)
    for plain, entity in (("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"), ('"', "&quot;"), ("'", "&apos;")):
        escaped = escaped.replace(plain, entity)
    if not NAME.fullmatch(text):
        escaped = re.sub(r"(?<![\w\\&:])(?=[A-Za-z_][\w\\]*::)|(?<!\w)(?=::)", "%", escaped)
    escaped = re.sub(r"  +|^ | $", lambda m: "&nbsp;" * len(m[0]), escaped)
    return f"<code>{escaped}</code>"


def spans(text):
    return SPAN.sub(code, text)


def brief(text):
    """The comment with its first sentence as the brief description."""
    masked = re.sub(r"<code>.*?</code>", lambda m: "_" * len(m[0]), text, flags=re.DOTALL)
    end = re.search(r"[.](?=\s|$)|(?=\n\s*\n)|(?=\s@)|$(?!\n)", masked).end()
    if text.lstrip().startswith("@") or not text[:end].strip():
        return text
    rest = text[end:]
    return f" @brief{text[:end]}" + (" @details" if rest.strip() else "") + rest


def comments(text):
    """A header with its comments written so."""
    def comment(match):
        starts, lines = zip(*re.findall(r"^([ \t]*///<?)?(.*)$", match[0], re.MULTILINE))
        text = brief(spans("\n".join(lines)))
        return "\n".join(start + line for start, line in zip(starts, text.split("\n")))
    return COMMENT.sub(comment, text)


def slug(title):
    """The anchor that GitHub gives a heading."""
    return re.sub(r"[^\w\- ]", "", title.strip().lower()).replace(" ", "-")


def page(text, stem):
    """A whole page; `stem` is the name of its file."""
    lines, fenced = [], False
    for line in text.split("\n"):
        if line.startswith("```"):
            fenced = not fenced
            line = {"```text": "```{.unparsed}", "```sh": "```{.sh}", "```cmake": "```{.cmake}"}.get(line.strip(), line)
        elif not fenced and not line.startswith("    "):
            if line.startswith("# "):
                line = line.replace("`", "")
            elif line.startswith("##"):
                line = f"{line} {{#{stem}-{slug(line.lstrip('#'))}}}"
            line = spans(LINK.sub(lambda m: link(m, stem), line))
        lines.append(line)
    return "\n".join(lines)


def link(match, stem):
    """A link to a heading goes to its anchor, one to the list of quirks to that of the reference."""
    text, path, anchor = match[1].replace("`", ""), match[2], match[3]
    if "//" in path:
        return match[0]
    if path.endswith(".png"):  # Doxygen finds it in IMAGE_PATH
        return f"[{text}]({path.rpartition('/')[2]})"
    if path.endswith("QUIRKS.md"):
        return f"[{text}](@ref quirks)"
    if anchor:
        return f"[{text}](@ref {re.sub(r'^.*/|[.]md$', '', path) or stem}-{anchor})"
    return f"[{text}]({path})"
