# Makes a Markdown file of the project a page of the site: headings get labels, and relative links
# and names of functions lead to pages of the site. Called with names.awk before it, and the file's
# name; the variable root is the project's folder.
#
# The label of docs/families/zoom.md is families-zoom; that of its heading "By hand" is
# families-zoom_by-hand, as plain viewers of Markdown link to it by zoom.md#by-hand.

# The label of a page by its path from the project's folder.
function PageLabel(path) {
    sub(/^docs\//, "", path)
    sub(/\.md$/, "", path)
    gsub(/\//, "-", path)
    return path == "README" ? "index" : tolower(path)
}

function HeadingLabel(heading) {
    heading = tolower(heading)
    gsub(/[^a-z0-9 _-]/, "", heading)
    gsub(/ /, "-", heading)
    return heading
}

# A path with its "..": docs/families/../guide.md is docs/guide.md.
function Resolve(path) {
    while (sub(/[^\/]+\/\.\.\//, "", path)) {
    }
    return path
}

function Target(link,    hash, anchor, path) {
    if (link ~ /^[a-z]+:/ || link ~ /^@ref/) return link
    hash = index(link, "#")
    anchor = hash ? substr(link, hash + 1) : ""
    path = hash ? substr(link, 1, hash - 1) : link
    path = path == "" ? file : Resolve(folder path)
    if (path ~ /^include\/.*\.h$/) {
        sub(/^include\//, "", path)
        return "@ref " path
    }
    if (path !~ /\.md$/) return link
    return "@ref " PageLabel(path) (anchor == "" ? "" : "_" anchor)
}

# Text without links, with links for the names in it. What stands in backquotes is left as it is,
# but for a name alone; inCode says whether the text begins there.
function Names(text,    parts, count, i, result, alone, aloneBefore) {
    count = split(text, parts, "`")
    result = ""
    aloneBefore = 0
    for (i = 1; i <= count; ++i) {
        if (i > 1) inCode = !inCode
        alone = inCode && i > 1 && i < count && Linked(parts[i]) != parts[i]
        if (i > 1 && !alone && !aloneBefore) result = result "`"
        if (alone)
            result = result Linked(parts[i])
        else
            result = result (inCode ? parts[i] : LinkNames(parts[i]))
        aloneBefore = alone
    }
    return result
}

function Links(line,    result, before, begin, target) {
    result = ""
    while (match(line, /\]\([^() ]+\)/)) {
        before = substr(line, 1, RSTART - 1)
        target = substr(line, RSTART + 2, RLENGTH - 3)
        line = substr(line, RSTART + RLENGTH)
        begin = match(before, /!?\[[^\[]*$/) ? RSTART : 1
        # What an exclamation mark stands before is a picture; its name stays.
        if (substr(before, begin, 1) != "!") target = Target(target)
        result = result Names(substr(before, 1, begin - 1)) substr(before, begin) "](" target ")"
    }
    return result Names(line)
}

FNR == 1 {
    file = substr(FILENAME, length(root) + 2)
    folder = file
    sub(/[^\/]*$/, "", folder)
    label = PageLabel(file)
    fenced = inCode = 0
    held = ""
}

# A link's text is on one line: Doxygen wants it so.
held != "" {
    if (/^$|^ *[-|#`]/) {
        print Links(held)
    } else {
        sub(/^ +/, "")
        $0 = held " " $0
    }
    held = ""
}

/^ *```/ { fenced = !fenced; print; next }
fenced || /^    / { print; next }

/^# / {
    # The main page is made of its file as a whole, and has its label from Doxygen.
    print label == "index" ? $0 : $0 " {#" label "}"
    next
}

/^##+ / {
    heading = $0
    sub(/^#+ /, "", heading)
    print $0 " {#" label "_" HeadingLabel(heading) "}"
    next
}

/^$/ { inCode = 0 }
/\[[^\]]*$/ { held = $0; next }
{ print Links($0) }

END { if (held != "") print Links(held) }
