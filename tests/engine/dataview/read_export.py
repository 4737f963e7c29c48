"""Reads an exported CSV or XLSX file with independent readers and prints every cell
hex-encoded (UTF-8), tab-separated, one row per line, header first."""
import csv
import sys
import xml.etree.ElementTree as ET
import zipfile

NS = {"m": "http://schemas.openxmlformats.org/spreadsheetml/2006/main"}


def csv_rows(path):
    with open(path, newline="", encoding="utf-8") as f:
        return list(csv.reader(f))


def column_index(ref):
    letters = "".join(c for c in ref if c.isalpha())
    n = 0
    for c in letters:
        n = n * 26 + ord(c) - ord("A") + 1
    return n - 1


def xlsx_rows(path):
    with zipfile.ZipFile(path) as z:
        shared = []
        if "xl/sharedStrings.xml" in z.namelist():
            root = ET.fromstring(z.read("xl/sharedStrings.xml"))
            shared = ["".join(t.text or "" for t in si.iter("{%s}t" % NS["m"])) for si in root.findall("m:si", NS)]
        sheet = ET.fromstring(z.read("xl/worksheets/sheet1.xml"))
    rows = []
    for row in sheet.iter("{%s}row" % NS["m"]):
        cells = {}
        for c in row.findall("m:c", NS):
            kind = c.get("t")
            if kind == "inlineStr":
                value = "".join(t.text or "" for t in c.iter("{%s}t" % NS["m"]))
            elif kind == "s":
                value = shared[int(c.find("m:v", NS).text)]
            else:
                value = c.find("m:v", NS).text
            cells[column_index(c.get("r"))] = value
        rows.append(cells)
    # Empty cells are not stored: rows take the header's width.
    width = len(rows[0]) if rows else 0
    return [[cells.get(i, "") for i in range(width)] for cells in rows]


rows = xlsx_rows(sys.argv[1]) if sys.argv[1].endswith(".xlsx") else csv_rows(sys.argv[1])
for row in rows:
    print("\t".join(cell.encode("utf-8").hex() for cell in row))
