"""Writes the workbooks of the tests into a folder: some by openpyxl, forged ones by hand."""

import datetime
import pathlib
import sys
import zipfile

import openpyxl

folder = pathlib.Path(sys.argv[1])


def plan():
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "Plan"
    sheet.append(["food", "made", "price", "fresh", "n"])
    sheet.append(["Milk", datetime.date(2024, 3, 1), 11.25, True, 2020])
    sheet.append(["Tofu & \"Co\"", datetime.datetime(1900, 1, 15), 7, False, 0.1])
    sheet.append([])
    sheet.append(["T\u00f6fu", datetime.datetime(2024, 2, 29, 12, 30), -3e-7, True, 1e21])
    wide = book.create_sheet("My Prices!")
    wide["B2"] = "beside"
    wide["B3"], wide["C3"], wide["D3"], wide["E3"] = "group", "food", 2020, 2021
    wide["B4"], wide["C4"], wide["D4"], wide["E4"] = "dairy", "Milk", 1, 2
    wide["C5"], wide["D5"], wide["E5"] = "Curd", 3, None
    wide.merge_cells("B4:B5")
    wide["B6"], wide["C6"], wide["D6"] = "soy", "Tofu", 4
    wide["H9"] = "a note"
    formulas = book.create_sheet("Formulas")
    formulas.append(["food", "price"])
    formulas.append(["Milk", "=1+1"])
    formulas.append(["Tofu", "#N/A"])
    formulas["B3"].data_type = "e"
    book.save(folder / "plan.xlsx")
    numbered = openpyxl.Workbook()
    for row in [None, "food", "cents"], [0, "Milk", 11.5], [1, "Tofu", 7]:
        numbered.active.append(row)
    numbered.save(folder / "numbered.xlsx")
    old = openpyxl.Workbook()
    old.epoch = openpyxl.utils.datetime.CALENDAR_MAC_1904
    old.active.append(["day", "v"])
    old.active.append([datetime.date(1904, 1, 2), 1])
    old.save(folder / "mac.xlsx")


def other_parts():
    """A workbook of LibreOffice whose texts and styles have other names, as nothing forbids."""
    source = pathlib.Path(__file__).parent / "workbooks" / "libreoffice.xlsx"
    names = {"sharedStrings.xml": "words.xml", "styles.xml": "looks.xml"}
    with zipfile.ZipFile(source) as whole:
        with zipfile.ZipFile(folder / "other_parts.xlsx", "w", zipfile.ZIP_DEFLATED) as file:
            for part in whole.namelist():
                content = whole.read(part)
                for old, new in names.items():
                    part = part.replace(old, new)
                    if part.endswith((".rels", "[Content_Types].xml")):
                        content = content.replace(old.encode(), new.encode())
                file.writestr(part, content)


def quoted():
    """A sheet with a quote in its name, with dates in ISO form."""
    book = openpyxl.Workbook(iso_dates=True)
    sheet = book.active
    sheet.title = "it's"
    sheet.append(["day", "v"])
    sheet.append([datetime.datetime(2024, 3, 1), 1])
    sheet.append([datetime.datetime(2024, 3, 1, 12, 30), 2])
    book.save(folder / "quoted.xlsx")


def database(name, tables, sheets):
    """A workbook as ztb writes one: the parameters with the sheets of each, and their rows."""
    book = openpyxl.Workbook()
    symbols = book.active
    symbols.title = "_symbols"
    symbols.append(["symbol", "type", "dimension", "domains", "user_info", "alias_of", "text", "tables", "records"])
    for symbol, parts in tables.items():
        symbols.append([symbol, "parameter", 1, "food", 0, "", "", parts, 2])
    symbols.append(["*", "set", 1, "*", 0, "", "", "", 0])
    book.create_sheet("_labels").append(["label"])
    for title, rows in sheets.items():
        sheet = book.create_sheet(title)
        for row in rows:
            sheet.append(row)
    book.save(folder / name)


def two_damaged_sheets():
    """The third sheet is no XML, the fourth has no part."""
    table = [["food", "value"], ["Milk", 1], ["Tofu", 2]]
    database("whole.xlsx", {"cost": "cost", "price": "price"}, {"cost": table, "price": table})
    with zipfile.ZipFile(folder / "whole.xlsx") as whole:
        with zipfile.ZipFile(folder / "two_damaged_sheets.xlsx", "w") as file:
            for part in whole.namelist():
                if part.endswith("sheet3.xml"):
                    file.writestr(part, "<worksheet><row></worksheet>")
                elif not part.endswith("sheet4.xml"):
                    file.writestr(part, whole.read(part))


RELATIONS = (
    '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
    '<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/'
    'relationships/{}" Target="{}"/></Relationships>'
)
WORKBOOK = (
    '<x:workbook xmlns:x="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
    'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><x:sheets>'
    '<x:sheet name="S" sheetId="1" r:id="rId1"/></x:sheets></x:workbook>'
)
SHEET = (
    '<x:worksheet xmlns:x="http://schemas.openxmlformats.org/spreadsheetml/2006/main">{}'
    "<x:sheetData>{}</x:sheetData></x:worksheet>"
)
HEAD = '<x:row r="1"><x:c r="A1" t="inlineStr"><x:is><x:t>food</x:t></x:is></x:c>'
HEAD += '<x:c t="str"><x:f>"pri"&amp;"ce"</x:f><x:v>price</x:v></x:c></x:row>'


def forge(name, rows, before="", prolog="", texts=None):
    with zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as file:
        file.writestr("_rels/.rels", RELATIONS.format("officeDocument", "/xl/workbook.xml"))
        file.writestr("xl/workbook.xml", WORKBOOK)
        file.writestr("xl/_rels/workbook.xml.rels", RELATIONS.format("worksheet", "sheet.xml"))
        if texts is not None:
            file.writestr("xl/sharedStrings.xml", texts)
        file.writestr("xl/sheet.xml", prolog + SHEET.format(before, HEAD + rows))


def cell(reference, value, kind="n"):
    return f'<x:row><x:c t="inlineStr"><x:is><x:t>Milk</x:t></x:is></x:c>' \
           f'<x:c r="{reference}" t="{kind}"><x:v>{value}</x:v></x:c></x:row>'


plan()
other_parts()
quoted()
two_damaged_sheets()
# More records than a sheet holds stand in several: here in two of two rows. A label and a number
# are spelled and kept as ztb does it; beside them stands a sheet of the user's own.
database("parts.xlsx", {"price": "price/price (2)"}, {
    "price": [["food", "value", "_exact"], ["\\\\\\a", 0.3, "2=3fd3333333333334"], ["2020", 1]],
    "price (2)": [["food", "value", "_exact"], ["Tofu", 3], ["Curd", 0.3, "2=3fd3333333333334"]],
    "Mine": [["food", "value"], ["\\\\\\a", 4]],
})
# Cells and rows without places, rich texts with a reading beside, prefixes of namespaces.
rich = "<sst><si><r><t>Mi</t></r><r><t>lk</t></r><rPh><t>no</t></rPh></si><si><t>a_x000A_b</t></si></sst>"
forge("loose.xlsx",
      '<x:row><x:c t="s"><x:v>0</x:v></x:c><x:c><x:v>2.5</x:v></x:c></x:row>'
      '<x:row><x:c t="inlineStr"><x:is><x:t>Tofu</x:t></x:is></x:c>'
      '<x:c t="str"><x:f>A1</x:f><x:v>eps</x:v></x:c></x:row>',
      texts=rich)
forge("number.xlsx", cell("B2", "1e999"))
forge("truth.xlsx", cell("B2", "2", "b"))
forge("shared.xlsx", cell("B2", "7", "s"), texts=rich)
forge("place.xlsx", cell("ZZZZ2", "1"))
forge("backwards.xlsx", cell("A2", "1"))
forge("rows.xlsx", '<x:row r="5"/><x:row r="3"/>')
everything = '<x:mergeCells><x:mergeCell ref="A1:XFD1048576"/></x:mergeCells>'
forge("merges.xlsx", cell("B2", "1") + '<x:row r="1048576"/>', before=everything)
forge("merge.xlsx", cell("B2", "1"), before='<x:mergeCells><x:mergeCell ref="B"/></x:mergeCells>')
forge("entity.xlsx", cell("B2", "&a;"), prolog='<!DOCTYPE x [<!ENTITY a "1">]>')
forge("nonsense.xlsx", "<x:row></x:sheetData>")
forge("bomb.xlsx", " " * (64 << 20))
with zipfile.ZipFile(folder / "empty.xlsx", "w") as file:
    file.writestr("a.txt", "no workbook")
whole = (folder / "plan.xlsx").read_bytes()
(folder / "cut.xlsx").write_bytes(whole[: len(whole) // 2])
loose = bytearray((folder / "loose.xlsx").read_bytes())
with zipfile.ZipFile(folder / "loose.xlsx") as file:
    info = file.getinfo("xl/sheet.xml")
    loose[info.header_offset + 30 + len(info.filename) + info.compress_size // 2] ^= 0x55
(folder / "flipped.xlsx").write_bytes(loose)
