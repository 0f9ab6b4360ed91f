# Shows Doxygen the public headers as they are meant: a comment stands for all declarations that follow up to
# the next blank line, lists of members stand where they are included, and <m> in a comment is a placeholder.

# The macros that a family is made with, its comment, its declarations. Without any the comment is that of a macro.
function end_family(    family)
{
    family = declarations > 1
    if (declarations == 0)
        printf "%s", about
    printf "%s%s", macros, family ? "/**@{*/\n" : ""
    if (declarations > 0)
        printf "%s", about
    printf "%s%s", text, family ? "/**@}*/\n" : ""
    about = macros = text = ""
    declarations = 0
}

function declare(line)
{
    if (line ~ /^#/ && text == "") {
        macros = macros line "\n"
        return
    }
    text = text line "\n"
    if (!depth && line !~ /^[ #]/)
        declarations += line ~ /^(PARA_DECLARE|[A-Z]*_MEMBER)/ ? 2 : line ~ /;$|^PARA_API/
}

# A list without its comments.
function declare_list(path,    line, inside)
{
    while ((getline line <(folder path)) > 0) {
        inside = inside || line ~ /^\/\*/
        if (!inside)
            declare(depth && line !~ /^#/ ? line " /**< see " path " */" : line)
        inside = inside && line !~ /\*\/$/
    }
    close(folder path)
}

# Of <m>, but not of the mark of a comment behind what it tells of.
function shows_placeholders(line)
{
    gsub(/</, "\\<", line)
    sub(/\/\*\*\\</, "/**<", line)
    return line "\n"
}

FNR == 1 {
    folder = FILENAME
    sub(/camparam\/[^\/]*$/, "", folder)
}

/^#include "camparam\/.*\.def"$/ {
    split($0, quoted, "\"")
    declare_list(quoted[2])
    next
}

/^$/ && !depth && !comment {
    end_family()
    print
    next
}

# The same within a structure.
depth && !comment && /^ +\/\*\*/ || /^($|\})/ {
    if (inner)
        text = text "/**@}*/\n"
    inner = /\/\*/
    if (inner)
        text = text "/**@{*/\n"
}

{
    is_first = text == "" && !depth
    comment = comment || /^ *\/\*/
    macro = macro || /^#define/
    if (comment && is_first)
        about = about shows_placeholders($0)
    else if (comment || /\/\*\*</)
        text = text shows_placeholders($0)
    else if (macro && is_first)
        macros = macros $0 "\n"
    else {
        if (!macro)
            depth += gsub(/\{/, "{") - gsub(/\}/, "}")
        declare($0)
    }
    comment = comment && !/\*\//
    macro = macro && /\\$/
}

END { end_family() }
