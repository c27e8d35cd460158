"""Prints tables as aligned text, as CSV or as Markdown.

A column is a heading and the number of decimals of its figures, or None for text. A missing figure
is None.
"""

import csv
import sys

FORMS = ("text", "csv", "markdown")


def add_form_options(parser):
    """Adds --csv and --markdown, which set `form` of the parsed arguments."""
    group = parser.add_mutually_exclusive_group()
    for form in FORMS[1:]:
        group.add_argument("--" + form, dest="form", action="store_const", const=form,
                           default=FORMS[0])


def cell(value, decimals, separator):
    if value is None:
        return ""
    return str(value) if decimals is None else f"{value:{separator}.{decimals}f}"


def show(columns, rows, form):
    separator = "" if form == "csv" else ","
    headings = [heading for heading, _ in columns]
    cells = [[cell(value, decimals, separator) for value, (_, decimals) in zip(row, columns)]
             for row in rows]
    if form == "csv":
        csv.writer(sys.stdout, lineterminator="\n").writerows([headings] + cells)
    elif form == "markdown":
        rules = ["---" if decimals is None else "--:" for _, decimals in columns]
        for line in [headings, rules] + cells:
            print("|" + "|".join(line if line is rules else [f" {text} " for text in line]) + "|")
    else:
        widths = [max(map(len, texts)) for texts in zip(headings, *cells)]
        for line in [headings] + cells:
            print("  ".join(text.ljust(width) if decimals is None else text.rjust(width)
                            for text, width, (_, decimals) in zip(line, widths, columns)).rstrip())
