# Turns the contracts of the public headers into Doxygen comments. Called with names.awk before it,
# and a header's name.
#
# A comment above declarations is the contract of each of them, up to the next blank line or
# comment. A comment with a blank line behind it speaks of what follows: the first of the header, of
# the header; any other, of the declarations up to the next such comment. That one begins with a
# title and a colon. A comment behind a declaration is the contract of that one.
#
# In a comment, lines that start with " - " make a list, and lines that are indented further stand
# as they are.

# The text with what Doxygen would take as markup made plain, but for what is in backquotes, with
# the library's functions as links.
function Escape(text,    parts, count, i, result) {
    count = split(text, parts, "`")
    for (i = 1; i <= count; i += 2) {
        gsub(/[\\@<>&#%*"]/, "\\\\&", parts[i])
        gsub(/--/, "\\\\&", parts[i])
        parts[i] = " " parts[i]
        gsub(/[^A-Za-z0-9_]_/, "&\001", parts[i])
        gsub(/_\001/, "\\_", parts[i])
        parts[i] = LinkNames(substr(parts[i], 2))
    }
    result = parts[1]
    for (i = 2; i <= count; ++i) result = result "`" parts[i]
    return result
}

# The comment's lines as the lines of a Doxygen comment, each paragraph and each item in one.
function Format(lines, count,    i, line, result, paragraph, verbatim) {
    result = paragraph = ""
    verbatim = 0
    for (i = 1; i <= count + 1; ++i) {
        line = i > count ? "" : lines[i]
        if (line ~ /^   /) {
            if (paragraph != "") result = result "/// " Escape(paragraph) "\n"
            paragraph = ""
            result = result (verbatim ? "" : "///\n") "///     " substr(line, 4) "\n"
            verbatim = 1
            continue
        }
        if (verbatim) result = result "///\n"
        verbatim = 0
        if (line == "" || line ~ /^ - /) {
            if (paragraph != "") result = result "/// " Escape(paragraph) "\n"
            paragraph = ""
            if (line == "") result = result "///\n"
        }
        if (line ~ /^ - /) {
            paragraph = substr(line, 2)
        } else if (line != "") {
            sub(/^ /, "", line)
            paragraph = paragraph (paragraph == "" ? "" : " ") line
        }
    }
    sub(/(\/\/\/\n)+$/, "", result)
    return result
}

function EndSection() {
    if (section != "") print "/// @}"
    section = ""
}

# A comment that has a blank line behind it.
function Detached(    title, text) {
    if (!described) {
        described = 1
        printf "/// @file\n%s\n", Format(block, blockLines)
        return
    }
    EndSection()
    title = block[1]
    if (title !~ /^ [^:.]*:/) {
        print FILENAME ": no title: " title > "/dev/stderr"
        print "/// @this_section_has_no_title"
        return
    }
    sub(/^ /, "", title)
    sub(/:.*/, "", title)
    section = header "_" (++sections)
    gsub(/[^A-Za-z0-9]/, "_", section)
    sectionTitle = title
    text = Format(block, blockLines)
    printf "/// @name %s\n/// @anchor %s\n%s/// @{\n\n", title, section, text
}

# The contract of the declaration that begins in this line, with links to what it rests on.
function Contract(line,    see, name) {
    if (contract == "") return
    printf "%s", contract
    if (depth > 0 || line ~ /^(class|struct|enum|template|#)/) return
    name = line
    sub(/\(.*/, "", name)
    sub(/.*[ *]/, "", name)
    if (firstOfContract == "") firstOfContract = name
    see = ""
    if (leansOn != "") see = leansOn ", "
    if (section != "") see = see "@ref " section " \"" sectionTitle "\", "
    print "/// @see " see "@ref " header " \"what holds for the whole header\""
}

BEGIN {
    contract = section = firstOfContract = leansOn = ""
    blockLines = described = depth = inDeclaration = inMacro = braces = sections = 0
}

FNR == 1 {
    header = FILENAME
    if (!sub(/.*\/tqipl\//, "tqipl/", header)) sub(/.*\//, "", header)
}

!inDeclaration && /^ *\/\// {
    if (blockLines == 0) {
        leansOn = ""
        contract = ""
    }
    line = $0
    sub(/^ *\/\//, "", line)
    block[++blockLines] = line
    next
}

!inDeclaration && /^ *$/ {
    if (blockLines > 0) Detached()
    blockLines = 0
    contract = ""
    print
    next
}

# From here on a line of code.
!inDeclaration && blockLines > 0 {
    contract = Format(block, blockLines)
    if (block[1] ~ /^ (The same|The inverse|Another inverse|One pixel back)/)
        leansOn = firstOfContract
    firstOfContract = ""
    blockLines = 0
}

inMacro { print; inMacro = /\\$/; next }
/^ *#/ {
    if ($0 ~ /^#define/) Contract($0)
    print
    inMacro = /\\$/
    next
}
# A macro that stands for declarations.
!inDeclaration && /^ *[A-Z_]+$/ { print; next }

!inDeclaration && /^(class|struct) [A-Za-z_]+;$/ { print; next }
!inDeclaration && /^ *(public|protected|private):$/ { print; contract = ""; next }
!inDeclaration && depth > 0 && /^ *};?$/ { --depth; contract = ""; print; next }

{
    line = $0
    if (!inDeclaration) {
        Contract(line)
        braces = 0
    }
    # A declaration's own contract, behind it.
    if (match(line, /[;,}] +\/\/ /) || (kind[depth] == "enum" && match(line, / +\/\/ /))) {
        tail = substr(line, RSTART + RLENGTH)
        line = substr(line, 1, RSTART + RLENGTH - 4)
        if (!inDeclaration || braces == 0) tail = " ///< " Escape(tail)
        else tail = ""
    } else {
        tail = ""
    }
    print line tail
    sub(/ +$/, "", line)
    if (!inDeclaration && line ~ /^ *(template.*> *)?(class|struct|enum) .*{$/) {
        kind[++depth] = line ~ /enum / ? "enum" : "class"
        contract = ""
        next
    }
    if (kind[depth] == "enum") next
    braces += gsub(/{/, "{", line) - gsub(/}/, "}", line)
    inDeclaration = !(braces == 0 && line ~ /[;}]$/)
}

END {
    if (blockLines > 0) Detached()
    EndSection()
    if (!described) print "/// @file"
}
