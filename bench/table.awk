# SPDX-License-Identifier: MIT
# Prints the figures of a run and checks their limits: awk -f bench/table.awk bench/limits.tsv results.tsv
BEGIN {
    FS = "\t"
    factor["ns"] = 1e-6
    factor["us"] = 1e-3
    factor["ms"] = factor["kB"] = factor[""] = 1
    headed = "%-42s %-30s %-4s %10s %10s %10s\n"
    judged = "%-42s %-8s %10s %7s  %-8s %s\n"
}

/^#/ { next }

NR == FNR {
    limits[++limitCount] = $0
    next
}

{
    name = $1 "/" $2
    if (!($1 in isFigure)) {
        isFigure[$1] = 1
        figures[++figureCount] = $1
    }
    if (!(name in count)) {
        names[++nameCount] = name
        figureOf[name] = $1
        subjectOf[name] = $2
        unitOf[name] = $3
    }
    insert(name, $4)
}

# Keeps the values of a name sorted.
function insert(name, value,    place) {
    for (place = ++count[name]; place > 1 && values[name, place - 1] > value + 0; --place)
        values[name, place] = values[name, place - 1]
    values[name, place] = value + 0
}

function statistic(name, kind,    middle) {
    if (kind == "minimum")
        return values[name, 1]
    if (kind == "maximum")
        return values[name, count[name]]
    middle = int((count[name] + 1) / 2)
    return count[name] % 2 ? values[name, middle] : (values[name, middle] + values[name, middle + 1]) / 2
}

function shown(value) {
    return sprintf(value == int(value) || value >= 1000 ? "%.0f" : value >= 10 ? "%.1f" : "%.3f", value)
}

# The value of an expression in milliseconds or kB, or -1 if part of it was not measured.
function evaluate(expression, kind,    parts, partCount, i, value, result) {
    partCount = split(expression, parts, / [+|] /)
    for (i = 1; i <= partCount; ++i) {
        if (!(parts[i] in count))
            return -1
        value = statistic(parts[i], kind) * factor[unitOf[parts[i]]]
        if (i == 1 || (expression ~ /\|/ && value < result))
            result = value
        else if (expression ~ /\+/)
            result += value
    }
    return result
}

function judge(line,    field, value, other, verdict) {
    split(line, field, FS)
    value = evaluate(field[1] "/" field[2], field[3])
    other = field[5] == "" ? 1 : evaluate(field[5], field[3])
    if (value < 0 || other <= 0) {
        printf judged, field[1], field[3], "", field[4], "not measured", field[5]
        return
    }
    verdict = value / other <= field[4] ? "reached" : "missed"
    printf judged, field[1], field[3], shown(value / other), field[4], verdict, field[5]
}

END {
    printf headed, "figure", "subject", "unit", "minimum", "median", "maximum"
    for (f = 1; f <= figureCount; ++f) {
        for (n = 1; n <= nameCount; ++n) {
            name = names[n]
            if (figureOf[name] == figures[f])
                printf headed, figures[f], subjectOf[name], unitOf[name], shown(statistic(name, "minimum")),
                    shown(statistic(name, "median")), shown(statistic(name, "maximum"))
        }
    }
    print ""
    printf judged, "limit", "of", "ratio", "limit", "", "against"
    for (l = 1; l <= limitCount; ++l)
        judge(limits[l])
}
